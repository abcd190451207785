// What a search tells of the entry that it is on, and what it does to it.
#include "env/FileFinder.h"

#include <gtest/gtest.h>

#include "tests/env/StagedSearch.h"
#include "tests/env/TempFolder.h"
#include "tests/support/FileCalls.h"

namespace {

using test::Entry;
using test::FileCalls;
using test::StagedSearch;
using test::TempFolder;

FILETIME TimeOf(std::uint64_t ticks) {
    return {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
}

TEST(FileFinderEntry, TellsTheAttributesApart) {
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

TEST(FileFinderEntry, KnowsALinkToADirectoryByItsTag) {
    constexpr DWORD Reparse = FILE_ATTRIBUTE_REPARSE_POINT;
    constexpr DWORD Directory = FILE_ATTRIBUTE_DIRECTORY;
    constexpr DWORD Cloud = 0x9000001A;
    struct {
        DWORD attributes;
        DWORD tag;
        bool isLink;
    } const cases[] = {
        {Directory | Reparse, IO_REPARSE_TAG_MOUNT_POINT, true},
        {Directory | Reparse | FILE_ATTRIBUTE_HIDDEN, IO_REPARSE_TAG_SYMLINK, true},
        // Any tag with the bit of a name surrogate.
        {Directory | Reparse, 0x20000000, true},
        {Directory | Reparse, Cloud, false},
        {Directory | Reparse, 0, false},
        {Directory, IO_REPARSE_TAG_MOUNT_POINT, false},
        {Reparse, IO_REPARSE_TAG_SYMLINK, false},
    };
    for (const auto& c : cases) {
        WIN32_FIND_DATAW entry = Entry(L"n", c.attributes);
        entry.dwReserved0 = c.tag;
        StagedSearch search({entry});
        FileFinder finder;
        ASSERT_TRUE(finder.FindFirst(L"*"));
        EXPECT_EQ(finder.IsDirectoryLink(), c.isLink) << c.attributes << " " << c.tag;
    }
}

TEST(FileFinderEntry, AHiddenSystemFolderIsAFolder) {
    StagedSearch search(
        {Entry(L"n", FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM)});
    FileFinder finder;
    ASSERT_TRUE(finder.FindFirst(L"*"));
    EXPECT_TRUE(finder.IsDirectory());
    EXPECT_TRUE(finder.IsHidden());
}

TEST(FileFinderEntry, GivesARealFilesSizeAndAttributes) {
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

TEST(FileFinderEntry, CountsSecondsFrom1970) {
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

TEST(FileFinderEntry, ARealFileOf1970HasTimeZero) {
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

TEST(FileFinderEntry, TakesDotsAnywhereInANameForDotEntries) {
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

TEST(FileFinderEntry, ClearReadOnlyLeavesOtherFilesAlone) {
    const TempFolder folder;
    folder.MakeFile(L"file");
    FileFinder finder;
    ASSERT_TRUE(finder.FindFirst(folder.PathOf(L"file").c_str()));
    const FileCalls calls;
    EXPECT_TRUE(finder.ClearReadOnly());
    EXPECT_TRUE(calls.Calls().empty());
}

TEST(FileFinderEntry, ClearReadOnlyActsInTheCurrentDirectory) {
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

TEST(FileFinderEntry, ClearReadOnlyKeepsTheOtherAttributes) {
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
