// The operations on texts.
#include "registry/StringUtilities.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "tests/support/GuardedMemory.h"
#include "tests/support/ImportHook.h"
#include "tests/support/Printing.h"

using namespace kor;

namespace {

struct JoinRow {
    const wchar_t* path;
    const wchar_t* piece;
    const wchar_t* joined;
};

TEST(AppendPathPiece, PutsOneBackslashAtMost) {
    constexpr JoinRow Rows[] = {
        {L"ab", L"c", L"ab\\c"},       {L"ab\\", L"c", L"ab\\c"},
        {L"ab", L"\\c", L"ab\\c"},     {L"ab\\", L"\\c", L"ab\\\\c"},
        {L"a", L"c", L"ac"},           {L"", L"c", L"c"},
        {L"ab", L"", L"ab\\"},         {L"a", L"", L"a"},
        {L"\\", L"c", L"\\c"},         {L"ab/", L"c", L"ab/\\c"},
        {L"ab", L"c\\d", L"ab\\c\\d"},
    };
    for (const JoinRow& row : Rows) {
        CKORString path(row.path);
        EXPECT_TRUE(AppendPathPiece(path, row.piece));
        EXPECT_EQ(path, row.joined);
    }
    CKORString twice(L"ab");
    EXPECT_TRUE(AppendPathPiece(twice, twice));
    EXPECT_EQ(twice, L"ab\\ab");
    CKORString slash(L"\\a");
    EXPECT_TRUE(AppendPathPiece(slash, slash));
    EXPECT_EQ(slash, L"\\a\\a");
}

TEST(LastCharacters, StayWithinTheText) {
    EXPECT_EQ(LastCharacters(L"abcdef", 2), L"ef");
    EXPECT_EQ(LastCharacters(L"abcdef", 6), L"abcdef");
    EXPECT_EQ(LastCharacters(L"abcdef", 7), L"abcdef");
    EXPECT_EQ(LastCharacters(L"abcdef", 0), L"");
    EXPECT_EQ(LastCharacters(L"abcdef", -1), L"");
    EXPECT_EQ(LastCharacters(L"", 3), L"");
    CKORString withoutStorage;
    withoutStorage.SetSize(0, false);
    EXPECT_EQ(LastCharacters(withoutStorage, 3), L"");
}

TEST(ChangeLength, CutsAndPads) {
    CKORString text(L"abc\\");
    ChangeLength(text, 3, L' ');
    EXPECT_EQ(text, L"abc");
    EXPECT_EQ(text.Length(), 3);
    ChangeLength(text, 5, L'x');
    EXPECT_EQ(text, L"abcxx");
    EXPECT_EQ(text.Length(), 5);
    ChangeLength(text, 5, L'y');
    EXPECT_EQ(text, L"abcxx");
    ChangeLength(text, 0, L' ');
    EXPECT_EQ(text, L"");
    EXPECT_EQ(text.Count(), 1);
    ChangeLength(text, -3, L' ');
    EXPECT_EQ(text.Length(), 0);
    CKORString withoutStorage;
    withoutStorage.SetSize(0, false);
    ChangeLength(withoutStorage, 2, L'z');
    EXPECT_EQ(withoutStorage, L"zz");
}

TEST(ChangeLength, PadsBehindAllThatIsThereAndByTheGrowthStep) {
    CKORString exact(L"ab");
    ChangeLength(exact, 40, L'-');
    EXPECT_EQ(exact, (L"ab" + std::wstring(38, L'-')).c_str());
    EXPECT_EQ(exact.Capacity(), 41);
    CKORString inSteps;
    ChangeLength(inSteps, 40, L'-');
    EXPECT_EQ(inSteps, std::wstring(40, L'-').c_str());
    EXPECT_EQ(inSteps.Capacity(), 64);
    ChangeLength(inSteps, 50, L'\0');
    EXPECT_EQ(inSteps.Length(), 40) << "a null is no character to fill up with";
}

TEST(ChangeLength, TakesAllTheMemoryForThePaddingAtOnce) {
    CKORString text(L"a");
    const test::PlainMemory fromTheHeap;
    int allocations = 0;
    HOOK_IMPORT(allocate, malloc, [&](std::size_t bytes) {
        ++allocations;
        return allocate.Original(bytes);
    });
    ChangeLength(text, 80'000, L' ');
    EXPECT_LE(allocations, 4);
    EXPECT_EQ(text.Length(), 80'000);
}

TEST(ContainsText, ComparesWithCase) {
    EXPECT_TRUE(ContainsText(L"a volatile key", L"volatile"));
    EXPECT_FALSE(ContainsText(L"a Volatile key", L"volatile"));
    EXPECT_FALSE(ContainsText(L"volatil", L"volatile"));
}

TEST(EqualIgnoringCase, ComparesWholeTexts) {
    EXPECT_TRUE(EqualIgnoringCase(L"HKEY_users", L"hkey_USERS"));
    EXPECT_FALSE(EqualIgnoringCase(L"HKEY_USER", L"HKEY_USERS"));
}

TEST(RemoveBackslashes, TakesAllAtTheEndOnly) {
    CKORString text(L"\\\\a\\b\\\\");
    RemoveTrailingBackslashes(text);
    EXPECT_EQ(text, L"\\\\a\\b");
    RemoveLeadingBackslashes(text);
    EXPECT_EQ(text, L"a\\b");
    CKORString onlyBackslashes(L"\\\\\\");
    RemoveTrailingBackslashes(onlyBackslashes);
    EXPECT_EQ(onlyBackslashes, L"");
    CKORString leading(L"\\\\");
    RemoveLeadingBackslashes(leading);
    EXPECT_EQ(leading, L"");
}

} // namespace
