// What is written for wide text, whole or damaged.
#include "diag/Utf8Output.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <string>

#include "tests/diag/Captured.h"
#include "tests/support/ImportHook.h"

namespace {

TEST(Utf8Output, WritesPiecesInTheirOrderWithoutChangingLineEnds) {
    EXPECT_EQ(test::Capture([](Utf8Output& output) {
                  output.Write(L"a\n", CKORString(L"b\r\n"), std::wstring(L"c"),
                               std::int64_t{-9223372036854775807LL}, 5);
              }),
              "a\nb\r\nc-92233720368547758075");
}

struct Conversion {
    std::wstring text;
    std::string bytes;
};

TEST(Utf8Output, ConvertsToUtf8) {
    const Conversion conversions[] = {
        {L"\x00e9", "\xc3\xa9"},
        {L"\x8996\x899a", "\xe8\xa6\x96\xe8\xa6\x9a"},
        {L"\xd83d\xde00", "\xf0\x9f\x98\x80"},
        {std::wstring(L"a\0b", 3), std::string("a\0b", 3)},
        // UTF-8 has no form for half a pair.
        {L"x\xd83dy", "x\xef\xbf\xbdy"},
        {L"\xde00", "\xef\xbf\xbd"},
        {L"\xd83d", "\xef\xbf\xbd"},
        {L"", ""},
    };
    for (const Conversion& c : conversions) {
        EXPECT_EQ(test::Capture([&](Utf8Output& output) { output.Write(c.text); }), c.bytes);
    }
}

TEST(Utf8Output, DoesNotTearPairsWhereverThePiecesEnd) {
    for (const std::size_t start : {0U, 1U, 8190U, 8191U, 8192U, 8193U}) {
        std::wstring text(start, L'.');
        std::string bytes(start, '.');
        for (int i = 0; i < 9000; ++i) {
            text += L"\xd83d\xde00";
            bytes += "\xf0\x9f\x98\x80";
        }
        EXPECT_TRUE(test::Capture([&](Utf8Output& output) { output.Write(text); }) == bytes)
            << start << ", in one";
        EXPECT_TRUE(test::Capture([&](Utf8Output& output) {
                        for (const wchar_t c : text) {
                            output.Write(std::wstring(1, c));
                        }
                    }) == bytes)
            << start << ", one by one";
    }
}

TEST(Utf8Output, WritesLongTextsInFewCalls) {
    int calls = 0;
    HOOK_IMPORT(write, WriteFile, [&](auto... all) {
        ++calls;
        return write.Original(all...);
    });
    test::Capture([](Utf8Output& output) {
        for (int i = 0; i < 8192 * 3; ++i) {
            output.Write(L"x");
        }
    });
    EXPECT_EQ(calls, 3);
}

TEST(Utf8Output, GoesOnAfterAWriteThatTookOnlyAPart) {
    HOOK_IMPORT(write, WriteFile, [&](HANDLE file, LPCVOID bytes, DWORD count, auto... rest) {
        return write.Original(file, bytes, std::min<DWORD>(count, 3), rest...);
    });
    EXPECT_EQ(test::Capture([](Utf8Output& output) { output.Write(L"0123456789"); }), "0123456789");
}

TEST(Utf8Output, FallsSilentWhenTheReaderIsGone) {
    HANDLE reading = nullptr;
    HANDLE writing = nullptr;
    ASSERT_TRUE(CreatePipe(&reading, &writing, nullptr, 0));
    CloseHandle(reading);
    {
        Utf8Output output(writing);
        output.Write(L"x");
        EXPECT_TRUE(output.IsOpen()) << "nothing was passed on yet";
        output.Flush();
        EXPECT_FALSE(output.IsOpen());
        EXPECT_TRUE(output.ReaderIsGone());
        output.Write(std::wstring(100000, L'y'));
    }
    CloseHandle(writing);
}

TEST(Utf8Output, KeepsOtherFailures) {
    for (const DWORD error : {DWORD{ERROR_DISK_FULL}, DWORD{ERROR_SUCCESS}}) {
        const test::Captured captured;
        HOOK_IMPORT(write, WriteFile, test::FailsWith<BOOL>(error));
        Utf8Output output(captured.Handle());
        output.Write(L"x");
        output.Flush();
        EXPECT_FALSE(output.IsOpen());
        EXPECT_FALSE(output.ReaderIsGone());
    }
    Utf8Output nowhere(nullptr);
    nowhere.Write(L"x");
    nowhere.Flush();
    EXPECT_FALSE(nowhere.IsOpen());
    EXPECT_FALSE(nowhere.ReaderIsGone());
}

// A console takes the text itself, and not all of it at a time.
TEST(Utf8Output, WritesTextToAConsole) {
    const test::Captured captured;
    HOOK_IMPORT(mode, GetConsoleMode, [](HANDLE, LPDWORD value) {
        *value = 0;
        return TRUE;
    });
    std::wstring shown;
    HOOK_IMPORT(write, WriteConsoleW,
                [&](HANDLE, const void* text, DWORD count, LPDWORD written, LPVOID) {
                    *written = std::min<DWORD>(count, 1000);
                    shown.append(static_cast<const wchar_t*>(text), *written);
                    return TRUE;
                });
    const std::wstring text = std::wstring(8191, L'.') + L"\xd83d\xde00 \x8996";
    Utf8Output output(captured.Handle());
    output.Write(text);
    output.Flush();
    EXPECT_TRUE(shown == text);
    EXPECT_EQ(captured.Bytes(), "");
}

} // namespace
