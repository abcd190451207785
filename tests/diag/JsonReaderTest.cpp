// What is read as JSON, and what is not.
#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "diag/JsonFile.h"
#include "diag/JsonReader.h"
#include "tests/diag/Captured.h"
#include "tests/support/GuardedMemory.h"
#include "tests/support/ImportHook.h"
#include "tests/support/TestInstallation.h"

namespace {

std::string Written(const JsonValue& value) {
    return test::Capture([&](Utf8Output& output) {
        JsonWriter json(output);
        Write(json, value);
    });
}

// The document as it is written again, or what is wrong with it.
std::string Read(std::wstring_view text) {
    JsonValue document;
    std::wstring error;
    return ReadJson(text, document, error) ? Written(document)
                                           : std::string(error.begin(), error.end());
}

struct ReadCase {
    const wchar_t* text;
    const char* result;
};

void ExpectReads(const std::vector<ReadCase>& cases) {
    for (const ReadCase& c : cases) {
        EXPECT_EQ(Read(c.text), c.result) << testing::PrintToString(std::wstring(c.text));
    }
}

TEST(JsonReader, ReadsEveryKindOfValue) {
    ExpectReads({
        {L"null", "null"},
        {L"true", "true"},
        {L"false", "false"},
        {L"\"\"", "\"\""},
        {L"[]", "[]"},
        {L"{}", "{}"},
        {L" \t\r\n[ 1 , \"a\" , [ ] , { } , null ]\r\n ", "[1,\"a\",[],{},null]"},
        {L"{ \"b\" : 1 , \"a\" : { \"b\" : [ true , false ] } , \"\" : \"\" }",
         "{\"b\":1,\"a\":{\"b\":[true,false]},\"\":\"\"}"},
    });
}

TEST(JsonReader, KeepsNumbersAsTheyAreWritten) {
    for (const char* const number : {"0", "-0", "7", "-12", "10.50", "0.0", "1e5", "1E+5",
                                     "-1.5e-10", "123456789012345678901234567890"}) {
        EXPECT_EQ(Read(std::wstring(number, number + std::strlen(number))), number);
    }
    ExpectReads({
        {L"01", "line 1, character 2: something stands behind the document"},
        {L"+1", "line 1, character 1: no value of JSON"},
        {L".5", "line 1, character 1: no value of JSON"},
        {L"-x", "line 1, character 2: no value of JSON"},
        {L"[1.]", "line 1, character 4: digits are missing"},
        {L"[1.e5]", "line 1, character 4: digits are missing"},
        {L"[1e]", "line 1, character 4: digits are missing"},
        {L"[1e+-5]", "line 1, character 5: digits are missing"},
        {L"[0x10]", "line 1, character 3: a comma or ] is missing"},
        {L"NaN", "line 1, character 1: no value of JSON"},
        {L"\u0661", "line 1, character 1: no value of JSON"},
    });
}

TEST(JsonReader, ReadsEscapesAndSurrogates) {
    ExpectReads({
        {LR"("\"\\\/\b\f\n\r\t\u0041\u00e9\uFfFf")",
         "\"\\\"\\\\/\\u0008\\u000c\\n\\r\\tA\u00e9\uffff\""},
        {LR"("\ud83d\ude00")", "\"\U0001F600\""},
        {LR"("\ud83d")", "\"\\ud83d\""},
        {LR"("\ude00\ud83d")", "\"\\ude00\\ud83d\""},
        {L"\"\U0001F600 \u00a0\x7f\"", "\"\U0001F600 \u00a0\\u007f\""},
        {LR"({"a\u0000b":"\u0000"})", "{\"a\\u0000b\":\"\\u0000\"}"},
        {LR"("\x")", "line 1, character 3: no such character behind a backslash"},
        {LR"("\U0041")", "line 1, character 3: no such character behind a backslash"},
        {LR"("\u004g")", "line 1, character 7: \\u is not followed by four hexadecimal digits"},
        {LR"("\u+041")", "line 1, character 4: \\u is not followed by four hexadecimal digits"},
        {L"\"a\nb\"", "line 1, character 3: a control character in a text"},
        {L"\"a\x1f\"", "line 1, character 3: a control character in a text"},
    });
    EXPECT_EQ(Read(std::wstring(L"\"\0\"", 3)),
              "line 1, character 2: a control character in a text");
}

