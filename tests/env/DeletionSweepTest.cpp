// Every system call of a deletion fails once.
#include <gtest/gtest.h>

#include "env/DeleteDirectory.h"
#include "tests/env/TempFolder.h"
#include "tests/support/FileCalls.h"

namespace {

using test::FileCalls;

// What a folder is filled with, a directory before its entries; the deletion meets the entries of
// each directory in this order too.
constexpr const wchar_t* Folders[] = {L"top\\sub", L"top\\sub\\deep"};
constexpr const wchar_t* Files[] = {L"top\\a.txt", L"top\\sub\\b.txt", L"top\\z.txt"};

constexpr wchar_t ExpectedCalls[] = L"FindFirst ~\\*\n"
                                    L"FindNext ..\n"
                                    L"FindNext a.txt\n"
                                    L"SetFileAttributes ~\\a.txt\n"
                                    L"DeleteFile ~\\a.txt\n"
                                    L"FindNext sub\n"
                                    L"FindFirst ~\\sub\\*\n"
                                    L"FindNext ..\n"
                                    L"FindNext b.txt\n"
                                    L"DeleteFile ~\\sub\\b.txt\n"
                                    L"FindNext deep\n"
                                    L"FindFirst ~\\sub\\deep\\*\n"
                                    L"FindNext ..\n"
                                    L"FindNext -\n"
                                    L"FindClose \n"
                                    L"RemoveDirectory ~\\sub\\deep\n"
                                    L"RemoveDirectory ~\\sub\\deep\n"
                                    L"FindNext -\n"
                                    L"FindClose \n"
                                    L"RemoveDirectory ~\\sub\n"
                                    L"RemoveDirectory ~\\sub\n"
                                    L"FindNext z.txt\n"
                                    L"SetFileAttributes ~\\z.txt\n"
                                    L"DeleteFile ~\\z.txt\n"
                                    L"FindNext -\n"
                                    L"FindClose \n"
                                    L"RemoveDirectory ~\n";

class DeletionSweep : public testing::Test {
protected:
    DeletionSweep() {
        m_folder.MakeFolder(L"top");
        for (const wchar_t* const name : Folders) {
            m_folder.MakeFolder(name);
        }
        for (const wchar_t* const name : Files) {
            m_folder.MakeFile(name);
        }
    }

    std::wstring Top() const { return m_folder.PathOf(L"top"); }

    // What is there must be what no recorded call deleted.
    void ExpectOnlyTheDeletedIsGone(const FileCalls& calls) const {
        std::vector<std::wstring> all{Top()};
        for (const wchar_t* const name : Folders) {
            all.push_back(m_folder.PathOf(name));
        }
        for (const wchar_t* const name : Files) {
            all.push_back(m_folder.PathOf(name));
        }
        for (const std::wstring& path : all) {
            bool isDeleted = false;
            for (const FileCalls::Call& call : calls.Calls()) {
                const bool deletes =
                    call.function == "DeleteFile" || call.function == "RemoveDirectory";
                isDeleted = isDeleted || (deletes && call.succeeded && call.text == path);
            }
            EXPECT_EQ(test::Exists(path), !isDeleted) << path;
        }
    }

    test::TempFolder m_folder;
};

TEST_F(DeletionSweep, TheCallsComeInThisOrder) {
    const FileCalls calls;
    EXPECT_TRUE(DeleteDirectoryForced(Top().c_str(), 1));
    EXPECT_EQ(calls.Listed(Top()), ExpectedCalls);
    EXPECT_TRUE(calls.IsBalanced());
    for (const FileCalls::Call& call : calls.Calls()) {
        if (call.function == "SetFileAttributes") {
            EXPECT_EQ(call.attributes, DWORD{FILE_ATTRIBUTE_NORMAL});
        }
    }
    EXPECT_FALSE(test::Exists(Top()));
}

TEST_F(DeletionSweep, WithoutTheModeNoAttributesAreSet) {
    std::wstring expected = ExpectedCalls;
    for (const wchar_t* const line :
         {L"SetFileAttributes ~\\a.txt\n", L"SetFileAttributes ~\\z.txt\n"}) {
        expected.erase(expected.find(line), std::wcslen(line));
    }
    const FileCalls calls;
    EXPECT_TRUE(DeleteDirectory(Top().c_str()));
    EXPECT_EQ(calls.Listed(Top()), expected);
}

class DeletionSweepOf : public DeletionSweep, public testing::WithParamInterface<int> {};

// Failures that a deletion carries on after: attributes that need not be cleared, the removal of a
// directory that is removed already, the end of a search.
bool MayFail(const std::vector<FileCalls::Call>& calls, std::size_t at) {
    const FileCalls::Call& call = calls[at];
    return call.function == "SetFileAttributes" || call.function == "FindClose" ||
           (call.function == "RemoveDirectory" && calls[at - 1].function == "RemoveDirectory");
}

TEST_P(DeletionSweepOf, NothingBehindTheFailingCallIsDeleted) {
    const auto failing = static_cast<std::size_t>(GetParam());
    DWORD error = 0;
    bool isDeleted = false;
    FileCalls calls(GetParam());
    {
        SetLastError(ERROR_SUCCESS);
        isDeleted = DeleteDirectoryForced(Top().c_str(), 1);
        error = GetLastError();
    }
    const std::vector<FileCalls::Call>& made = calls.Calls();
    ASSERT_GT(made.size(), failing);
    EXPECT_FALSE(made[failing].succeeded);
    EXPECT_TRUE(calls.IsBalanced());
    ExpectOnlyTheDeletedIsGone(calls);

    if (MayFail(made, failing)) {
        EXPECT_TRUE(isDeleted);
        EXPECT_EQ(calls.Listed(Top()), ExpectedCalls);
        return;
    }
    EXPECT_FALSE(isDeleted);
    EXPECT_EQ(error, FileCalls::InjectedError);
    for (std::size_t at = failing + 1; at < made.size(); ++at) {
        EXPECT_EQ(made[at].function, "FindClose") << at;
    }
    EXPECT_TRUE(test::Exists(Top()));
}

constexpr int CallCount = 27;
INSTANTIATE_TEST_SUITE_P(EachCall, DeletionSweepOf, testing::Range(0, CallCount));

TEST_F(DeletionSweep, CoversEveryCall) {
    const std::wstring expected = ExpectedCalls;
    EXPECT_EQ(std::count(expected.begin(), expected.end(), L'\n'), CallCount);
}

} // namespace
