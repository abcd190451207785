// The string: its contents, its growth, its formats.
#include "base/CKORString.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "tests/base/ExpectString.h"
#include "tests/support/GuardedMemory.h"
#include "tests/support/ImportHook.h"
#include "tests/support/Printing.h"

namespace {

using test::ExpectString;
using test::FortyCharacters;

TEST(CKORString, DefaultConstructedIsEmptyWith32Places) {
    ExpectString(CKORString(), L"", 32);
}

TEST(CKORString, ConstructedFromTextTakesTheExactSize) {
    ExpectString(CKORString(L"abc"), L"abc", 4);
    ExpectString(CKORString(FortyCharacters), FortyCharacters, 41);
    ExpectString(CKORString(nullptr), L"", 1);
    ExpectString(CKORString(L""), L"", 1);
}

TEST(CKORString, TheTransformMirrorsPrintableCharacters) {
    // The backslash, "B" and everything outside 32 to 126 stay; 158 - 'A' is ']'.
    const CKORString text(L"A\\B ~\x1F\x7F\xE9z", true);
    ExpectString(text, L"]\\B~ \x1F\x7F\xE9$", 10);
    EXPECT_EQ(CKORString(text.Text(), true), L"A\\B ~\x1F\x7F\xE9z");
    EXPECT_EQ(CKORString(L"A", false), L"A");
}

TEST(CKORString, CopyingRoundsTheCapacityUpTo32) {
    const CKORString three(L"abc");
    const CKORString forty(FortyCharacters);
    const CKORString thirtyOne(L"0123456789012345678901234567890");
    ExpectString(CKORString(three), L"abc", 32);
    ExpectString(CKORString(forty), FortyCharacters, 64);
    ExpectString(CKORString(thirtyOne), thirtyOne.Text(), 32);
}

TEST(CKORString, ACopyGrowsInStepsOf32EvenAfterItWasEmptied) {
    const CKORString three(L"abc");
    CKORString copy(three);
    copy += FortyCharacters;
    EXPECT_EQ(copy.Capacity(), 64);
    copy.SetSize(0, true);
    copy += L"a";
    ExpectString(copy, L"a", 32);
}

// A buffer that a system call filled only in part, for instance.
TEST(CKORString, ATextGoesBehindTheFirstNullAndTheStringKeepsItsEnd) {
    CKORString text(L"what the storage held before");
    text = L"a;b;c";
    text[1] = L'\0';
    text += L"xy";
    EXPECT_STREQ(text.Text(), L"axy");
    ASSERT_EQ(text.Count(), 8);
    for (std::int64_t i = 5; i < text.Count(); ++i) {
        EXPECT_EQ(text[i], L'\0') << i;
    }
    const CTable1D<CKORString> tokens = text.Split(CKORString(L";"));
    EXPECT_EQ(tokens[0], L"axy");
}

TEST(CKORString, WithItsTerminatorGoesItsStorage) {
    CKORString text;
    EXPECT_GT(text.Capacity(), 1);
    text.RemoveLast();
    EXPECT_EQ(text.Count(), 0);
    EXPECT_EQ(text.Capacity(), 0);
    EXPECT_EQ(text.Data(), nullptr);
    EXPECT_STREQ(text.Text(), L"");
    text += L"again";
    EXPECT_STREQ(text.Text(), L"again");

    CKORString longer(L"ab");
    longer.RemoveLast();
    EXPECT_EQ(longer.Count(), 2);
    EXPECT_NE(longer.Data(), nullptr);
}

TEST(CKORString, WhatLiesBehindANullWithinTheTextIsCopiedToo) {
    CKORString text(L"a;b;c");
    text[1] = L'\0';
    const CKORString copy(text);
    EXPECT_EQ(copy.Count(), 6);
    for (std::int64_t i = 0; i < copy.Count(); ++i) {
        EXPECT_EQ(copy[i], text[i]) << i;
    }
    const CTable1D<CKORString> tokens = text.Split(CKORString(L";"));
    ASSERT_EQ(tokens.Count(), 3) << "a null ends a token as a delimiter does";
    EXPECT_EQ(tokens[0], L"a");
    EXPECT_EQ(tokens[1], L"b");
    EXPECT_EQ(tokens[2], L"c");
}

TEST(CKORString, AStringWithoutStorageIsEmptyAndSoIsItsCopy) {
    CKORString text(L"abc");
    text.SetSize(0, true);
    const CKORString copy(text);
    for (const CKORString* const empty : {static_cast<const CKORString*>(&text), &copy}) {
        EXPECT_EQ(empty->Data(), nullptr);
        EXPECT_EQ(empty->Count(), 0);
        EXPECT_EQ(empty->Length(), 0);
        EXPECT_STREQ(empty->Text(), L"");
    }
    EXPECT_EQ(copy.Split(CKORString(L";")).Count(), 0);
    // To the end of nothing there is not even a terminator, and nothing is copied: a buffer of no
    // places would end the process.
    const test::ImportHook<struct CopyTag,
                           errno_t(WINAPI*)(wchar_t*, std::size_t, const wchar_t*, std::size_t)>
        characters("wcsncpy_s", [](auto...) -> errno_t {
            ADD_FAILURE();
            return EINVAL;
        });
    const CKORString mid = copy.Mid(0);
    EXPECT_EQ(mid.Count(), 0);
    EXPECT_EQ(mid.Data(), nullptr);
}

TEST(CKORString, AssigningTakesNullAndKeepsTheGrowthStep) {
    CKORString inSteps;
    inSteps = FortyCharacters;
    ExpectString(inSteps, FortyCharacters, 64);
    inSteps = nullptr;
    ExpectString(inSteps, L"", 64);

    CKORString exact(L"a");
    exact = FortyCharacters;
    ExpectString(exact, FortyCharacters, 41);

    CKORString fromString;
    fromString = exact;
    ExpectString(fromString, FortyCharacters, 64);
    fromString = CKORString(L"temporary");
    ExpectString(fromString, L"temporary", 64);
    CKORString& alias = fromString;
    fromString = alias;
    ExpectString(fromString, L"temporary", 64);
}

TEST(CKORString, APieceOfTheStringItselfCanBeAssignedAndAppended) {
    CKORString text(L"abcdef");
    text = text.Text() + 2;
    EXPECT_EQ(text, L"cdef");
    text += text.Text();
    EXPECT_EQ(text, L"cdefcdef");
    text += text.Text() + 6;
    EXPECT_EQ(text, L"cdefcdefef");
    text += text;
    EXPECT_EQ(text, L"cdefcdefefcdefcdefef");
}

TEST(CKORString, AppendingTextGrowsByTheStep) {
    CKORString exact(L"ab");
    exact += L"cd";
    ExpectString(exact, L"abcd", 5);

    CKORString inSteps;
    inSteps += L"abcd";
    ExpectString(inSteps, L"abcd", 32);
    inSteps += FortyCharacters;
    EXPECT_EQ(inSteps.Capacity(), 64);
    EXPECT_EQ(inSteps.Length(), 44);

    CKORString withoutStorage(L"x");
    withoutStorage.SetSize(0, true);
    withoutStorage += L"abc";
    ExpectString(withoutStorage, L"abc", 4);
}

TEST(CKORString, AppendingAStringDropsTheTerminatorFirst) {
    CKORString text(L"ab");
    text += CKORString(L"cd");
    ExpectString(text, L"abcd", 5);

    // An empty string gives its storage up first: the 64 places become 32.
    CKORString large;
    large = FortyCharacters;
    large = L"";
    EXPECT_EQ(large.Capacity(), 64);
    large += CKORString(L"abc");
    ExpectString(large, L"abc", 32);

    CKORString empty(L"");
    empty += CKORString(L"");
    ExpectString(empty, L"", 1);
    empty += empty;
    ExpectString(empty, L"", 1);
}

TEST(CKORString, AppendingToOrFromAStringWithoutStorage) {
    CKORString without(L"x");
    without.SetSize(0, true);

    CKORString text(L"ab");
    text += without;
    ExpectString(text, L"ab", 3);

    CKORString target(L"y");
    target.SetSize(0, true);
    target += text;
    ExpectString(target, L"ab", 3);
}

TEST(CKORString, ConcatenatesStringsAndTexts) {
    const CKORString a(L"a");
    const CKORString b(L"b");
    EXPECT_EQ(a + b, L"ab");
    EXPECT_EQ(a + L"c", L"ac");
    EXPECT_EQ(L"c" + a, L"ca");
    EXPECT_EQ(a, L"a");
    const CKORString forty(FortyCharacters);
    EXPECT_EQ((a + b).Capacity(), 32) << "the left operand is copied";
    EXPECT_EQ((a + L"c").Capacity(), 32);
    EXPECT_EQ((forty + L"c").Capacity(), 64);
    EXPECT_EQ((forty + a).Capacity(), 64);
    EXPECT_EQ((L"c" + a).Capacity(), 3) << "a text is taken in its exact size";
}

TEST(CKORString, FormatsWithTheExactCount) {
    const CKORString id = CKORString::Format(L"%s_%d", L"KOR", 0);
    EXPECT_EQ(id, L"KOR_0");
    EXPECT_EQ(id.Count(), 6);
    EXPECT_EQ(id.Capacity(), 32);
    const CKORString longText = CKORString::Format(L"%s%s", FortyCharacters, FortyCharacters);
    EXPECT_EQ(longText.Length(), 80);
    EXPECT_EQ(longText.Capacity(), 96);
    EXPECT_EQ(CKORString::Format(L""), L"");
}

CKORString& FormatInto(CKORString& target, const wchar_t* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    CKORString& result = target.FormatV(format, arguments);
    va_end(arguments);
    return result;
}

TEST(CKORString, FormattingReplacesTheTextAndKeepsTheStorageThatSuffices) {
    CKORString exact(L"abc");
    EXPECT_EQ(&FormatInto(exact, L"%d", 1234), &exact);
    ExpectString(exact, L"1234", 5);
    FormatInto(exact, L"%c", L'x');
    ExpectString(exact, L"x", 5);
    FormatInto(exact, L"%d", 5678);
    ExpectString(exact, L"5678", 5);

    CKORString inSteps;
    FormatInto(inSteps, L"%s", FortyCharacters);
    ExpectString(inSteps, FortyCharacters, 64);

    CKORString withoutStorage(L"x");
    withoutStorage.SetSize(0, true);
    FormatInto(withoutStorage, L"%u", 0xFFFFFFFFU);
    ExpectString(withoutStorage, L"4294967295", 11);
}

TEST(CKORString, AFormatErrorLeavesACountOfZero) {
    HOOK_IMPORT(count, _vscwprintf, [](auto...) { return -1; });
    // A buffer of no places would end the process there.
    const test::ImportHook<struct WriteTag,
                           int(WINAPI*)(wchar_t*, std::size_t, const wchar_t*, va_list)>
        write("vswprintf_s", [](auto...) {
            ADD_FAILURE() << "nothing may be written";
            return -1;
        });
    CKORString text = CKORString::Format(L"%s", L"x");
    EXPECT_EQ(text.Count(), 0);
    EXPECT_EQ(text.Length(), 0);
    EXPECT_STREQ(text.Text(), L"");
    // It can be used on, whatever its storage still holds.
    text = L"old";
    FormatInto(text, L"%s", L"x");
    text += L"abc";
    EXPECT_EQ(text, L"abc");
    FormatInto(text, L"%s", L"x");
    text += CKORString(L"de");
    EXPECT_EQ(text, L"de");
}

// Behind the table's own fields: the buffer, then the object, which goes first.
TEST(CKORString, TheAuxiliaryFieldsHaveTheirOrderAndGoWithTheString) {
    class Noted : public CKORStringAuxiliary {
    public:
        explicit Noted(std::int64_t& blocksAtItsEnd) : m_blocks(blocksAtItsEnd) {}
        Noted(const Noted&) = delete;
        Noted& operator=(const Noted&) = delete;
        ~Noted() override { m_blocks = test::LiveBlocks(); }

    private:
        std::int64_t& m_blocks;
    };
    static_assert(sizeof(CKORString) == sizeof(CTable1D<wchar_t>) + 2 * sizeof(void*));
    const std::int64_t before = test::LiveBlocks();
    std::int64_t blocksAtItsEnd = 0;
    {
        CKORString text(L"abc");
        const unsigned char* const buffer = new unsigned char[5];
        const CKORStringAuxiliary* const object = new Noted(blocksAtItsEnd);
        char* const fields = reinterpret_cast<char*>(&text) + sizeof(CTable1D<wchar_t>);
        std::memcpy(fields, &buffer, sizeof(void*));
        std::memcpy(fields + sizeof(void*), &object, sizeof(void*));
    }
    EXPECT_EQ(blocksAtItsEnd, before + 3) << "the object, the buffer and the text";
    EXPECT_EQ(test::LiveBlocks(), before);
}

TEST(CKORString, AMovedStringIsLeftWithoutStorageAndUsable) {
    CKORString from(L"abc");
    const wchar_t* const storage = from.Text();
    CKORString to(std::move(from));
    EXPECT_EQ(to.Text(), storage);
    EXPECT_EQ(from.Count(), 0); // NOLINT(bugprone-use-after-move): its state is promised
    EXPECT_STREQ(from.Text(), L"");
    from += L"d";
    ExpectString(from, L"d", 2);
}

TEST(CKORString, ReleasesWhatItTook) {
    const std::int64_t before = test::LiveBlocks();
    {
        CKORString text(L"abc");
        text += text;
        const CKORString copy(text);
        const CKORString moved(std::move(text));
        EXPECT_EQ(moved, L"abcabc");
        const auto tokens = copy.Split(CKORString(L"b"));
        EXPECT_EQ(tokens.Count(), 3);
    }
    EXPECT_EQ(test::LiveBlocks(), before);
}

} // namespace
