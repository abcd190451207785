// The pieces of a string: its middle, its left, what lies between delimiters.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "base/CKORString.h"
#include "tests/base/ExpectString.h"
#include "tests/support/GuardedMemory.h"
#include "tests/support/ImportHook.h"

namespace {

using test::ExpectString;
using test::FortyCharacters;

TEST(CKORString, MidAndLeftTakeTheExactSize) {
    const CKORString text(L"abcdef");
    ExpectString(text.Mid(3), L"def", 4);
    ExpectString(text.Mid(3, -1), L"def", 4);
    ExpectString(text.Mid(1, 2), L"bc", 3);
    ExpectString(text.Mid(6), L"", 1);
    ExpectString(text.Mid(0, 0), L"", 1);
    ExpectString(text.Left(2), L"ab", 3);
    ExpectString(text.Left(0), L"", 1);

    CKORString grown = text.Left(2);
    grown += L"c";
    EXPECT_EQ(grown.Capacity(), 4) << "the step is the table's 1";
}

void ExpectOnlyNullsBehind(const CKORString& text, std::int64_t start, std::int64_t count) {
    ASSERT_EQ(text.Count(), count);
    for (std::int64_t i = start; i < count; ++i) {
        EXPECT_EQ(text.Data()[i], L'\0') << i;
    }
}

TEST(CKORString, BehindANullWithinTheTextMidAndLeftHoldNullsOnly) {
    CKORString text(FortyCharacters);
    text[3] = L'\0';
    // Blocks of a common heap, which still hold what they were given back with.
    const test::PlainMemory fromTheHeap;
    const auto leaveBehind = [](std::int64_t characters) {
        const CKORString old(CKORString(FortyCharacters).Left(characters));
        EXPECT_EQ(old.Length(), characters);
    };
    for (const std::int64_t length : {39, 35, 20}) {
        leaveBehind(length);
        const CKORString mid = text.Mid(1, length);
        EXPECT_EQ(mid, L"12");
        ExpectOnlyNullsBehind(mid, 2, length + 1);
        leaveBehind(length);
        const CKORString left = text.Left(length);
        EXPECT_EQ(left, L"012");
        ExpectOnlyNullsBehind(left, 3, length + 1);
    }
    leaveBehind(39);
    const CKORString toTheEnd = text.Mid(1);
    EXPECT_EQ(toTheEnd, L"12");
    ExpectOnlyNullsBehind(toTheEnd, 2, 40);
}

struct SplitCase {
    const wchar_t* text;
    const wchar_t* delimiters;
    std::vector<std::wstring> tokens;
};

TEST(CKORString, SplitsAtEveryDelimiter) {
    const SplitCase cases[] = {
        {L"", L";", {}},
        {L"a", L";", {L"a"}},
        {L"a;;b", L";", {L"a", L"", L"b"}},
        {L"a;b;", L";", {L"a", L"b", L""}},
        {L";", L";", {L"", L""}},
        {L";a", L";", {L"", L"a"}},
        {L"3.1.2", L".", {L"3", L"1", L"2"}},
        {L"a,b;c", L";,", {L"a", L"b", L"c"}},
        {L"a;b", L"", {L"a;b"}},
    };
    for (const SplitCase& c : cases) {
        std::vector<std::wstring> got;
        for (const CKORString& token : CKORString(c.text).Split(CKORString(c.delimiters))) {
            got.emplace_back(token.Text());
        }
        EXPECT_EQ(got, c.tokens) << testing::PrintToString(std::wstring(c.text));
    }
}

TEST(CKORString, SplitReservesThePiecesThatBeginBeforeTheEnd) {
    EXPECT_EQ(CKORString(L"a;b;c").Split(CKORString(L";")).Capacity(), 3);
    EXPECT_EQ(CKORString(L"a;").Split(CKORString(L";")).Capacity(), 2)
        << "one place reserved, the empty last token grows the table by one";
}

TEST(CKORString, SplitTakesThePlacesThatItReservesAtOnce) {
    struct {
        const wchar_t* text;
        std::vector<std::size_t> places;
    } const cases[] = {
        {L"a;b;c", {3}},
        {L";;a", {3}},
        {L"a;b;", {2, 3}},
        {L";", {1, 2}},
    };
    const test::PlainMemory fromTheHeap;
    for (const auto& c : cases) {
        std::vector<std::size_t> places;
        HOOK_IMPORT(allocate, malloc, [&](std::size_t bytes) {
            // No token's text takes as much.
            if (bytes % sizeof(CKORString) == 0) {
                places.push_back(bytes / sizeof(CKORString));
            }
            return allocate.Original(bytes);
        });
        const CKORString text(c.text);
        const CKORString delimiters(L";");
        places.reserve(10);
        places.clear();
        const CTable1D<CKORString> tokens = text.Split(delimiters);
        EXPECT_EQ(places, c.places) << testing::PrintToString(std::wstring(c.text));
    }
}

} // namespace
