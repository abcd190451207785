// What the shell is asked for when an item is launched.
#include <gtest/gtest.h>
#include <windows.h>

#include <shellapi.h>
#include <shlobj.h>

#include <string>
#include <vector>

#include "app/CkorcontrolcenterDlg.h"
#include "tests/support/ImportHook.h"
#include "tests/support/TestInstallation.h"

namespace {

struct OpenCase {
    int type;
    const wchar_t* file;
    const wchar_t* parameters;
};

// The shell gets no window, although the dialog has one.
class ShellCalls : public testing::Test {
protected:
    ShellCalls() { m_dialog.m_hWnd = reinterpret_cast<HWND>(0x1234); }
    ~ShellCalls() override { m_dialog.m_hWnd = nullptr; }

    test::TestInstallation m_installation;
    CkorcontrolcenterDlg m_dialog;
};

TEST_F(ShellCalls, OpenFoldersDocumentsAndTopics) {
    const OpenCase cases[] = {
        {ItemFolder, L"C:\\x.chm", nullptr}, // the arguments are not passed
        {ItemDocument, L"C:\\x.chm", nullptr},
        {ItemHelpTopic, L"hh.exe", L"C:\\x.chm::/t"},
    };
    HOOK_IMPORT(admin, IsUserAnAdmin, []() -> BOOL {
        ADD_FAILURE() << "asked only for elevated programs";
        return TRUE;
    });
    for (const OpenCase& c : cases) {
        SCOPED_TRACE(c.type);
        int calls = 0;
        HOOK_IMPORT(execute, ShellExecuteW,
                    [&](HWND owner, LPCWSTR verb, LPCWSTR file, LPCWSTR parameters,
                        LPCWSTR directory, INT show) -> HINSTANCE {
                        ++calls;
                        EXPECT_EQ(owner, nullptr);
                        EXPECT_EQ(verb, nullptr);
                        EXPECT_STREQ(file, c.file);
                        EXPECT_STREQ(parameters, c.parameters);
                        EXPECT_EQ(directory, nullptr);
                        EXPECT_EQ(show, 1);
                        return nullptr; // a failure: not reported
                    });
        HOOK_IMPORT(box, MessageBoxW, [](auto...) -> int {
            ADD_FAILURE() << "the shell's failure is not reported";
            return 0;
        });
        m_dialog.LaunchItem(L"C:\\x.chm", L"::/t", c.type);
        EXPECT_EQ(calls, 1);
    }
}

struct StartCase {
    int type;
    BOOL isAdministrator;
    const wchar_t* verb;
};

TEST_F(ShellCalls, StartProgramsWithTheirArguments) {
    const StartCase cases[] = {
        {ItemProgram, FALSE, nullptr},        {ItemProgram, TRUE, nullptr},
        {ItemElevatedProgram, TRUE, nullptr}, {ItemElevatedProgram, FALSE, L"runas"},
        {ItemElevatedProgram, 2, L"runas"}, // only TRUE itself counts
    };
    for (const StartCase& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.type) + " " +
                     testing::PrintToString(c.isAdministrator));
        int calls = 0;
        int questions = 0;
        HOOK_IMPORT(admin, IsUserAnAdmin, [&]() {
            ++questions;
            return c.isAdministrator;
        });
        HOOK_IMPORT(execute, ShellExecuteExW, [&](SHELLEXECUTEINFOW* start) -> BOOL {
            ++calls;
            EXPECT_EQ(start->cbSize, 112U);
            EXPECT_EQ(start->fMask, 0x40U);
            EXPECT_EQ(start->hwnd, nullptr);
            EXPECT_STREQ(start->lpVerb, c.verb);
            EXPECT_STREQ(start->lpFile, L"C:\\p.exe");
            EXPECT_STREQ(start->lpParameters, L"-a \"b c\"");
            EXPECT_EQ(start->lpDirectory, nullptr);
            EXPECT_EQ(start->nShow, 1);
            EXPECT_EQ(start->hInstApp, nullptr);
            EXPECT_EQ(start->lpIDList, nullptr);
            EXPECT_EQ(start->lpClass, nullptr);
            EXPECT_EQ(start->hkeyClass, nullptr);
            EXPECT_EQ(start->dwHotKey, 0U);
            EXPECT_EQ(start->hProcess, nullptr);
            return FALSE;
        });
        m_dialog.LaunchItem(L"C:\\p.exe", L"-a \"b c\"", c.type);
        EXPECT_EQ(calls, 1);
        EXPECT_EQ(questions, c.type == ItemElevatedProgram ? 1 : 0)
            << "whether the user is an administrator";
    }
}

