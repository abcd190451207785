// Engines differ in which keys they ask the host about, and who has the focus; the dialog's keys
// work with each.
#include <windows.h>

#include <exdispid.h>

#include "tests/app/HostedDialog.h"
#include "tests/support/ImportHook.h"

namespace {

class EngineKeys : public test::HostedDialog {
protected:
    test::Turn Key(UINT message, WPARAM key) {
        return [this, message, key] {
            MSG posted = {};
            posted.hwnd = m_dialog.m_hWnd;
            posted.message = message;
            posted.wParam = key;
            return posted;
        };
    }
};

// The engine is one that: never asks; asks and takes the host's answer; asks again and again;
// asks only when the key is dispatched to its window; takes every key without asking.
TEST_F(EngineKeys, F5FillsOnceHoweverTheEngineAsks) {
    const std::function<HRESULT(MSG*)> engines[] = {
        [](MSG*) { return S_FALSE; },
        [&](MSG* key) { return AskHost(key->message, key->wParam) == S_OK ? S_OK : S_FALSE; },
        [&](MSG* key) {
            AskHost(key->message, key->wParam);
            return AskHost(key->message, key->wParam) == S_OK ? S_OK : S_FALSE;
        },
        [](MSG*) { return S_OK; },
    };
    for (const auto& engine : engines) {
        for (const bool asksWhenDispatched : {false, true}) {
            SCOPED_TRACE(testing::PrintToString(&engine - engines) + " " +
                         testing::PrintToString(asksWhenDispatched));
            m_page.Browser.OnKey = engine;
            m_page.Browser.Keys.clear();
            std::size_t before = 0;
            HOOK_IMPORT(window, CallWindowProcW,
                        [&](WNDPROC procedure, HWND of, UINT message, WPARAM key, LPARAM lParam) {
                            if (asksWhenDispatched && message == WM_KEYUP) {
                                AskHost(message, key);
                            }
                            return window.Original(procedure, of, message, key, lParam);
                        });
            Run(
                [&] {
                    m_page.Complete();
                    before = Fills();
                },
                Key(WM_KEYDOWN, VK_F5), Key(WM_KEYUP, VK_F5),
                [&] { EXPECT_EQ(Fills(), before + 1); }, Key(WM_KEYUP, VK_F5),
                [&] { EXPECT_EQ(Fills(), before + 2) << "the next one is another"; });
            EXPECT_EQ(m_page.Browser.Keys, (std::vector<UINT>{WM_KEYUP, WM_KEYUP}))
                << "the engine would refresh when the key goes down";
        }
    }
}

TEST_F(EngineKeys, TheReloadKeyOfAKeyboardDoesNotReachIt) {
    Run(Completed(), Key(WM_KEYDOWN, VK_BROWSER_REFRESH),
        [&] { EXPECT_TRUE(m_page.Browser.Keys.empty()); });
}

TEST_F(EngineKeys, AltF4QuitsOnceHoweverTheEngineAsks) {
    for (const bool asks : {false, true}) {
        SCOPED_TRACE(asks);
        m_page.Quits = 0;
        m_page.Browser.OnKey = [&](const MSG* key) {
            return asks ? AskHost(key->message, key->wParam) : S_FALSE;
        };
        Run(
            Key(WM_SYSKEYDOWN, VK_F4),
            [&] {
                EXPECT_EQ(m_page.Quits, 0);
                EXPECT_NE(m_dialog.m_hWnd, nullptr);
            },
            Key(WM_SYSKEYUP, VK_F4),
            [&] {
                EXPECT_EQ(m_page.Quits, 1);
                EXPECT_NE(m_dialog.m_hWnd, nullptr) << "not closed by it";
            });
    }
}

TEST_F(EngineKeys, AFailureToFillThePageEndsBeforeTheLoop) {
    bool fails = false;
    HOOK_IMPORT(allocate, SysAllocString, [&](const OLECHAR* text) -> BSTR {
        return !fails || wcscmp(text, L"Sections") == 0 ? allocate.Original(text) : nullptr;
    });
    bool wentOn = false;
    Run(
        [&] {
            m_page.Complete();
            fails = true;
        },
        Key(WM_KEYUP, VK_F5),
        [&] {
            fails = false;
            wentOn = true;
        });
    EXPECT_TRUE(wentOn);
    EXPECT_EQ(Fills(), 1U);
}

TEST_F(EngineKeys, TheDocumentGetsTheFocusOfAnActiveDialog) {
    for (const bool atOnce : {false, true}) {
        SCOPED_TRACE(atOnce);
        const auto makeView = [&] {
            // Within another one, as an engine's are: the dialog manager would find a child.
            HWND parent = m_dialog.m_hWnd;
            for (int depth = 0; depth < 2; ++depth) {
                parent = CreateWindowExW(0, L"STATIC", L"", WS_CHILD | WS_VISIBLE, 0, 0, 10, 10,
                                         parent, nullptr, nullptr, nullptr);
            }
            m_page.Document.Window = parent;
        };
        m_page.Document.Sections = &m_page.Sections;
        m_page.Browser.OnNavigate = [&] {
            makeView();
            if (atOnce) {
                m_page.Complete();
            }
        };
        Run(
            [&] {
                EXPECT_EQ(GetActiveWindow(), m_dialog.m_hWnd);
                if (!atOnce) {
                    m_page.Complete();
                }
                EXPECT_EQ(GetFocus(), m_page.Document.Window)
                    << "although the dialog manager gave it to the control";
                SetFocus(GetParent(m_page.Document.Window));
                SendMessageW(m_dialog.m_hWnd, WM_ACTIVATE, WA_ACTIVE, 0);
                EXPECT_EQ(GetFocus(), m_page.Document.Window);
                SetFocus(m_dialog.m_hWnd);
                EXPECT_EQ(GetFocus(), m_page.Document.Window) << "the dialog hands it on";
            },
            [&] {
                const HWND other = CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0,
                                                   10, 10, nullptr, nullptr, nullptr, nullptr);
                m_page.Document.Sections = nullptr; // resizing would activate the dialog
                SetActiveWindow(other);
                SetFocus(other);
                m_page.Complete();
                EXPECT_EQ(GetFocus(), other) << "nothing is taken from another window";
                DestroyWindow(other);
            });
    }
}

} // namespace