TEST(JsonReader, RefusesWhatIsAlmostJson) {
    ExpectReads({
        {L"[1,]", "line 1, character 4: no value of JSON"},
        {L"[,1]", "line 1, character 2: no value of JSON"},
        {L"[1 2]", "line 1, character 4: a comma or ] is missing"},
        {L"[1}", "line 1, character 3: a comma or ] is missing"},
        {L"{\"a\":1,}", "line 1, character 8: a name is missing"},
        {L"{\"a\" 1}", "line 1, character 6: a colon is missing"},
        {L"{\"a\":1 \"b\":2}", "line 1, character 8: a comma or } is missing"},
        {L"{a:1}", "line 1, character 2: a name is missing"},
        {L"{'a':1}", "line 1, character 2: a name is missing"},
        {L"{1:1}", "line 1, character 2: a name is missing"},
        {L"True", "line 1, character 1: no value of JSON"},
        {L"nul ", "line 1, character 4: no value of JSON"},
        {L"nullx", "line 1, character 5: something stands behind the document"},
        {L"{} {}", "line 1, character 4: something stands behind the document"},
        {L"[1] // no", "line 1, character 5: something stands behind the document"},
        {L"/* no */ 1", "line 1, character 1: no value of JSON"},
        {L"\u00a0"
         L"1",
         "line 1, character 1: no value of JSON"},
        {L"\ufeff1", "line 1, character 1: no value of JSON"},
        {L"[1,\n 2,\r\n  x]", "line 3, character 3: no value of JSON"},
    });
    EXPECT_EQ(Read(std::wstring(L"1\0", 2)),
              "line 1, character 2: something stands behind the document");
}

TEST(JsonReader, RefusesEveryBeginningOfADocument) {
    constexpr std::wstring_view Document =
        LR"({"a":[1.5e+3,"b\u0041\n",{"c":null}],"d":true,"e":{}})";
    EXPECT_EQ(Read(Document), R"({"a":[1.5e+3,"bA\n",{"c":null}],"d":true,"e":{}})");
    for (std::size_t length = 0; length < Document.size(); ++length) {
        const std::string error = Read(Document.substr(0, length));
        EXPECT_EQ(error.substr(error.find(": ") + 2), "it ends too early") << length;
    }
}

TEST(JsonReader, RefusesANameThatIsThereTwice) {
    EXPECT_EQ(Read(LR"({"a":1,"b":2,"a":3})"),
              "line 1, character 17: the object has this name twice");
    EXPECT_EQ(Read(LR"({"a":1,"\u0061":1})"),
              "line 1, character 16: the object has this name twice");
    EXPECT_EQ(Read(LR"([{"a":1},{"a":{"a":2}},{"A":1}])"), R"([{"a":1},{"a":{"a":2}},{"A":1}])");
}

TEST(JsonReader, RefusesMoreValuesInEachOtherThanItsLimit) {
    const auto nested = [](int depth, const wchar_t* opening, const wchar_t* closing) {
        std::wstring text;
        for (int i = 0; i < depth; ++i) {
            text += opening;
        }
        text += L"1";
        for (int i = 0; i < depth; ++i) {
            text += closing;
        }
        return text;
    };
    EXPECT_EQ(Read(nested(MostJsonDepth, L"[", L"]")).substr(0, 2), "[[");
    EXPECT_EQ(Read(nested(MostJsonDepth + 1, L"[", L"]")),
              "line 1, character 65: too many values in each other");
    EXPECT_EQ(Read(nested(MostJsonDepth, L"{\"a\":", L"}")).substr(0, 2), "{\"");
    EXPECT_EQ(Read(nested(MostJsonDepth + 1, L"{\"a\":", L"}")),
              "line 1, character 321: too many values in each other");
    const test::PlainMemory plain;
    EXPECT_EQ(Read(std::wstring(1000000, L'[')),
              "line 1, character 65: too many values in each other");
}

TEST(JsonReader, KeepsNothingOfADocumentThatWasReadBefore) {
    JsonValue document;
    std::wstring error;
    ASSERT_TRUE(ReadJson(LR"({"a":[1]})", document, error));
    ASSERT_TRUE(ReadJson(LR"({"b":2})", document, error));
    EXPECT_EQ(Written(document), R"({"b":2})");
}

TEST(JsonReader, FindsMembersOfObjectsOnly) {
    JsonValue document;
    std::wstring error;
    ASSERT_TRUE(ReadJson(LR"({"a":[1],"b":"x"})", document, error));
    ASSERT_NE(document.Find(L"b"), nullptr);
    EXPECT_EQ(document.Find(L"b")->Text, L"x");
    EXPECT_EQ(document.Find(L"c"), nullptr);
    EXPECT_EQ(document.Find(L"a")->Find(L"b"), nullptr);
}

class JsonFiles : public testing::Test {
protected:
    JsonFiles() { m_files.MakeFolder(L"C:\\KorTest\\json"); }

