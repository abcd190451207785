// The program's start, in its order.
#include <gtest/gtest.h>
#include <windows.h>

#include <commctrl.h>

#include <functional>

#include "app/CkorcontrolcenterApp.h"
#include "tests/app/ModalRun.h"
#include "tests/support/TestInstallation.h"

// The linker leads the calls of CWinApp's own step through here.
BOOL RealInitInstance(CWinApp* application) asm("__real__ZN7CWinApp12InitInstanceEv");
BOOL BaseInitInstance(CWinApp* application) asm("__wrap__ZN7CWinApp12InitInstanceEv");

namespace {

std::function<void()> g_onBaseInitInstance;

} // namespace

BOOL BaseInitInstance(CWinApp* application) {
    if (g_onBaseInitInstance) {
        g_onBaseInitInstance();
    }
    return RealInitInstance(application);
}

namespace {

using Lines = std::vector<std::string>;

// One line for each call; several openings of registry keys in a row are one.
class StartUp : public testing::Test {
protected:
    void Record(const std::string& line) {
        if (line != "registry" || m_calls.empty() || m_calls.back() != line) {
            m_calls.push_back(line);
        }
    }

    test::TestInstallation m_installation;
    test::FakePage m_page;
    Lines m_calls;
};

TEST_F(StartUp, GoesInItsOrderAndEndsWithTheDialog) {
    theApp.m_pszRegistryKey = nullptr;
    g_onBaseInitInstance = [&] {
        EXPECT_EQ(theApp.m_pszRegistryKey, nullptr);
        Record("base");
    };
    HOOK_IMPORT(controls, InitCommonControlsEx, [&](const INITCOMMONCONTROLSEX* what) -> BOOL {
        EXPECT_EQ(what->dwSize, 8U);
        EXPECT_EQ(what->dwICC, 0xFFU);
        Record("common controls");
        return TRUE;
    });
    HOOK_IMPORT(icon, LoadIconW, [&](HINSTANCE module, LPCWSTR name) {
        EXPECT_EQ(name, MAKEINTRESOURCEW(134));
        EXPECT_STREQ(theApp.m_pszRegistryKey, L"KOR Control Center");
        EXPECT_EQ(theApp.m_pMainWnd, nullptr) << "the dialog is being constructed";
        Record("icon");
        return icon.Original(module, name);
    });
    HOOK_IMPORT(area, SystemParametersInfoW, [&](UINT what, auto... rest) {
        Record("parameter " + std::to_string(what));
        return area.Original(what, rest...);
    });
    HOOK_IMPORT(metrics, GetSystemMetrics, [&](int index) {
        Record("metric " + std::to_string(index));
        return metrics.Original(index);
    });
    HOOK_IMPORT(context, GetDC, [&](HWND window) {
        Record("screen");
        return context.Original(window);
    });
    HOOK_IMPORT(open, RegOpenKeyExW, [&](auto... all) {
        Record("registry");
        return open.Original(all...);
    });
    HOOK_IMPORT(create, CreateDialogParamW,
                [&](HINSTANCE module, LPCWSTR name, HWND parent, auto... rest) {
                    EXPECT_EQ(name, MAKEINTRESOURCEW(102));
                    EXPECT_EQ(parent, nullptr);
                    EXPECT_NE(theApp.m_pMainWnd, nullptr);
                    Record("dialog");
                    return create.Original(module, name, parent, rest...);
                });
    bool ran = false;
    const INT_PTR result =
        test::RunModal(m_page, {test::Do([&] {
                           ran = true;
                           ASSERT_NE(theApp.m_pMainWnd, nullptr);
                           EXPECT_TRUE(IsWindowVisible(theApp.m_pMainWnd->m_hWnd));
                       })},
                       [] { return INT_PTR{theApp.InitInstance()}; });
    g_onBaseInitInstance = nullptr;
    EXPECT_EQ(result, FALSE);
    EXPECT_TRUE(ran);
    EXPECT_EQ(theApp.m_pMainWnd, nullptr) << "the dialog is gone";
    EXPECT_EQ(m_calls,
              (Lines{"common controls", "base", "icon", "parameter 48", "metric 7", "metric 8",
                     "metric 3", "metric 2", "metric 15", "screen", "registry", "dialog"}));
}

TEST_F(StartUp, BeginsWithWhereDllsComeFrom) {
    HOOK_IMPORT(find, GetProcAddress, [&](HMODULE module, LPCSTR name) {
        if (!IS_INTRESOURCE(name) && std::string(name) == "SetDefaultDllDirectories") {
            Record("dlls");
        }
        return find.Original(module, name);
    });
    HOOK_IMPORT(controls, InitCommonControlsEx, [&](const INITCOMMONCONTROLSEX*) -> BOOL {
        Record("common controls");
        return TRUE;
    });
    test::RunModal(m_page, {}, [] { return INT_PTR{WinMain(nullptr, nullptr, nullptr, SW_SHOW)}; });
    EXPECT_EQ(m_calls, (Lines{"dlls", "common controls"}));
}

struct Closing {
    UINT message;
    WPARAM wParam;
};

// The dialog's own command, the window's end, and the button in its caption.
constexpr Closing Closings[] = {{WM_COMMAND, IDCANCEL}, {WM_CLOSE, 0}, {WM_SYSCOMMAND, SC_CLOSE}};

TEST_F(StartUp, ClosingTheDialogEndsTheProgramWithCode0) {
    for (const Closing& closing : Closings) {
        SCOPED_TRACE(closing.message);
        bool goesOn = false;
        const INT_PTR result = test::RunModal(
            m_page,
            {test::Do([&] {
                 SendMessageW(theApp.m_pMainWnd->m_hWnd, closing.message, closing.wParam, 0);
             }),
             // The dialog manager posts the command that closes it.
             [] {
                 MSG posted = {};
                 PeekMessageW(&posted, nullptr, WM_COMMAND, WM_COMMAND, PM_REMOVE);
                 return posted;
             },
             test::Do([&] { goesOn = true; })},
            [] { return INT_PTR{WinMain(nullptr, nullptr, nullptr, SW_SHOW)}; });
        EXPECT_FALSE(goesOn);
        EXPECT_EQ(result, 0) << "the program's exit code";
        EXPECT_EQ(m_page.Quits, 0) << "nor is another one posted";
    }
}

TEST_F(StartUp, WithoutAWindowItEndsToo) {
    HOOK_IMPORT(create, CreateDialogParamW, [](auto...) -> HWND { return nullptr; });
    EXPECT_EQ(theApp.InitInstance(), FALSE);
}

} // namespace
