// The dialog's window while it is being made.
#include <windows.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "res/resource.h"
#include "tests/app/HostedDialog.h"

namespace {

// A dialog whose message map takes messages that only a creation sends.
class Recorder : public CDialog {
public:
    Recorder() : CDialog(IDD_KORCONTROLCENTER_DIALOG) {}

    std::vector<std::string> Seen;
    std::function<void()> Goes = [this] { EndDialog(IDOK); };

    BOOL OnInitDialog() override {
        Seen.emplace_back("init");
        Goes();
        return TRUE;
    }

protected:
    DECLARE_MESSAGE_MAP()

private:
    LRESULT Note(const char* message) {
        if (Seen.empty() || Seen.back() != message) {
            Seen.emplace_back(message);
        }
        return Default();
    }
    static LRESULT NoteLimits(CWnd& window, WPARAM, LPARAM) {
        return static_cast<Recorder&>(window).Note("limits");
    }
    static LRESULT NoteFrame(CWnd& window, WPARAM, LPARAM) {
        return static_cast<Recorder&>(window).Note("frame");
    }
    static LRESULT NoteCreate(CWnd& window, WPARAM, LPARAM) {
        return static_cast<Recorder&>(window).Note("create");
    }
};

// clang-format off: as the macros are written
BEGIN_MESSAGE_MAP(Recorder, CDialog)
{WM_GETMINMAXINFO, &ThisClass::NoteLimits},
{WM_NCCREATE, &ThisClass::NoteFrame},
{WM_CREATE, &ThisClass::NoteCreate},
END_MESSAGE_MAP()
    // clang-format on

    TEST(Creation, ItsOwnMessagesReachTheMessageMap) {
    Recorder dialog;
    EXPECT_EQ(dialog.DoModal(), IDOK);
    const std::vector<std::string> start(
        dialog.Seen.begin(),
        dialog.Seen.begin() +
            std::min<std::ptrdiff_t>(3, static_cast<std::ptrdiff_t>(dialog.Seen.size())));
    EXPECT_EQ(start, (std::vector<std::string>{"limits", "frame", "create"}));
    EXPECT_EQ(std::count(dialog.Seen.begin(), dialog.Seen.end(), "init"), 1);
}

TEST(Creation, WithoutTheHookTheDialogComesAllTheSame) {
    HOOK_IMPORT(hook, SetWindowsHookExW, [](auto...) -> HHOOK { return nullptr; });
    Recorder dialog;
    EXPECT_EQ(dialog.DoModal(), IDOK);
    EXPECT_EQ(dialog.m_hWnd, nullptr);
}

TEST(Creation, OfAnotherWindowMeanwhileIsNotTheDialogs) {
    HOOK_IMPORT(create, CreateDialogParamW,
                [&](HINSTANCE module, LPCWSTR name, HWND parent, DLGPROC procedure, LPARAM param) {
                    const HWND other = CreateWindowExW(0, L"STATIC", L"first", WS_POPUP, 0, 0, 10,
                                                       10, nullptr, nullptr, nullptr, nullptr);
                    EXPECT_EQ(reinterpret_cast<CDialog*>(param)->m_hWnd, nullptr);
                    DestroyWindow(other);
                    return create.Original(module, name, parent, procedure, param);
                });
    Recorder dialog;
    EXPECT_EQ(dialog.DoModal(), IDOK);
}

TEST(Creation, ThatFailsIsToldFromADialogThatEndedOtherwise) {
    Recorder dialog;
    {
        HOOK_IMPORT(create, CreateDialogParamW, [](auto...) -> HWND { return nullptr; });
        EXPECT_EQ(dialog.DoModal(), -1);
    }
    dialog.Goes = [&] { DestroyWindow(dialog.m_hWnd); };
    EXPECT_EQ(dialog.DoModal(), IDABORT);
    dialog.Goes = [&] { PostMessageW(dialog.m_hWnd, WM_NULL, 0, 0); };
    HOOK_IMPORT(get, GetMessageW, [](auto...) -> BOOL { return -1; });
    EXPECT_EQ(dialog.DoModal(), IDABORT);
}

TEST(Application, KeepsItsOwnCopyOfItsSettingsName) {
    wchar_t name[] = L"Name";
    LPCTSTR const before = AfxGetApp()->m_pszRegistryKey;
    const std::wstring old = before != nullptr ? before : L"";
    AfxGetApp()->SetRegistryKey(name);
    name[0] = L'G';
    EXPECT_STREQ(AfxGetApp()->m_pszRegistryKey, L"Name");
    AfxGetApp()->SetRegistryKey(old.c_str());
}

using FirstSize = test::HostedDialog;

TEST_F(FirstSize, IsAtLeastTheWindowsOwn) {
    m_dialog.WindowWidth = 1300;
    m_dialog.WindowHeight = 1100;
    bool looked = false;
    m_page.Browser.OnNavigate = [&] {
        looked = true;
        EXPECT_EQ(WindowSize().cx, 1300) << "larger than the template";
        EXPECT_EQ(WindowSize().cy, 1100);
    };
    Run();
    EXPECT_TRUE(looked);
}

TEST_F(FirstSize, IsNotLargerThanTheWorkArea) {
    HOOK_IMPORT(monitor, GetMonitorInfoW, [](HMONITOR, MONITORINFO* info) -> BOOL {
        info->rcWork = {10, 20, 810, 620};
        return TRUE;
    });
    bool looked = false;
    m_page.Browser.OnNavigate = [&] {
        looked = true;
        EXPECT_EQ(WindowSize().cx, 800);
        EXPECT_LE(WindowSize().cy, 600);
    };
    m_dialog.WindowHeight = 10;
    m_dialog.WindowWidth = 10;
    Run();
    EXPECT_TRUE(looked);
}

} // namespace