    // The document in a file of the bytes as it is written again, or what is wrong with it.
    static std::string ReadBytes(const std::string& bytes) {
        std::ofstream("C:\\KorTest\\json\\f", std::ios::binary) << bytes;
        return ReadFileOf(L"C:\\KorTest\\json\\f");
    }
    static std::string ReadFileOf(const wchar_t* path) {
        JsonValue document;
        std::wstring error;
        return ReadJsonFile(path, document, error) ? Written(document)
                                                   : std::string(error.begin(), error.end());
    }

    test::TestInstallation m_files;
};

TEST_F(JsonFiles, AreUtf8WithOrWithoutAMark) {
    EXPECT_EQ(ReadBytes("[\"\u00dcbung \u8996\u899a \U0001F600\"]"),
              "[\"\u00dcbung \u8996\u899a \U0001F600\"]");
    EXPECT_EQ(ReadBytes("\xEF\xBB\xBF[1]\r\n"), "[1]");
    EXPECT_EQ(ReadBytes("\xEF\xBB\xBF\xEF\xBB\xBF[1]"),
              "is no JSON document: line 1, character 1: no value of JSON");
    EXPECT_EQ(ReadBytes("\xEF\xBB"), "is not UTF-8");
}

TEST_F(JsonFiles, ThatAreNotUtf8AreRefused) {
    for (const char* const bytes : {
             "\"\xFC\"",             // Latin 1
             "\"\x80\"",             // a continuation alone
             "\"\xC3\"",             // cut short
             "\"\xC0\xAF\"",         // longer than need be
             "\"\xE0\x80\xAF\"",     // the same
             "\"\xED\xA0\x80\"",     // a surrogate
             "\"\xF4\x90\x80\x80\"", // beyond the last character
         }) {
        EXPECT_EQ(ReadBytes(bytes), "is not UTF-8") << bytes;
    }
    const std::string utf16 =
        "is UTF-16, as PowerShell writes what it redirects; kordiag report --json "
        "--output FILE writes UTF-8";
    EXPECT_EQ(ReadBytes(std::string("\xFF\xFE[\0]\0", 6)), utf16);
    EXPECT_EQ(ReadBytes(std::string("\xFE\xFF\0[\0]", 6)), utf16);
}

TEST_F(JsonFiles, ThatAreEmptyEndTooEarly) {
    EXPECT_EQ(ReadBytes(""), "is no JSON document: line 1, character 1: it ends too early");
    EXPECT_EQ(ReadBytes("\xEF\xBB\xBF"),
              "is no JSON document: line 1, character 1: it ends too early");
    EXPECT_EQ(ReadBytes(" \n"), "is no JSON document: line 2, character 1: it ends too early");
}

TEST_F(JsonFiles, MayHaveUpTo64Megabytes) {
    const test::PlainMemory plain;
    std::string bytes(MostJsonFileBytes, ' ');
    bytes[0] = '1';
    EXPECT_EQ(ReadBytes(bytes), "1");
    EXPECT_EQ(ReadBytes(bytes + " "), "has more than 64 MB");
}

TEST_F(JsonFiles, ThatCannotBeReadAreToldOf) {
    EXPECT_EQ(ReadFileOf(L"C:\\KorTest\\json\\none"), "cannot be opened (error 2)");
    EXPECT_EQ(ReadFileOf(L"C:\\KorTest\\json"), "cannot be opened (error 5)");
    HANDLE asked = nullptr;
    HOOK_IMPORT(read, ReadFile, [&](HANDLE file, auto...) -> BOOL {
        asked = file;
        SetLastError(ERROR_CRC);
        return FALSE;
    });
    EXPECT_EQ(ReadBytes("1"), "cannot be read (error 23)");
    DWORD flags = 0;
    EXPECT_FALSE(GetHandleInformation(asked, &flags)) << "it is closed";
}

// A pipe gives what it has, piece by piece.
TEST_F(JsonFiles, ThatComeInPiecesAreReadToTheirEnd) {
    HOOK_IMPORT(read, ReadFile, [&](HANDLE file, LPVOID data, DWORD, auto... rest) -> BOOL {
        return read.Original(file, data, 1, rest...);
    });
    JsonValue document;
    std::wstring error;
    std::ofstream("C:\\KorTest\\json\\f") << "[1,\"ab\"]";
    ASSERT_TRUE(ReadJsonFile(L"C:\\KorTest\\json\\f", document, error));
    ASSERT_EQ(document.Values.size(), 2U);
    EXPECT_EQ(document.Values[1].Text, L"ab");
}

} // namespace
