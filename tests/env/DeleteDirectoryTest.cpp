// What a deletion takes away, leaves and reports.
#include "env/DeleteDirectory.h"

#include <gtest/gtest.h>

#include "tests/env/TempFolder.h"
#include "tests/support/FileCalls.h"

namespace {

using test::Exists;
using test::FileCalls;
using test::TempFolder;

constexpr std::size_t LongestPath = 259;
// "\*" and a terminator must fit behind it.
constexpr std::size_t LongestDirectory = 257;

struct Outcome {
    bool isDeleted;
    DWORD error;
};

Outcome Delete(const std::wstring& path) {
    SetLastError(ERROR_SUCCESS);
    const bool isDeleted = DeleteDirectory(path.c_str());
    return {isDeleted, GetLastError()};
}

Outcome DeleteForced(const std::wstring& path, int mode) {
    SetLastError(ERROR_SUCCESS);
    const bool isDeleted = DeleteDirectoryForced(path.c_str(), mode);
    return {isDeleted, GetLastError()};
}

testing::AssertionResult FailsWith(DWORD error, const Outcome& outcome) {
    if (!outcome.isDeleted && outcome.error == error) {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure()
           << (outcome.isDeleted ? "it is deleted" : "it fails") << ", error " << outcome.error;
}

// A folder of its own, and in it the directory that is to be deleted.
class DeleteDirectory : public testing::Test {
protected:
    TempFolder m_folder;
    std::wstring m_top = m_folder.MakeFolder(L"top");
};

TEST_F(DeleteDirectory, RemovesAnEmptyDirectory) {
    EXPECT_TRUE(Delete(m_top).isDeleted);
    EXPECT_FALSE(Exists(m_top));
    EXPECT_TRUE(Exists(m_folder.Path()));
}

TEST_F(DeleteDirectory, RemovesEverythingInItAndNothingBesideIt) {
    m_folder.MakeFolder(L"top\\.starts with a dot");
    m_folder.MakeFile(L"top\\.starts with a dot\\.file");
    m_folder.MakeFile(L"top\\hidden", FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM);
    m_folder.MakeFile(L"top\\one.two.three");
    m_folder.MakeFile(L"top\\\x00E9\x4E2D\xD83D\xDE00");
    m_folder.MakeFolder(L"top\\a");
    m_folder.MakeFolder(L"top\\a\\b");
    m_folder.MakeFolder(L"top\\a\\b\\c");
    m_folder.MakeFile(L"top\\a\\b\\c\\file");
    const std::wstring beside[] = {m_folder.MakeFile(L"top2"), m_folder.MakeFile(L"top.txt"),
                                   m_folder.MakeFile(L"a")};
    EXPECT_TRUE(Delete(m_top).isDeleted);
    EXPECT_FALSE(Exists(m_top));
    for (const std::wstring& path : beside) {
        EXPECT_TRUE(Exists(path)) << path;
    }
}

TEST_F(DeleteDirectory, TakesAPathThatEndsInABackslash) {
    m_folder.MakeFile(L"top\\file");
    EXPECT_TRUE(Delete(m_top + L"\\").isDeleted);
    EXPECT_FALSE(Exists(m_top));
}

TEST_F(DeleteDirectory, FailsWhereThereIsNoDirectory) {
    const std::wstring file = m_folder.MakeFile(L"file");
    for (const std::wstring& path : {m_folder.PathOf(L"missing"), m_folder.PathOf(L"missing\\too"),
                                     file, m_folder.PathOf(L"f*")}) {
        const FileCalls calls;
        const Outcome outcome = Delete(path);
        EXPECT_FALSE(outcome.isDeleted) << path;
        EXPECT_NE(outcome.error, DWORD{ERROR_SUCCESS}) << path;
        EXPECT_EQ(calls.Calls().size(), 1U) << "only the search was tried";
    }
    EXPECT_TRUE(Exists(file));
}

TEST_F(DeleteDirectory, ANullOrEmptyPathIsNotTheRootOfTheDrive) {
    // No search gets through, so that a mistake here does not empty a real drive.
    HOOK_IMPORT(search, FindFirstFileW, [](auto...) -> HANDLE { return INVALID_HANDLE_VALUE; });
    const FileCalls calls;
    for (const wchar_t* const path : {static_cast<const wchar_t*>(nullptr), L""}) {
        SetLastError(ERROR_SUCCESS);
        EXPECT_FALSE(::DeleteDirectory(path));
        EXPECT_EQ(GetLastError(), DWORD{ERROR_PATH_NOT_FOUND});
        SetLastError(ERROR_SUCCESS);
        EXPECT_FALSE(DeleteDirectoryForced(path, 1));
        EXPECT_EQ(GetLastError(), DWORD{ERROR_PATH_NOT_FOUND});
    }
    EXPECT_TRUE(calls.Calls().empty());
}

// Dots within a name: the entry is skipped, the rest goes, the directory stays.
TEST_F(DeleteDirectory, AnEntryWithTwoDotsInItsNameKeepsTheDirectory) {
    const std::wstring kept = m_folder.MakeFile(L"top\\m..n");
    const std::wstring keptFolder = m_folder.MakeFolder(L"top\\p..q");
    const std::wstring inKeptFolder = m_folder.MakeFile(L"top\\p..q\\file");
    const std::wstring before = m_folder.MakeFile(L"top\\a");
    const std::wstring behind = m_folder.MakeFile(L"top\\z");
    EXPECT_TRUE(FailsWith(ERROR_DIR_NOT_EMPTY, Delete(m_top)));
    EXPECT_TRUE(Exists(kept));
    EXPECT_TRUE(Exists(keptFolder));
    EXPECT_TRUE(Exists(inKeptFolder));
    EXPECT_FALSE(Exists(before));
    EXPECT_FALSE(Exists(behind));
    EXPECT_FALSE(DeleteForced(m_top, 1).isDeleted);
    EXPECT_TRUE(Exists(kept));
}

// Below a directory, such an entry ends the whole deletion.
TEST_F(DeleteDirectory, AnEntryWithTwoDotsBelowEndsTheDeletion) {
    m_folder.MakeFolder(L"top\\m");
    m_folder.MakeFile(L"top\\m\\x..y");
    const std::wstring behind = m_folder.MakeFile(L"top\\z");
    EXPECT_TRUE(FailsWith(ERROR_DIR_NOT_EMPTY, Delete(m_top)));
    EXPECT_TRUE(Exists(behind));
}

TEST_F(DeleteDirectory, PassesOverTheFirstEntryWithoutALook) {
    const std::wstring first = m_folder.MakeFile(L"top\\first");
    const std::wstring second = m_folder.MakeFile(L"top\\second");
    // As in the root of a drive, whose search finds no dot entries.
    HOOK_IMPORT(search, FindFirstFileW, [&](LPCWSTR pattern, LPWIN32_FIND_DATAW data) -> HANDLE {
        const HANDLE handle = search.Original(pattern, data);
        while (data->cFileName[0] == L'.' && FindNextFileW(handle, data)) {
        }
        EXPECT_STREQ(data->cFileName, L"first");
        return handle;
    });
    EXPECT_TRUE(FailsWith(ERROR_DIR_NOT_EMPTY, Delete(m_top)));
    EXPECT_TRUE(Exists(first));
    EXPECT_FALSE(Exists(second));
}

// The search lists entries in the order of their names here; elsewhere the order of the two lists
// may differ, the rest holds.
TEST_F(DeleteDirectory, StopsAtAReadOnlyFile) {
    const std::wstring before = m_folder.MakeFile(L"top\\a");
    const std::wstring readOnly = m_folder.MakeFile(L"top\\b", FILE_ATTRIBUTE_READONLY);
    const std::wstring behind = m_folder.MakeFile(L"top\\c");
    EXPECT_TRUE(FailsWith(ERROR_ACCESS_DENIED, Delete(m_top)));
    EXPECT_FALSE(Exists(before));
    EXPECT_TRUE(Exists(readOnly));
    EXPECT_TRUE(Exists(behind));
    EXPECT_NE(GetFileAttributesW(readOnly.c_str()) & FILE_ATTRIBUTE_READONLY, 0U);

    for (const int mode : {0, 2, -1}) {
        EXPECT_FALSE(DeleteForced(m_top, mode).isDeleted) << mode;
        EXPECT_TRUE(Exists(readOnly)) << mode;
    }
    EXPECT_TRUE(DeleteForced(m_top, 1).isDeleted);
    EXPECT_FALSE(Exists(m_top));
}

TEST_F(DeleteDirectory, AReadOnlyFileOneLevelDeeperStopsBothForms) {
    m_folder.MakeFolder(L"top\\m");
    const std::wstring readOnly = m_folder.MakeFile(L"top\\m\\file", FILE_ATTRIBUTE_READONLY);
    const std::wstring behind = m_folder.MakeFile(L"top\\z");
    for (const Outcome& outcome : {Delete(m_top), DeleteForced(m_top, 1)}) {
        EXPECT_TRUE(FailsWith(ERROR_ACCESS_DENIED, outcome));
        EXPECT_TRUE(Exists(readOnly));
        EXPECT_TRUE(Exists(behind)) << "a failing subdirectory ends the deletion";
        EXPECT_NE(GetFileAttributesW(readOnly.c_str()) & FILE_ATTRIBUTE_READONLY, 0U);
    }
}

TEST_F(DeleteDirectory, AFileInUseStopsIt) {
    const std::wstring file = m_folder.MakeFile(L"top\\file");
    const HANDLE open = CreateFileW(file.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                    OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(open, INVALID_HANDLE_VALUE);
    EXPECT_TRUE(FailsWith(ERROR_SHARING_VIOLATION, DeleteForced(m_top, 1)));
    EXPECT_TRUE(Exists(file));
    CloseHandle(open);
    EXPECT_TRUE(Delete(m_top).isDeleted);
}

TEST_F(DeleteDirectory, TheLongestDirectoryIsDeleted) {
    const std::wstring top = m_folder.MakeFolderOfLength(LongestDirectory);
    const FileCalls calls;
    EXPECT_TRUE(Delete(top).isDeleted);
    EXPECT_TRUE(calls.IsBalanced());
    EXPECT_FALSE(Exists(top));
}

TEST_F(DeleteDirectory, ALongerDirectoryFailsBeforeAnyCall) {
    for (const std::size_t length : {LongestDirectory + 1, LongestPath, LongestPath + 1}) {
        const std::wstring top = m_folder.MakeFolderOfLength(length);
        const FileCalls calls;
        for (const Outcome& outcome : {Delete(top), DeleteForced(top, 1)}) {
            EXPECT_TRUE(FailsWith(ERROR_FILENAME_EXCED_RANGE, outcome)) << length;
        }
        EXPECT_TRUE(calls.Calls().empty()) << length;
        EXPECT_TRUE(Exists(top)) << length;
    }
    EXPECT_TRUE(FailsWith(ERROR_FILENAME_EXCED_RANGE, Delete(std::wstring(100'000, L'x'))));
}

TEST_F(DeleteDirectory, TheLongestEntryIsDeletedALongerOneStopsIt) {
    const std::wstring top = m_folder.MakeFolderOfLength(200);
    const std::wstring name = top.substr(m_folder.Path().size() + 1);
    const auto fileOfLength = [&](std::size_t length) {
        return name + L"\\" + std::wstring(length - top.size() - 1, L'm');
    };
    m_folder.MakeFile(fileOfLength(LongestPath));
    EXPECT_TRUE(Delete(top).isDeleted);

    m_folder.MakeFolderOfLength(200);
    m_folder.MakeFile(name + L"\\a");
    const std::wstring tooLong = m_folder.MakeFile(fileOfLength(LongestPath + 1));
    const std::wstring behind = m_folder.MakeFile(name + L"\\z");
    const FileCalls calls;
    EXPECT_TRUE(FailsWith(ERROR_FILENAME_EXCED_RANGE, DeleteForced(top, 1)));
    EXPECT_TRUE(calls.IsBalanced());
    EXPECT_FALSE(Exists(m_folder.PathOf(name + L"\\a")));
    EXPECT_TRUE(Exists(tooLong));
    EXPECT_TRUE(Exists(behind));
}

TEST_F(DeleteDirectory, ASubdirectoryThatIsTooLongIsNotEntered) {
    const std::wstring top = m_folder.MakeFolderOfLength(200);
    const std::wstring name = top.substr(m_folder.Path().size() + 1);
    // It fits as an entry, but not with "\*" behind it.
    const std::wstring below =
        name + L"\\" + std::wstring(LongestDirectory + 1 - top.size() - 1, L'm');
    m_folder.MakeFolder(below);
    const std::wstring file = m_folder.MakeFile(below + L"\\f");
    const FileCalls calls;
    EXPECT_TRUE(FailsWith(ERROR_FILENAME_EXCED_RANGE, Delete(top)));
    EXPECT_TRUE(calls.IsBalanced());
    EXPECT_TRUE(Exists(file));
}

// --- Links to directories. Their find data is made up: Wine makes no junctions. ---

// While it lives, searches report the entries of this name with these attributes and this tag.
class MarkedEntry {
public:
    MarkedEntry(const wchar_t* name, DWORD attributes, DWORD tag)
        : m_name(name), m_attributes(attributes), m_tag(tag) {}

private:
    std::wstring m_name;
    DWORD m_attributes;
    DWORD m_tag;
    test::ImportHook<struct MarkedTag, decltype(&FindNextFileW)> m_findNext{
        "FindNextFileW", [this](HANDLE search, LPWIN32_FIND_DATAW data) -> BOOL {
            const BOOL found = m_findNext.Original(search, data);
            if (found != FALSE && m_name == data->cFileName) {
                data->dwFileAttributes = m_attributes;
                data->dwReserved0 = m_tag;
            }
            return found;
        }};
};

constexpr DWORD Link = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
constexpr DWORD LinkTags[] = {IO_REPARSE_TAG_MOUNT_POINT, IO_REPARSE_TAG_SYMLINK};

TEST_F(DeleteDirectory, ALinkToADirectoryIsRemovedAndNotEntered) {
    for (const DWORD tag : LinkTags) {
        for (const int mode : {0, 1}) {
            const TempFolder folder;
            const std::wstring top = folder.MakeFolder(L"top");
            folder.MakeFolder(L"top\\link");
            folder.MakeFile(L"top\\z");
            const FileCalls calls;
            const MarkedEntry marked(L"link", Link, tag);
            EXPECT_TRUE(DeleteForced(top, mode).isDeleted);
            const std::wstring cleared = mode == 1 ? L"SetFileAttributes ~\\z\n" : L"";
            EXPECT_EQ(calls.Listed(top),
                      L"FindFirst ~\\*\nFindNext ..\nFindNext link\nRemoveDirectory ~\\link\n"
                      L"FindNext z\n" +
                          cleared +
                          L"DeleteFile ~\\z\nFindNext -\nFindClose \nRemoveDirectory ~\n");
        }
    }
}

// What it leads to is not the tree's, one level down as at the top.
TEST_F(DeleteDirectory, ALinkThatCannotBeRemovedEndsTheDeletion) {
    for (const std::wstring parent : {L"top", L"top\\m"}) {
        const TempFolder folder;
        const std::wstring top = folder.MakeFolder(L"top");
        if (parent != L"top") {
            folder.MakeFolder(parent);
        }
        folder.MakeFolder(parent + L"\\link");
        const std::wstring inside = folder.MakeFile(parent + L"\\link\\inside");
        const std::wstring behind = folder.MakeFile(parent + L"\\z");
        const FileCalls calls;
        const MarkedEntry marked(L"link", Link, IO_REPARSE_TAG_MOUNT_POINT);
        for (const Outcome& outcome : {Delete(top), DeleteForced(top, 1)}) {
            EXPECT_TRUE(FailsWith(ERROR_DIR_NOT_EMPTY, outcome));
            EXPECT_TRUE(Exists(inside));
            EXPECT_TRUE(Exists(behind));
        }
        EXPECT_TRUE(calls.IsBalanced());
    }
}

TEST_F(DeleteDirectory, OnlyLinksAreNotEntered) {
    struct {
        DWORD attributes;
        DWORD tag;
    } const cases[] = {
        // A directory that is kept in a cloud, and one whose field for the tag means nothing.
        {Link, 0x9000001A},
        {FILE_ATTRIBUTE_DIRECTORY, IO_REPARSE_TAG_MOUNT_POINT},
    };
    for (const auto& c : cases) {
        const TempFolder folder;
        const std::wstring top = folder.MakeFolder(L"top");
        folder.MakeFolder(L"top\\m");
        folder.MakeFile(L"top\\m\\inside");
        const MarkedEntry marked(L"m", c.attributes, c.tag);
        EXPECT_TRUE(Delete(top).isDeleted) << c.tag;
        EXPECT_FALSE(Exists(top));
    }
}

TEST_F(DeleteDirectory, ALinkToAFileIsDeletedLikeAFile) {
    m_folder.MakeFile(L"top\\link");
    const MarkedEntry marked(L"link", FILE_ATTRIBUTE_REPARSE_POINT, IO_REPARSE_TAG_SYMLINK);
    EXPECT_TRUE(Delete(m_top).isDeleted);
    EXPECT_FALSE(Exists(m_top));
}

TEST_F(DeleteDirectory, AHiddenSystemFolderIsAFolder) {
    m_folder.MakeFolder(L"top\\m");
    m_folder.MakeFile(L"top\\m\\inside");
    const MarkedEntry marked(
        L"m", FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM, 0);
    EXPECT_TRUE(Delete(m_top).isDeleted);
    EXPECT_FALSE(Exists(m_top));
}

// A level for every two characters: as deep as the recursion can go.
TEST_F(DeleteDirectory, TheDeepestTreeIsDeleted) {
    const std::wstring top = m_folder.MakeFolder(L"t");
    std::wstring name = L"t";
    while (m_folder.PathOf(name).size() + 2 <= LongestDirectory) {
        name += L"\\d";
        m_folder.MakeFolder(name);
    }
    EXPECT_TRUE(Delete(top).isDeleted);
    EXPECT_FALSE(Exists(top));
}

// Each entry costs the same calls, however many there are.
TEST_F(DeleteDirectory, MakesTheSameCallsForEachEntry) {
    for (const int count : {1, 10, 200}) {
        const TempFolder folder;
        const std::wstring top = folder.MakeFolder(L"top");
        for (int i = 0; i < count; ++i) {
            const std::wstring name = L"top\\" + std::to_wstring(i);
            folder.MakeFolder(name);
            folder.MakeFile(name + L"\\file");
        }
        const FileCalls calls;
        EXPECT_TRUE(Delete(top).isDeleted);
        // Of a folder: found, opened, "..", the file, its deletion, the end, closed, removed twice.
        // Of the top: opened, "..", the end, closed, removed.
        EXPECT_EQ(calls.Calls().size(), static_cast<std::size_t>(9 * count + 5));
    }
}

} // namespace
