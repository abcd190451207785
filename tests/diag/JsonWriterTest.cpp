// The JSON that is written, byte by byte.
#include "diag/JsonWriter.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cstdint>
#include <limits>

#include "tests/diag/Captured.h"

namespace {

struct QuotedText {
    std::wstring text;
    std::wstring quoted;
};

TEST(Quoted, IsAJsonStringForAnyText) {
    const QuotedText texts[] = {
        {L"", L"\"\""},
        {L"C:\\a \"b\"", L"\"C:\\\\a \\\"b\\\"\""},
        {L"a\r\n\tb", L"\"a\\r\\n\\tb\""},
        {std::wstring(L"a\0b", 3), L"\"a\\u0000b\""},
        {L"\x1f\x20\x7e\x7f\x9f\xa0", L"\"\\u001f ~\\u007f\\u009f\xa0\""},
        {L"\x8996\xfeff", L"\"\x8996\xfeff\""},
        {L"\xd83d\xde00", L"\"\xd83d\xde00\""},
        {L"\xd83d", L"\"\\ud83d\""},
        {L"\xde00", L"\"\\ude00\""},
        {L"\xde00\xd83d", L"\"\\ude00\\ud83d\""},
        {L"\xd83d\xd83d\xde00\xde00", L"\"\\ud83d\xd83d\xde00\\ude00\""},
        {L"\xdbff\xdfff\xdbffz", L"\"\xdbff\xdfff\\udbffz\""},
    };
    for (const QuotedText& t : texts) {
        EXPECT_TRUE(Quoted(std::wstring_view(t.text)) == t.quoted)
            << testing::PrintToString(t.text) << " gave "
            << testing::PrintToString(Quoted(std::wstring_view(t.text)));
    }
}

TEST(Printable, KeepsALineALine) {
    EXPECT_TRUE(Printable(L"C:\\a \"b\"\r\nc\xd83d\xd83d\xde00\x1b") ==
                L"C:\\a \"b\"\\u000d\\u000ac\\ud83d\xd83d\xde00\\u001b");
}

TEST(JsonWriter, SeparatesMembersAndElements) {
    EXPECT_EQ(test::Capture([](Utf8Output& output) {
                  JsonWriter json(output);
                  json.BeginObject();
                  json.Key(L"a").BeginArray();
                  json.EndArray();
                  json.Key(L"b").BeginArray();
                  json.Number(std::numeric_limits<std::int64_t>::min());
                  json.Number(std::numeric_limits<std::uint64_t>::max());
                  json.Boolean(true);
                  json.Boolean(false);
                  json.Null();
                  json.Text(CKORString(L"\"x\""));
                  json.BeginObject();
                  json.EndObject();
                  json.BeginObject();
                  json.Key(L"\"").Text(std::wstring_view(L"y"));
                  json.EndObject();
                  json.EndArray();
                  json.Key(L"c").Null();
                  json.EndObject();
              }),
              "{\"a\":[],\"b\":[-9223372036854775808,18446744073709551615,true,false,null,"
              "\"\\\"x\\\"\",{},{\"\\\"\":\"y\"}],\"c\":null}");
}

} // namespace
