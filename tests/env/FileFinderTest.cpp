#include "env/FileFinder.h"

#include <gtest/gtest.h>

#include <set>
#include <type_traits>

#include "tests/env/FileCalls.h"
#include "tests/env/TempFolder.h"

namespace {

using test::FileCalls;
using test::TempFolder;

static_assert(!std::is_copy_constructible_v<FileFinder> && !std::is_copy_assignable_v<FileFinder>);

constexpr std::size_t FieldSize = 1024;

// A search that exists only in the import table: it finds the entries that it was given.
class StagedSearch {
public:
    explicit StagedSearch(std::vector<WIN32_FIND_DATAW> entries) : m_entries(std::move(entries)) {}

    const std::wstring& Pattern() const { return m_pattern; }
    int Closed() const { return m_closed; }

private:
    HANDLE Handle() { return this; }

    std::vector<WIN32_FIND_DATAW> m_entries;
    std::size_t m_next = 0;
    std::wstring m_pattern;
    int m_closed = 0;
    test::ImportHook<struct StagedFirst, decltype(&FindFirstFileW)> m_first{
        "FindFirstFileW", [this](LPCWSTR pattern, LPWIN32_FIND_DATAW data) {
            m_pattern = pattern;
            *data = m_entries[0];
            m_next = 1;
            return Handle();
        }};
    test::ImportHook<struct StagedNext, decltype(&FindNextFileW)> m_nextHook{
        "FindNextFileW", [this](HANDLE search, LPWIN32_FIND_DATAW data) -> BOOL {
            EXPECT_EQ(search, Handle());
            if (m_next == m_entries.size()) {
                SetLastError(ERROR_NO_MORE_FILES);
                return FALSE;
            }
            *data = m_entries[m_next++];
            return TRUE;
        }};
    test::ImportHook<struct StagedClose, decltype(&FindClose)> m_close{
        "FindClose", [this](HANDLE search) -> BOOL {
            EXPECT_EQ(search, Handle());
            ++m_closed;
            SetLastError(ERROR_BUSY);
            return TRUE;
        }};
};

WIN32_FIND_DATAW Entry(const wchar_t* name, DWORD attributes = FILE_ATTRIBUTE_NORMAL) {
    WIN32_FIND_DATAW data = {};
    data.dwFileAttributes = attributes;
    wcscpy_s(data.cFileName, name);
    return data;
}

FILETIME TimeOf(std::uint64_t ticks) {
    return {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
}

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

TEST(FileFinder, TellsTheAttributesApart) {
    constexpr DWORD All = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY |
                          FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_REPARSE_POINT;
    for (const DWORD attributes :
         {DWORD{FILE_ATTRIBUTE_DIRECTORY}, DWORD{FILE_ATTRIBUTE_READONLY},
          DWORD{FILE_ATTRIBUTE_HIDDEN}, DWORD{FILE_ATTRIBUTE_REPARSE_POINT}, ~All, All}) {
        StagedSearch search({Entry(L"n", attributes)});
        FileFinder finder;
        ASSERT_TRUE(finder.FindFirst(L"*"));
        EXPECT_EQ(finder.IsDirectory(), (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0);
        EXPECT_EQ(finder.IsReadOnly(), (attributes & FILE_ATTRIBUTE_READONLY) != 0);
        EXPECT_EQ(finder.IsHidden(), (attributes & FILE_ATTRIBUTE_HIDDEN) != 0);
        EXPECT_EQ(finder.IsReparsePoint(), (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0);
    }
}

TEST(FileFinder, GivesARealFilesSizeAndAttributes) {
    constexpr std::int64_t FiveGigabytes = 5'368'709'121;
    const TempFolder folder;
    // Hidden by its name where the attribute is not kept.
    const std::wstring path = folder.MakeFile(L".big", FILE_ATTRIBUTE_HIDDEN);
    const HANDLE file =
        CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    LARGE_INTEGER size = {};
    size.QuadPart = FiveGigabytes;
    ASSERT_TRUE(SetFilePointerEx(file, size, nullptr, FILE_BEGIN) && SetEndOfFile(file));
    CloseHandle(file);
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_READONLY);

    FileFinder finder;
    ASSERT_TRUE(finder.FindFirst(path.c_str()));
    EXPECT_EQ(finder.Size(), static_cast<std::uint64_t>(FiveGigabytes));
    EXPECT_FALSE(finder.IsDirectory());
    EXPECT_TRUE(finder.IsReadOnly());
    EXPECT_TRUE(finder.IsHidden());
    EXPECT_FALSE(finder.IsReparsePoint());
    EXPECT_FALSE(finder.IsDots());
}

TEST(FileFinder, CountsSecondsFrom1970) {
    constexpr std::uint64_t Second = 10'000'000;
    constexpr std::uint64_t Start = 11'644'473'600 * Second;
    struct {
        std::uint64_t ticks;
        std::int64_t seconds;
    } const cases[] = {
        {Start, 0},
        {Start + Second - 1, 0},
        {Start + Second, 1},
        {Start - 1, -1},
        {Start - Second, -1},
        {0, -11'644'473'600},
        {Start + 1'700'000'000 * Second + 42, 1'700'000'000},
        {0x7FFFFFFFFFFFFFFF, 910'692'730'085},
        {0xFFFFFFFFFFFFFFFF, 1'833'029'933'770},
    };
    for (const auto& c : cases) {
        WIN32_FIND_DATAW created = Entry(L"n");
        created.ftCreationTime = TimeOf(c.ticks);
        WIN32_FIND_DATAW accessed = Entry(L"n");
        accessed.ftLastAccessTime = TimeOf(c.ticks);
        WIN32_FIND_DATAW written = Entry(L"n");
        written.ftLastWriteTime = TimeOf(c.ticks);
        StagedSearch search({created, accessed, written});
        FileFinder finder;
        ASSERT_TRUE(finder.FindFirst(L"*"));
        EXPECT_EQ(finder.CreationTime(), c.seconds) << c.ticks;
        ASSERT_TRUE(finder.FindNext());
        EXPECT_EQ(finder.LastAccessTime(), c.seconds) << c.ticks;
        ASSERT_TRUE(finder.FindNext());
        EXPECT_EQ(finder.LastWriteTime(), c.seconds) << c.ticks;
    }
}

TEST(FileFinder, ARealFileOf1970HasTimeZero) {
    const TempFolder folder;
    const std::wstring path = folder.MakeFile(L"file");
    SYSTEMTIME start = {};
    start.wYear = 1970;
    start.wMonth = 1;
    start.wDay = 1;
    FILETIME time = {};
    ASSERT_TRUE(SystemTimeToFileTime(&start, &time));
    const HANDLE file =
        CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_TRUE(SetFileTime(file, nullptr, nullptr, &time));
    CloseHandle(file);
    FileFinder finder;
    ASSERT_TRUE(finder.FindFirst(path.c_str()));
    EXPECT_EQ(finder.LastWriteTime(), 0);
}

TEST(FileFinder, TakesDotsAnywhereInANameForDotEntries) {
    struct {
        const wchar_t* name;
        bool isDots;
    } const cases[] = {
        {L".", true},     {L"..", true},    {L"...", true},   {L"a..b", true}, {L"..a", true},
        {L"a..", true},   {L"a\\.b", true}, {L"a.\\b", true}, {L"\\.", true},  {L".\\", true},
        {L".a", false},   {L"a.", false},   {L"a.b", false},  {L"a", false},   {L"a.b.c", false},
        {L"a/.b", false}, {L"a\\b", false}, {L"", false},
    };
    for (const auto& c : cases) {
        StagedSearch search({Entry(c.name)});
        FileFinder finder;
        ASSERT_TRUE(finder.FindFirst(L"*"));
        EXPECT_EQ(finder.IsDots(), c.isDots) << c.name;
    }
}

TEST(FileFinder, ClearReadOnlyLeavesOtherFilesAlone) {
    const TempFolder folder;
    folder.MakeFile(L"file");
    FileFinder finder;
    ASSERT_TRUE(finder.FindFirst(folder.PathOf(L"file").c_str()));
    const FileCalls calls;
    EXPECT_TRUE(finder.ClearReadOnly());
    EXPECT_TRUE(calls.Calls().empty());
}

TEST(FileFinder, ClearReadOnlyActsInTheCurrentDirectory) {
    const TempFolder folder;
    const TempFolder elsewhere;
    const std::wstring path = folder.MakeFile(L"file", FILE_ATTRIBUTE_READONLY);
    wchar_t before[MAX_PATH] = L"";
    GetCurrentDirectoryW(MAX_PATH, before);
    FileFinder finder;
    ASSERT_TRUE(finder.FindFirst(path.c_str()));

    SetCurrentDirectoryW(elsewhere.Path().c_str());
    {
        const FileCalls calls;
        EXPECT_FALSE(finder.ClearReadOnly()) << "there is no such file";
        ASSERT_EQ(calls.Calls().size(), 1U);
        EXPECT_EQ(calls.Calls()[0].text, L"file");
    }
    EXPECT_NE(GetFileAttributesW(path.c_str()) & FILE_ATTRIBUTE_READONLY, 0U);

    SetCurrentDirectoryW(folder.Path().c_str());
    EXPECT_TRUE(finder.ClearReadOnly());
    EXPECT_EQ(GetFileAttributesW(path.c_str()) & FILE_ATTRIBUTE_READONLY, 0U);
    SetCurrentDirectoryW(before);
}

TEST(FileFinder, ClearReadOnlyKeepsTheOtherAttributes) {
    StagedSearch search(
        {Entry(L"n", FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_ARCHIVE)});
    FileFinder finder;
    ASSERT_TRUE(finder.FindFirst(L"x\\*"));
    DWORD set = 0;
    BOOL succeeds = FALSE;
    HOOK_IMPORT(attributes, SetFileAttributesW, [&](LPCWSTR name, DWORD value) -> BOOL {
        EXPECT_STREQ(name, L"n");
        set = value;
        return succeeds;
    });
    EXPECT_FALSE(finder.ClearReadOnly());
    EXPECT_EQ(set, DWORD{FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_ARCHIVE});
    succeeds = TRUE;
    EXPECT_TRUE(finder.ClearReadOnly());
}

} // namespace
