// Searches: their patterns, prefixes, ends and failures.
#include "env/FileFinder.h"

#include <gtest/gtest.h>

#include <set>
#include <type_traits>

#include "tests/env/StagedSearch.h"
#include "tests/env/TempFolder.h"
#include "tests/support/FileCalls.h"

namespace {

using test::Entry;
using test::FileCalls;
using test::StagedSearch;
using test::TempFolder;

static_assert(!std::is_copy_constructible_v<FileFinder> && !std::is_copy_assignable_v<FileFinder>);

constexpr std::size_t FieldSize = 1024;

TEST(FileFinder, GivesNothingBeforeASearch) {
    FileFinder finder;
    EXPECT_STREQ(finder.FullPath(), L"");
    EXPECT_STREQ(finder.DirectoryPrefix(), L"");
    EXPECT_STREQ(finder.Name(), L"");
    const FileCalls calls;
    SetLastError(ERROR_SUCCESS);
    EXPECT_FALSE(finder.FindNext());
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
    finder.Close();
    EXPECT_TRUE(calls.Calls().empty()) << "without a search there is nothing to ask or close";
}

TEST(FileFinder, WalksADirectory) {
    const TempFolder folder;
    folder.MakeFile(L"a.txt");
    folder.MakeFile(L"b.txt");
    folder.MakeFolder(L"c");
    std::multiset<std::wstring> found;
    const FileCalls calls;
    {
        FileFinder finder;
        ASSERT_TRUE(finder.FindFirst(folder.PathOf(L"*").c_str()));
        do {
            EXPECT_EQ(finder.DirectoryPrefix(), folder.Path() + L"\\");
            EXPECT_EQ(finder.FullPath(), folder.PathOf(finder.Name()));
            found.insert(finder.Name());
        } while (finder.FindNext());
        EXPECT_EQ(GetLastError(), DWORD{ERROR_NO_MORE_FILES});
        EXPECT_STREQ(finder.FullPath(), L"") << "the search is over";
        EXPECT_EQ(calls.Calls().back().function, "FindNext") << "it stays open";
    }
    EXPECT_EQ(found, (std::multiset<std::wstring>{L".", L"..", L"a.txt", L"b.txt", L"c"}));
    EXPECT_EQ(calls.Calls().back().function, "FindClose") << "the destructor closes";
    EXPECT_TRUE(calls.IsBalanced());
}

TEST(FileFinder, FindsNothingWhereNothingIs) {
    const TempFolder folder;
    FileFinder finder;
    const FileCalls calls;
    for (const std::wstring& pattern :
         {folder.PathOf(L"missing.txt"), folder.PathOf(L"missing\\*"), std::wstring(),
          std::wstring(L"\\\\"), std::wstring(40000, L'x')}) {
        EXPECT_FALSE(finder.FindFirst(pattern.c_str())) << pattern.substr(0, 300);
        EXPECT_STREQ(finder.FullPath(), L"");
        EXPECT_FALSE(finder.FindNext());
    }
    EXPECT_EQ(calls.Calls().size(), 5U) << "one try each, nothing to close";
}

TEST(FileFinder, ASecondSearchClosesTheFirst) {
    const TempFolder folder;
    folder.MakeFile(L"a.txt");
    folder.MakeFile(L"b.log");
    FileFinder finder;
    const FileCalls calls;
    EXPECT_TRUE(finder.FindFirst(folder.PathOf(L"*.txt").c_str()));
    EXPECT_STREQ(finder.Name(), L"a.txt");
    EXPECT_TRUE(finder.FindFirst(folder.PathOf(L"*.log").c_str()));
    EXPECT_STREQ(finder.Name(), L"b.log");
    EXPECT_FALSE(finder.FindFirst(folder.PathOf(L"*.none").c_str()));
    EXPECT_STREQ(finder.FullPath(), L"");
    EXPECT_EQ(calls.Listed(folder.Path()), L"FindFirst ~\\*.txt\nFindClose \nFindFirst ~\\*.log\n"
                                           L"FindClose \nFindFirst ~\\*.none\n");
    EXPECT_TRUE(calls.IsBalanced());
}

TEST(FileFinder, ItsOwnTextsMayBeThePattern) {
    using Text = const wchar_t* (FileFinder::*)() const;
    struct {
        Text text;
        const wchar_t* searched;
        const wchar_t* prefix;
    } const cases[] = {
        {&FileFinder::FullPath, L"C:\\a\\name", L"C:\\a\\"},
        {&FileFinder::Name, L"name", L""},
        {&FileFinder::DirectoryPrefix, L"C:\\a", L"C:\\a\\"},
    };
    for (const auto& c : cases) {
        StagedSearch search({Entry(L"name")});
        FileFinder finder;
        ASSERT_TRUE(finder.FindFirst(L"C:\\a\\*"));
        EXPECT_TRUE(finder.FindFirst((finder.*c.text)()));
        EXPECT_EQ(search.Pattern(), c.searched);
        EXPECT_STREQ(finder.DirectoryPrefix(), c.prefix);
        EXPECT_EQ(finder.FullPath(), c.prefix + std::wstring(L"name"));
    }
}

TEST(FileFinder, ClosesOnceAndKeepsTheLastError) {
    StagedSearch search({Entry(L"a")});
    {
        FileFinder finder;
        EXPECT_TRUE(finder.FindFirst(L"x\\*"));
        SetLastError(ERROR_DISK_FULL);
        finder.Close();
        EXPECT_EQ(GetLastError(), DWORD{ERROR_DISK_FULL});
        EXPECT_EQ(search.Closed(), 1);
        EXPECT_STREQ(finder.FullPath(), L"");
        finder.Close();
        EXPECT_FALSE(finder.FindNext());
    }
    EXPECT_EQ(search.Closed(), 1);
}

TEST(FileFinder, SplitsThePatternIntoSearchAndPrefix) {
    struct {
        const wchar_t* pattern;
        const wchar_t* searched;
        const wchar_t* prefix;
    } const cases[] = {
        {L"C:\\a\\b\\*.txt", L"C:\\a\\b\\*.txt", L"C:\\a\\b\\"},
        {L"C:\\*", L"C:\\*", L"C:\\"},
        // The root of a drive is searched for without its backslash.
        {L"C:\\", L"C:", L"C:\\"},
        {L"C:*.txt", L"C:*.txt", L"C:"},
        {L"*.txt", L"*.txt", L""},
        {L"name", L"name", L""},
        {L"a\\b", L"a\\b", L"a\\"},
        {L"a/b/*", L"a/b/*", L"a/b/"},
        {L"C:/a/b/*", L"C:/a/b/*", L"C:/a/b/"},
        {L"C:\\a\\", L"C:\\a", L"C:\\a\\"},
        {L"C:\\a\\\\\\", L"C:\\a", L"C:\\a\\\\\\"},
        {L"C:\\a/", L"C:\\a/", L"C:\\a/"},
        {L"C:\\a\\/", L"C:\\a\\/", L"C:\\a\\/"},
        {L"C:\\a/\\\\", L"C:\\a/", L"C:\\a/\\\\"},
        {L"\\\\server\\share\\*", L"\\\\server\\share\\*", L"\\\\server\\share\\"},
        {L"\\\\?\\C:\\a\\*", L"\\\\?\\C:\\a\\*", L"\\\\?\\C:\\a\\"},
        {L"\\\\?\\UNC\\server\\share\\*", L"\\\\?\\UNC\\server\\share\\*",
         L"\\\\?\\UNC\\server\\share\\"},
        {L"\\\\?\\name", L"\\\\?\\name", L"\\\\?\\"},
        {L"\\\\?\\", L"\\\\?", L"\\\\?\\"},
        {L"\\\\.\\C:\\*", L"\\\\.\\C:\\*", L"\\\\.\\C:\\"},
        {L"\\", L"", L"\\"},
        {L"", L"", L""},
    };
    for (const auto& c : cases) {
        StagedSearch search({Entry(L"name")});
        FileFinder finder;
        EXPECT_TRUE(finder.FindFirst(c.pattern)) << c.pattern;
        EXPECT_EQ(search.Pattern(), c.searched) << c.pattern;
        EXPECT_STREQ(finder.DirectoryPrefix(), c.prefix) << c.pattern;
        EXPECT_EQ(finder.FullPath(), std::wstring(c.prefix) + L"name") << c.pattern;
    }
}

// On the real file system: the directory itself is found, and the prefix is the pattern.
TEST(FileFinder, APatternThatEndsInBackslashesFindsTheDirectory) {
    const TempFolder folder;
    const std::wstring directory = folder.MakeFolder(L"directory");
    folder.MakeFile(L"directory\\file");
    FileFinder finder;
    ASSERT_TRUE(finder.FindFirst((directory + L"\\\\").c_str()));
    EXPECT_STREQ(finder.Name(), L"directory");
    EXPECT_TRUE(finder.IsDirectory());
    EXPECT_EQ(finder.DirectoryPrefix(), directory + L"\\\\");
    EXPECT_EQ(finder.FullPath(), directory + L"\\\\directory");
    EXPECT_FALSE(finder.FindNext());
}

TEST(FileFinder, SearchesThroughTheFormOfPathWithoutALengthLimit) {
    const TempFolder folder;
    const std::wstring directory = folder.MakeFolderOfLength(300);
    const std::wstring pattern = L"\\\\?\\" + directory + L"\\*";
    FileFinder finder;
    ASSERT_TRUE(finder.FindFirst(pattern.c_str()));
    EXPECT_STREQ(finder.Name(), L".");
    EXPECT_EQ(finder.FullPath(), L"\\\\?\\" + directory + L"\\.");
}

TEST(FileFinder, AFullPathOf1023CharactersFitsALongerOneFails) {
    for (const std::size_t prefixLength :
         {FieldSize - 2, FieldSize - 1, FieldSize, FieldSize + 1, std::size_t{40000}}) {
        const bool fits = prefixLength + 1 < FieldSize;
        const std::wstring prefix = std::wstring(prefixLength - 1, L'd') + L"\\";
        StagedSearch search({Entry(L"n")});
        FileFinder finder;
        SetLastError(ERROR_SUCCESS);
        EXPECT_EQ(finder.FindFirst((prefix + L"*").c_str()), fits) << prefixLength;
        if (fits) {
            EXPECT_EQ(finder.FullPath(), prefix + L"n");
            EXPECT_EQ(search.Closed(), 0);
        } else {
            EXPECT_EQ(GetLastError(), DWORD{ERROR_FILENAME_EXCED_RANGE}) << prefixLength;
            EXPECT_STREQ(finder.FullPath(), L"") << prefixLength;
            EXPECT_EQ(search.Closed(), 1) << prefixLength;
            EXPECT_FALSE(finder.FindNext()) << prefixLength;
        }
    }
}

TEST(FileFinder, ANextEntryThatDoesNotFitFailsAloneAndTheSearchGoesOn) {
    const std::wstring prefix = std::wstring(FieldSize - 4, L'd') + L"\\";
    const std::wstring tooLong = std::wstring(259, L'n');
    StagedSearch search({Entry(L"n"), Entry(L"abc"), Entry(tooLong.c_str()), Entry(L"ab")});
    FileFinder finder;
    EXPECT_TRUE(finder.FindFirst((prefix + L"*").c_str()));
    for (int i = 0; i < 2; ++i) {
        SetLastError(ERROR_SUCCESS);
        EXPECT_FALSE(finder.FindNext());
        EXPECT_EQ(GetLastError(), DWORD{ERROR_FILENAME_EXCED_RANGE});
        EXPECT_STREQ(finder.FullPath(), L"");
    }
    EXPECT_TRUE(finder.FindNext());
    EXPECT_EQ(finder.FullPath(), prefix + L"ab");
    EXPECT_FALSE(finder.FindNext());
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NO_MORE_FILES});
}

TEST(FileFinder, APatternThatCannotBeSplitFailsAndCloses) {
    struct Split {
        static errno_t __cdecl Fails(const wchar_t*, wchar_t*, size_t, wchar_t*, size_t, wchar_t*,
                                     size_t, wchar_t*, size_t) {
            return ERANGE;
        }
    };
    StagedSearch search({Entry(L"n")});
    FileFinder finder;
    void* const original =
        test::ReplaceImport("_wsplitpath_s", reinterpret_cast<void*>(&Split::Fails));
    SetLastError(ERROR_SUCCESS);
    const bool isFound = finder.FindFirst(L"x\\*");
    const DWORD error = GetLastError();
    test::ReplaceImport("_wsplitpath_s", original);
    EXPECT_FALSE(isFound);
    EXPECT_EQ(error, DWORD{ERROR_INVALID_NAME});
    EXPECT_EQ(search.Closed(), 1);
    EXPECT_STREQ(finder.FullPath(), L"");
}

} // namespace