TEST_F(ShellCalls, PassEmptyArgumentsAsAnEmptyText) {
    std::vector<std::wstring> passed;
    const auto pass = [&](LPCWSTR parameters) {
        passed.emplace_back(parameters != nullptr ? parameters : L"(none)");
    };
    HOOK_IMPORT(admin, IsUserAnAdmin, []() -> BOOL { return TRUE; });
    HOOK_IMPORT(start, ShellExecuteExW, [&](SHELLEXECUTEINFOW* what) -> BOOL {
        pass(what->lpParameters);
        return TRUE;
    });
    HOOK_IMPORT(open, ShellExecuteW,
                [&](HWND, LPCWSTR, LPCWSTR, LPCWSTR parameters, auto...) -> HINSTANCE {
                    pass(parameters);
                    return nullptr;
                });
    for (const int type : {ItemProgram, ItemElevatedProgram, ItemHelpTopic}) {
        m_dialog.LaunchItem(L"C:\\x", L"", type);
    }
    EXPECT_EQ(passed, (std::vector<std::wstring>{L"", L"", L"C:\\x"}));
}

TEST_F(ShellCalls, AskForElevationOnRequestOnly) {
    BOOL started = TRUE;
    std::wstring verb;
    HOOK_IMPORT(admin, IsUserAnAdmin, []() -> BOOL { return FALSE; });
    HOOK_IMPORT(execute, ShellExecuteExW, [&](SHELLEXECUTEINFOW* start) -> BOOL {
        verb = start->lpVerb != nullptr ? start->lpVerb : L"";
        return started;
    });
    EXPECT_TRUE(m_dialog.ShellExecuteElevated(L"p", L"", false));
    EXPECT_EQ(verb, L"");
    EXPECT_TRUE(m_dialog.ShellExecuteElevated(L"p", L"", true));
    EXPECT_EQ(verb, L"runas");
    started = FALSE;
    EXPECT_FALSE(m_dialog.ShellExecuteElevated(L"p", L"", true));
}

TEST_F(ShellCalls, LeaveTheProcessHandleOpen) {
    const HANDLE process = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    ASSERT_NE(process, nullptr);
    HOOK_IMPORT(execute, ShellExecuteExW, [&](SHELLEXECUTEINFOW* start) -> BOOL {
        start->hProcess = process;
        return TRUE;
    });
    m_dialog.LaunchItem(L"p", L"", ItemProgram);
    m_dialog.LaunchItem(L"p", L"", ItemElevatedProgram);
    EXPECT_TRUE(CloseHandle(process)) << "nobody closed it before";
}

TEST_F(ShellCalls, GiveWayToAMessageForAnUnknownType) {
    for (const int type : {5, 7, -1}) {
        int boxes = 0;
        HOOK_IMPORT(box, MessageBoxW,
                    [&](HWND owner, LPCWSTR text, LPCWSTR caption, UINT style) -> int {
                        ++boxes;
                        EXPECT_EQ(owner, reinterpret_cast<HWND>(0x1234));
                        EXPECT_STREQ(text, L"This item has an invalid type.");
                        EXPECT_STREQ(caption, L"Invalid item type");
                        EXPECT_EQ(style, 0U);
                        return IDOK;
                    });
        m_dialog.LaunchItem(L"p", L"", type);
        EXPECT_EQ(boxes, 1);
    }
}

} // namespace
