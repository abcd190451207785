// The dialog's own rules: its sizes, what it answers to the window manager and to keys.
#include <gtest/gtest.h>
#include <windows.h>

#include <cstdio>

#include "app/CkorcontrolcenterDlg.h"
#include "tests/app/HostedDialog.h"
#include "tests/support/GuardedMemory.h"
#include "tests/support/ImportHook.h"
#include "tests/support/SystemCalls.h"
#include "tests/support/TestInstallation.h"

namespace {

// Access to a private member, by which an explicit instantiation may be named.
std::int64_t TitleLengthOf(const CkorcontrolcenterDlg& dialog);
template <std::int64_t CkorcontrolcenterDlg::* Member>
struct TitleLengthAccess {
    friend std::int64_t TitleLengthOf(const CkorcontrolcenterDlg& dialog) { return dialog.*Member; }
};
template struct TitleLengthAccess<&CkorcontrolcenterDlg::m_titleLength>;

struct TestDialog : CkorcontrolcenterDlg {
    using CkorcontrolcenterDlg::GetDHtmlEventMap;
    using CkorcontrolcenterDlg::OnGetMinMaxInfo;
    using CkorcontrolcenterDlg::OnPaint;
};

struct ScreenCase {
    int dpi; // 0: no device context
    std::int64_t sectionBaseHeight;
    std::int64_t itemHeight;
    std::int64_t baseWidth;
    std::int64_t windowWidth;
};

// With metrics of 100 + their index: 102 + 2 x (108 + 320) = 958, and in the height
// 115 + 2 x 107 + 234 + 103 = 666.
constexpr ScreenCase Screens[] = {
    {0, 45, 20, 958, 958},     {96, 45, 20, 958, 958},    {120, 56, 25, 1405, 1405},
    {144, 67, 30, 1405, 1404}, {192, 90, 40, 1405, 1405},
};

TEST(Dialog, ItsSizesFollowTheScreen) {
    const test::TestInstallation installation;
    for (const ScreenCase& c : Screens) {
        SCOPED_TRACE(c.dpi);
        HOOK_IMPORT(metrics, GetSystemMetrics, [](int index) { return 100 + index; });
        HOOK_IMPORT(context, GetDC, [&](HWND) {
            return reinterpret_cast<HDC>(static_cast<INT_PTR>(c.dpi != 0 ? 0x1234 : 0));
        });
        HOOK_IMPORT(capability, GetDeviceCaps, [&](auto...) { return c.dpi; });
        HOOK_IMPORT(release, ReleaseDC, [](auto...) { return 1; });
        const TestDialog dialog;
        EXPECT_EQ(dialog.SectionBaseHeight, c.sectionBaseHeight);
        EXPECT_EQ(dialog.ItemHeight, c.itemHeight);
        EXPECT_EQ(dialog.BaseWidth, c.baseWidth);
        EXPECT_EQ(dialog.WindowWidth, c.windowWidth);
        EXPECT_EQ(dialog.BaseHeight, 666);
        EXPECT_EQ(dialog.WindowHeight, 666) << "no valid installation: no rows are added";
        EXPECT_EQ(dialog.ColumnCount, 2);
    }
}

TEST(Dialog, KeepsTheLengthOfItsTitle) {
    const test::TestInstallation installation;
    const TestDialog dialog;
    EXPECT_EQ(TitleLengthOf(dialog), 41) << "of \"Vantrel Imaging Library >> Control Center\"";
}

TEST(Dialog, ServesThreeEventsOfItemsAndNoOthers) {
    const test::TestInstallation installation;
    TestDialog dialog;
    std::vector<std::pair<DISPID, std::wstring>> entries;
    for (const auto* entry = dialog.GetDHtmlEventMap(); entry->szName != nullptr; ++entry) {
        entries.emplace_back(entry->dispId, entry->szName);
    }
    EXPECT_EQ(entries, (std::vector<std::pair<DISPID, std::wstring>>{
                           {static_cast<DISPID>(0x80010008), L"item"},
                           {static_cast<DISPID>(0x80010009), L"item"},
                           {-600, L"item"}}));
}

TEST(Dialog, TheConstructorQueriesBuildsAndComposes) {
    const test::TestInstallation installation;
    installation.SetText(test::LibraryKey, L"KorVersion", L"1");
    installation.SetText(test::InstallKey, L"installdir", L"C:\\KorTest\\");
    const TestDialog dialog;
    EXPECT_STREQ(dialog.InstallDir.Text(), L"C:\\KorTest\\");
    EXPECT_GT(dialog.Sections.Count(), 0);
    EXPECT_NE(std::wstring(dialog.PageHtml.Text()).find(L"<table class=\"innertable\""),
              std::wstring::npos);
    EXPECT_EQ(dialog.WindowHeight, dialog.BaseHeight + dialog.RowCount * dialog.SectionBaseHeight);
}

TEST(Dialog, TheConstructorAsksBeforeItBuilds) {
    const test::TestInstallation installation;
    ControlCenterPage page;
    const test::Calls expected = test::CallsOf([&] {
        page.QueryInstallation();
        page.BuildSections();
        page.ComposePage();
    });
    EXPECT_EQ(test::CallsOf([] { const TestDialog dialog; }), expected);
    EXPECT_GT(expected.size(), 4U);
}

struct TrackCase {
    std::int64_t windowWidth, windowHeight;
    LONG minX, minY, maxX, maxY;
};

// The work area is 1000 x 800, the framework's values are 1, 2, 3000 and 4000.
constexpr TrackCase Tracks[] = {
    {700, 600, 700, 600, 3000, 4000}, {1000, 800, 1000, 800, 3000, 4000},
    {1001, 600, 1, 600, 1000, 4000},  {700, 801, 700, 2, 3000, 800},
    {1001, 801, 1, 2, 1000, 800},     {5000000000, 5000000000, 1, 2, 1000, 800},
};

TEST(Dialog, TheTrackingSizesFollowTheWorkArea) {
    const test::TestInstallation installation;
    HOOK_IMPORT(area, SystemParametersInfoW, [](UINT what, UINT, PVOID out, UINT) -> BOOL {
        EXPECT_EQ(what, 48U);
        *static_cast<RECT*>(out) = {50, 20, 1050, 820};
        return TRUE;
    });
    TestDialog dialog;
    for (const TrackCase& c : Tracks) {
        SCOPED_TRACE(testing::PrintToString(c.windowWidth) + " x " +
                     testing::PrintToString(c.windowHeight));
        dialog.WindowWidth = c.windowWidth;
        dialog.WindowHeight = c.windowHeight;
        MINMAXINFO info = {{11, 12}, {13, 14}, {15, 16}, {1, 2}, {3000, 4000}};
        dialog.OnGetMinMaxInfo(&info);
        EXPECT_EQ(info.ptMinTrackSize.x, c.minX);
        EXPECT_EQ(info.ptMinTrackSize.y, c.minY);
        EXPECT_EQ(info.ptMaxTrackSize.x, c.maxX);
        EXPECT_EQ(info.ptMaxTrackSize.y, c.maxY);
        const LONG others[] = {info.ptReserved.x, info.ptReserved.y,    info.ptMaxSize.x,
                               info.ptMaxSize.y,  info.ptMaxPosition.x, info.ptMaxPosition.y};
        for (int i = 0; i < 6; ++i) {
            EXPECT_EQ(others[i], 11 + i);
        }
    }
}

TEST(Dialog, WithoutAWorkAreaEverySizeIsTooLarge) {
    const test::TestInstallation installation;
    HOOK_IMPORT(area, SystemParametersInfoW, [](auto...) -> BOOL { return FALSE; });
    TestDialog dialog;
    MINMAXINFO info = {{}, {}, {}, {1, 2}, {3, 4}};
    dialog.OnGetMinMaxInfo(&info);
    EXPECT_EQ(info.ptMinTrackSize.x, 1);
    EXPECT_EQ(info.ptMaxTrackSize.x, 0);
}

struct KeyCase {
    UINT message;
    WPARAM key;
    HRESULT result;
    int quits;
};

constexpr KeyCase Keys[] = {
    {WM_KEYUP, VK_F5, E_FAIL, 0},    {WM_KEYDOWN, VK_F5, S_OK, 0},
    {WM_SYSKEYUP, VK_F5, S_OK, 0},   {WM_SYSKEYUP, VK_F4, S_OK, 1},
    {WM_SYSKEYDOWN, VK_F4, S_OK, 0}, {WM_KEYUP, VK_F4, S_OK, 0},
    {WM_KEYDOWN, VK_TAB, S_OK, 0},   {WM_KEYUP, 'A', S_OK, 0},
    {WM_CHAR, VK_F5, S_OK, 0},       {WM_KEYDOWN, VK_ESCAPE, S_OK, 0},
};

TEST(Dialog, TakesEveryKeyFromThePage) {
    const test::TestInstallation installation;
    TestDialog dialog;
    for (const KeyCase& c : Keys) {
        SCOPED_TRACE(testing::PrintToString(c.message) + " " + testing::PrintToString(c.key));
        int quits = 0;
        HOOK_IMPORT(quit, PostQuitMessage, [&](int code) {
            ++quits;
            EXPECT_EQ(code, 0);
        });
        MSG message = {};
        message.message = c.message;
        message.wParam = c.key;
        EXPECT_EQ(dialog.TranslateAccelerator(&message, nullptr, 0), c.result);
        EXPECT_EQ(quits, c.quits);
    }
    EXPECT_EQ(dialog.TranslateAccelerator(nullptr, nullptr, 0), S_OK);
    static_assert(E_FAIL == static_cast<HRESULT>(0x80004005));
}

TEST(Dialog, MinimisedItPaintsItsIcon) {
    const test::TestInstallation installation;
    std::vector<std::string> log;
    const HDC dc = reinterpret_cast<HDC>(0x4321);
    const HICON icon = reinterpret_cast<HICON>(0x99);
    HOOK_IMPORT(load, LoadIconW, [&](auto...) { return icon; });
    TestDialog dialog;
    dialog.m_hWnd = reinterpret_cast<HWND>(0x1234);
    HOOK_IMPORT(iconic, IsIconic, [](HWND) -> BOOL { return TRUE; });
    HOOK_IMPORT(begin, BeginPaint, [&](HWND window, PAINTSTRUCT* paint) {
        EXPECT_EQ(window, dialog.m_hWnd);
        log.emplace_back("begin");
        paint->hdc = dc;
        return dc;
    });
    HOOK_IMPORT(end, EndPaint, [&](HWND, const PAINTSTRUCT* paint) -> BOOL {
        EXPECT_EQ(paint->hdc, dc);
        log.emplace_back("end");
        return TRUE;
    });
    HOOK_IMPORT(send, SendMessageW, [&](HWND window, UINT message, WPARAM w, LPARAM l) -> LRESULT {
        EXPECT_EQ(window, dialog.m_hWnd);
        EXPECT_EQ(message, 0x27U);
        EXPECT_EQ(w, reinterpret_cast<WPARAM>(dc));
        EXPECT_EQ(l, 0);
        log.emplace_back("erase");
        return 0;
    });
    HOOK_IMPORT(client, GetClientRect, [](HWND, RECT* rect) -> BOOL {
        *rect = {0, 0, 101, 64};
        return TRUE;
    });
    HOOK_IMPORT(metrics, GetSystemMetrics, [](int index) {
        return index == SM_CXICON ? 32 : index == SM_CYICON ? 33 : -1000;
    });
    HOOK_IMPORT(draw, DrawIcon, [&](HDC on, int x, int y, HICON drawn) -> BOOL {
        EXPECT_EQ(on, dc);
        EXPECT_EQ(x, 35) << "(101 - 32 + 1) / 2";
        EXPECT_EQ(y, 16) << "(64 - 33 + 1) / 2";
        EXPECT_EQ(drawn, icon);
        log.emplace_back("draw");
        return TRUE;
    });
    dialog.OnPaint();
    dialog.m_hWnd = nullptr;
    EXPECT_EQ(log, (std::vector<std::string>{"begin", "erase", "draw", "end"}));
}

TEST(Dialog, OtherwiseTheWindowPaintsItself) {
    const test::TestInstallation installation;
    TestDialog dialog;
    int passedOn = 0;
    HOOK_IMPORT(iconic, IsIconic, [](HWND) -> BOOL { return FALSE; });
    HOOK_IMPORT(begin, BeginPaint, [](auto...) -> HDC {
        ADD_FAILURE() << "painted by the dialog";
        return nullptr;
    });
    HOOK_IMPORT(call, CallWindowProcW, [&](auto...) -> LRESULT {
        ++passedOn;
        return 0;
    });
    dialog.OnPaint();
    EXPECT_EQ(passedOn, 1);
}

using PageOfDialog = test::HostedDialog;
using test::Do;

TEST_F(PageOfDialog, LeavesTheFocusToTheSystem) {
    struct Dialog : CkorcontrolcenterDlg {
        BOOL OnInitDialog() override { return Result = CkorcontrolcenterDlg::OnInitDialog(); }
        BOOL Result = -1;
    };
    Dialog dialog;
    test::RunModal(dialog, m_page, {});
    EXPECT_EQ(dialog.Result, TRUE);
}

TEST_F(PageOfDialog, ItsTextIsFreedBeforeTheWindowIsResizedAndItsElementReleasedAfter) {
    std::vector<std::string> log;
    HOOK_IMPORT(free, SysFreeString, [&](BSTR text) {
        if (text != nullptr && m_dialog.PageHtml.Length() > 0 &&
            std::wstring(text) == m_dialog.PageHtml.Text()) {
            log.emplace_back("free");
        }
        free.Original(text);
    });
    HOOK_IMPORT(resize, SetWindowPos, [&](auto... all) -> BOOL {
        log.emplace_back("resize");
        return resize.Original(all...);
    });
    m_page.Sections.OnRelease = [&] { log.emplace_back("release"); };
    Run(Completed());
    EXPECT_EQ(log, (std::vector<std::string>{"free", "resize", "release"}));
}

TEST_F(PageOfDialog, IsNoLargerThanASmallWorkArea) {
    HOOK_IMPORT(area, SystemParametersInfoW, [&](UINT what, UINT w, PVOID out, UINT flags) -> BOOL {
        if (what != SPI_GETWORKAREA) {
            return area.Original(what, w, out, flags);
        }
        *static_cast<RECT*>(out) = {50, 20, 450, 320};
        return TRUE;
    });
    CkorcontrolcenterDlg dialog;
    SIZE filled = {};
    test::RunModal(dialog, m_page, {Do([&] { m_page.Complete(); }), Do([&] {
                                        RECT window = {};
                                        GetWindowRect(dialog.m_hWnd, &window);
                                        filled = {window.right - window.left,
                                                  window.bottom - window.top};
                                    })});
    EXPECT_GT(dialog.WindowWidth, 400);
    EXPECT_GT(dialog.WindowHeight, 300);
    EXPECT_EQ(filled.cx, 400);
    EXPECT_EQ(filled.cy, 300);
}

using PageOfDialogDeathTest = PageOfDialog;

TEST_F(PageOfDialogDeathTest, WithoutMemoryToComposeItTheProcessEnds) {
    const auto fill = [&] {
        HOOK_IMPORT(box, MessageBoxW, [](HWND, LPCWSTR text, LPCWSTR caption, UINT style) {
            std::fprintf(stderr, "[%ls|%ls|%u]", text, caption, style);
            return IDOK;
        });
        // The page's text as it is when the list of sections is in it.
        const std::size_t size = static_cast<std::size_t>(m_dialog.PageHtml.Capacity());
        Run(Completed(), [&] {
            const test::AllocationFailure failure(1, size * sizeof(wchar_t));
            AskHost(WM_KEYUP, VK_F5);
        });
    };
    EXPECT_EXIT(fill(), testing::ExitedWithCode(1),
                "\\[Not enough heap memory to process\\.\\|Fatal memory error\\.\\|0\\]");
}

} // namespace
