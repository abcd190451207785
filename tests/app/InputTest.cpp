// What reaches the dialog: the page's events, keys, and the window's messages.
#include <windows.h>

#include <shellapi.h>

#include "tests/app/HostedDialog.h"

namespace {

using Input = test::HostedDialog;

TEST_F(Input, EventsOfItemsReachTheirHandlers) {
    test::FakeStyle style;
    test::FakeElement item;
    item.ClassName = L"item";
    item.Id = L"NONE_0";
    item.Text = L"text";
    item.Style = &style;
    test::FakeEvent event;
    event.Source = &item;
    const VARIANT argument = test::VariantOf(event);
    constexpr auto MouseOver = static_cast<DISPID>(0x80010008);
    constexpr auto MouseOut = static_cast<DISPID>(0x80010009);
    Run(Completed(), [&] {
        const test::FakeDocument& document = m_page.Document;
        EXPECT_EQ(document.Fire(MouseOver, {argument}), S_OK);
        ASSERT_EQ(style.Colors.size(), 1U);
        EXPECT_EQ(style.Colors[0].lVal, 0xFF0000);
        EXPECT_EQ(document.Fire(MouseOut, {argument}), S_OK);
        ASSERT_EQ(style.Colors.size(), 2U);
        EXPECT_EQ(style.Colors[1].lVal, 0x0000FF);

        for (const wchar_t* const other : {L"items", L"ite", L"Item", L""}) {
            item.ClassName = other;
            document.Fire(MouseOver, {argument});
        }
        item.ClassName = std::nullopt;
        document.Fire(MouseOver, {argument});
        item.ClassName = L"item";
        document.Fire(DISPID_MOUSEMOVE, {argument});
        document.Fire(MouseOver, {});
        event.Source = nullptr;
        document.Fire(MouseOver, {argument});
        EXPECT_EQ(style.Colors.size(), 2U) << "of other elements, and other events";
    });
    EXPECT_EQ(item.References, 0);
    EXPECT_EQ(event.References, 0);
}

TEST_F(Input, AClickOnAnItemStartsIt) {
    m_installation.SetText(test::InstallKey, L"installdir", L"C:\\KorTest\\");
    test::FakeElement item;
    item.ClassName = L"item";
    item.Text = L"text";
    test::FakeEvent event;
    event.Source = &item;
    std::wstring opened;
    HOOK_IMPORT(execute, ShellExecuteW, [&](HWND, LPCWSTR, LPCWSTR file, auto...) -> HINSTANCE {
        opened = file;
        return nullptr;
    });
    Run(Completed(), [&] {
        auto* const section = new ControlCenterSection(L"mine", L"");
        m_dialog.Sections.Add(section);
        section->Add(new ControlCenterItem(section, L"", L"", L"", L"C:\\there", ItemFolder, L""));
        item.Id = L"MINE_0";
        m_page.Document.Fire(DISPID_CLICK, {test::VariantOf(event)});
    });
    EXPECT_EQ(opened, L"C:\\there");
}

TEST_F(Input, KeysGoToTheControlFirst) {
    HRESULT answer = S_OK;
    m_page.Browser.OnKey = [&](MSG*) { return answer; };
    // Dispatched by the loop, or by the dialog manager, which takes what the control leaves.
    int dispatched = 0;
    HOOK_IMPORT(dispatch, DispatchMessageW, [&](const MSG* message) -> LRESULT {
        dispatched += message->message != WM_NULL ? 1 : 0;
        return 0;
    });
    HOOK_IMPORT(window, CallWindowProcW,
                [&](WNDPROC procedure, HWND of, UINT message, auto... rest) {
                    dispatched += message >= WM_KEYFIRST && message <= WM_KEYLAST ? 1 : 0;
                    return window.Original(procedure, of, message, rest...);
                });
    const auto post = [&](UINT message, HRESULT then, WPARAM key = 'A') {
        return [&, message, then, key] {
            answer = then;
            MSG posted = {};
            posted.hwnd = m_dialog.m_hWnd;
            posted.message = message;
            posted.wParam = key;
            return posted;
        };
    };
    Run(
        post(WM_KEYDOWN, S_OK), [&] { EXPECT_EQ(dispatched, 0) << "it was used up"; },
        post(WM_KEYUP, S_FALSE, VK_F5), [&] { EXPECT_EQ(dispatched, 1) << "it was not"; },
        post(WM_MOUSEMOVE, S_OK), post(WM_TIMER, S_OK), post(WM_SYSKEYUP, S_OK),
        [&] {
            EXPECT_EQ(m_page.Browser.Keys, (std::vector<UINT>{WM_KEYDOWN, WM_KEYUP, WM_SYSKEYUP}));
        },
        [] {
            MSG elsewhere = {};
            elsewhere.message = WM_KEYDOWN;
            elsewhere.hwnd = GetDesktopWindow();
            return elsewhere;
        },
        [&] { EXPECT_EQ(m_page.Browser.Keys.size(), 3U); });
}

// The keys go from the queue to the control and from there to its host, as they do with a page that
// has the focus; the dialog manager, which would close the dialog, never sees them.
TEST_F(Input, AltF4EndsThroughTheQuitMessage) {
    // Without the help of RunModal, which takes quit messages away.
    INT_PTR result = 0;
    m_page.Browser.OnKey = [&](const MSG* key) { return AskHost(key->message, key->wParam); };
    std::vector<UINT> seen;
    HOOK_IMPORT(window, CallWindowProcW,
                [&](WNDPROC procedure, HWND of, UINT message, auto... rest) {
                    if ((message >= WM_KEYFIRST && message <= WM_KEYLAST) ||
                        message == WM_SYSCOMMAND || message == WM_CLOSE || message == WM_COMMAND) {
                        seen.push_back(message);
                    }
                    return window.Original(procedure, of, message, rest...);
                });
    HOOK_IMPORT(create, CoCreateInstance,
                [&](REFCLSID, IUnknown*, DWORD, REFIID iid, void** object) {
                    return m_page.Browser.Query(iid, object);
                });
    m_page.Browser.OnNavigate = [&] {
        constexpr LPARAM WithAlt = 1 << 29;
        PostMessageW(m_dialog.m_hWnd, WM_SYSKEYDOWN, VK_F4, WithAlt);
        PostMessageW(m_dialog.m_hWnd, WM_SYSKEYUP, VK_F4, WithAlt);
    };
    result = m_dialog.DoModal();
    EXPECT_EQ(m_page.Browser.Keys, (std::vector<UINT>{WM_SYSKEYDOWN, WM_SYSKEYUP}));
    EXPECT_TRUE(seen.empty()) << testing::PrintToString(seen);
    EXPECT_EQ(result, IDABORT) << "neither OK nor cancel";
    EXPECT_EQ(m_dialog.m_hWnd, nullptr);
    MSG message = {};
    EXPECT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE))
        << "for the loops outside";
    EXPECT_EQ(message.wParam, 0U);
}

TEST_F(Input, TheWindowsMessagesReachTheDialog) {
    int painted = 0;
    bool isIconic = false;
    HOOK_IMPORT(iconic, IsIconic, [&](HWND) -> BOOL { return isIconic ? TRUE : FALSE; });
    HOOK_IMPORT(draw, DrawIcon, [&](auto...) -> BOOL {
        ++painted;
        return TRUE;
    });
    Run([&] {
        isIconic = true;
        InvalidateRect(m_dialog.m_hWnd, nullptr, FALSE);
        SendMessageW(m_dialog.m_hWnd, WM_PAINT, 0, 0);
        isIconic = false;
        MINMAXINFO info = {};
        m_dialog.WindowWidth = 321;
        m_dialog.WindowHeight = 123;
        SendMessageW(m_dialog.m_hWnd, WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&info));
        EXPECT_EQ(info.ptMinTrackSize.x, 321);
        EXPECT_EQ(info.ptMinTrackSize.y, 123);
    });
    EXPECT_EQ(painted, 1);
}

} // namespace
