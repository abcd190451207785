// The dialog as the host of its page: the control's life and the filling of the page.
#include <comdef.h>

#include <memory>

#include "mfc/ResourceAddress.h"
#include "tests/app/HostedDialog.h"

namespace {

using Lines = std::vector<std::string>;
using test::Do;
using test::RunModal;

using Host = test::HostedDialog;

TEST_F(Host, OpensTheControlInOrderAndClosesItInReverse) {
    RECT client = {};
    Run(
        [&] {
            EXPECT_EQ(m_page.Browser.ConnectedTo, __uuidof(DWebBrowserEvents2));
            m_page.Complete();
            EXPECT_EQ(m_page.Document.ConnectedTo, __uuidof(HTMLDocumentEvents2));
        },
        [&] { GetClientRect(m_dialog.m_hWnd, &client); });
    EXPECT_EQ(m_page.Log,
              (Lines{"create", "site", "browser advise", "verb -4", "navigate", "document advise",
                     "innerHTML", "document unadvise", "browser unadvise", "close", "no site"}));
    ASSERT_EQ(m_page.Browser.Navigated.size(), 1U);
    EXPECT_EQ(m_page.Browser.Navigated[0], std::wstring(ResourceAddress(129)));
    EXPECT_EQ(m_page.Browser.References, 0);
    EXPECT_EQ(m_page.Document.References, 0);
}

TEST_F(Host, TheDialogIsSetUpInOrder) {
    Lines log;
    HOOK_IMPORT(send, SendMessageW, [&](HWND window, UINT message, WPARAM w, LPARAM l) -> LRESULT {
        if (message == WM_SETICON) {
            EXPECT_EQ(reinterpret_cast<HICON>(l),
                      LoadIconW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(134)));
            log.push_back("icon " + std::to_string(w));
        }
        return send.Original(window, message, w, l);
    });
    HOOK_IMPORT(text, SetWindowTextW, [&](HWND window, LPCWSTR title) -> BOOL {
        EXPECT_STREQ(title, L"Vantrel Imaging Library >> Control Center");
        log.emplace_back("title");
        return text.Original(window, title);
    });
    m_page.Browser.OnNavigate = [&] {
        IDocHostUIHandler* handler = nullptr;
        ASSERT_EQ(m_page.Browser.Site->QueryInterface(IID_PPV_ARGS(&handler)), S_OK);
        DOCHOSTUIINFO info = {};
        info.cbSize = sizeof(info);
        EXPECT_EQ(handler->GetHostInfo(&info), S_OK);
        EXPECT_EQ(info.dwFlags, 0x80U) << "set before the base's initialisation";
        handler->Release();
        log.emplace_back("base");
    };
    Run([&] {
        wchar_t title[100];
        GetWindowTextW(m_dialog.m_hWnd, title, 100);
        EXPECT_STREQ(title, L"Vantrel Imaging Library >> Control Center");
    });
    EXPECT_EQ(log, (Lines{"base", "icon 1", "icon 0", "title"}));
}

TEST_F(Host, APageThatIsCompleteAtOnceIsFilledToo) {
    m_page.Browser.OnNavigate = [&] { EXPECT_EQ(m_page.Complete(), S_OK); };
    Run([&] {
        ASSERT_EQ(m_page.Sections.InnerHtml.size(), 1U);
        EXPECT_EQ(m_page.Sections.InnerHtml[0], m_dialog.PageHtml.Text());
        EXPECT_EQ(WindowSize().cx, m_dialog.WindowWidth);
        EXPECT_EQ(WindowSize().cy, m_dialog.WindowHeight);
    });
}

TEST_F(Host, ThePageIsFilledWhenItIsComplete) {
    Run([&] { EXPECT_TRUE(m_page.Sections.InnerHtml.empty()); },
        [&] { EXPECT_EQ(m_page.Complete(), S_OK); },
        [&] {
            EXPECT_EQ(m_page.Document.Asked, std::vector<std::wstring>{L"Sections"});
            ASSERT_EQ(m_page.Sections.InnerHtml.size(), 1U);
            EXPECT_EQ(m_page.Sections.InnerHtml[0], m_dialog.PageHtml.Text());
            EXPECT_EQ(m_page.Sections.References, 0);
        });
}

TEST_F(Host, FramesWithinThePageDoNotCount) {
    test::FakeDocument frame;
    Run([&] { m_page.Complete(frame); },
        [&] {
            m_page.Browser.Fire(252, {{}, VariantOf(m_page.Browser)});
            m_page.Browser.Fire(259, {});
        });
    EXPECT_TRUE(m_page.Sections.InnerHtml.empty());
}

TEST_F(Host, TheWindowIsResizedInPlace) {
    int calls = 0;
    HOOK_IMPORT(resize, SetWindowPos,
                [&](HWND window, HWND after, int x, int y, int cx, int cy, UINT flags) -> BOOL {
                    ++calls;
                    EXPECT_EQ(window, m_dialog.m_hWnd);
                    EXPECT_EQ(cx, m_dialog.WindowWidth);
                    EXPECT_EQ(cy, m_dialog.WindowHeight);
                    EXPECT_EQ(flags, 0x206U);
                    EXPECT_EQ(m_page.Log.back(), "innerHTML") << "once the page is filled";
                    return resize.Original(window, after, x, y, cx, cy, flags);
                });
    Run(Completed());
    EXPECT_EQ(calls, 1);
}

TEST_F(Host, F5FillsThePageFromScratch) {
    Run(Completed(), [&] {
        const std::int64_t sections = m_dialog.Sections.Count();
        const std::int64_t height = m_dialog.WindowHeight;
        EXPECT_EQ(height, m_dialog.BaseHeight + 2 * m_dialog.SectionBaseHeight)
            << "two rows of sections without items";
        EXPECT_EQ(AskHost(WM_KEYUP, VK_F5), E_FAIL);
        ASSERT_EQ(m_page.Sections.InnerHtml.size(), 2U);
        EXPECT_EQ(m_page.Sections.InnerHtml[1], m_page.Sections.InnerHtml[0]);
        EXPECT_EQ(m_dialog.Sections.Count(), sections) << "nothing is there twice";
        EXPECT_EQ(m_dialog.WindowHeight, height);

        m_installation.DeleteValue(test::LibraryKey, L"KORType");
        EXPECT_EQ(AskHost(WM_KEYUP, VK_F5), E_FAIL);
        EXPECT_EQ(m_dialog.Sections.Count(), sections - 2);
        EXPECT_EQ(WindowSize().cy, height - m_dialog.SectionBaseHeight);
    });
}

TEST_F(Host, WithoutTheElementNothingIsFilled) {
    m_page.Document.Sections = nullptr;
    m_dialog.WindowHeight = 12345;
    HOOK_IMPORT(resize, SetWindowPos, [](auto...) -> BOOL {
        ADD_FAILURE() << "the window keeps its size";
        return TRUE;
    });
    HOOK_IMPORT(open, RegOpenKeyExW, [](auto...) -> LSTATUS {
        ADD_FAILURE() << "the catalogue is not built";
        return ERROR_FILE_NOT_FOUND;
    });
    Run([&] { EXPECT_EQ(m_page.Complete(), S_OK); });
    EXPECT_EQ(m_dialog.WindowHeight, 12345);
    m_dialog.FillSectionsElement(); // without a document, too
}

TEST_F(Host, AnElementThatIsThereTwiceIsNone) {
    test::FakeCollection all;
    m_page.Document.All = &all;
    Run(Completed(), [&] {
        EXPECT_EQ(all.Asked, std::vector<std::wstring>{L"Sections"});
        EXPECT_EQ(m_page.Sections.InnerHtml.size(), 1U);
        all.HasSeveral = true;
        IHTMLElement* element = nullptr;
        EXPECT_EQ(m_dialog.GetElement(L"Sections", &element), E_FAIL);
        EXPECT_EQ(element, nullptr);
        m_page.Complete();
        EXPECT_EQ(m_page.Sections.InnerHtml.size(), 1U);
    });
    EXPECT_EQ(all.References, 0);
}

TEST_F(Host, AMissingTextForThePageIsAnError) {
    int resizes = 0;
    const auto fail = [&](const std::function<void()>& action) {
        HOOK_IMPORT(resize, SetWindowPos, [&](auto...) -> BOOL {
            ++resizes;
            return TRUE;
        });
        HOOK_IMPORT(allocate, SysAllocString, [&](const OLECHAR* text) -> BSTR {
            return wcscmp(text, L"Sections") == 0 ? allocate.Original(text) : nullptr;
        });
        action();
    };
    Run(
        [&] {
            // Complete itself allocates a text, so the event is fired without one.
            fail([&] {
                EXPECT_EQ(m_page.Browser.Fire(259, {{}, VariantOf(m_page.Browser)}),
                          static_cast<HRESULT>(0x8007000E));
            });
        },
        [&] {
            fail([&] {
                EXPECT_EQ(AskHost(WM_KEYUP, VK_F5), static_cast<HRESULT>(0x8007000E))
                    << "the exception ends at the border to COM";
            });
        },
        [&] {
            fail([&] {
                HRESULT raised = S_OK;
                try {
                    m_dialog.FillSectionsElement();
                } catch (const _com_error& error) {
                    raised = error.Error();
                }
                EXPECT_EQ(raised, static_cast<HRESULT>(0x8007000E));
            });
            EXPECT_EQ(m_page.Sections.References, 0);
        });
    EXPECT_TRUE(m_page.Sections.InnerHtml.empty());
    EXPECT_EQ(resizes, 0);
}

TEST_F(Host, WithoutMemoryForThePagesAddressTheDialogIsEmpty) {
    bool ran = false;
    HOOK_IMPORT(allocate, SysAllocString, [](const OLECHAR*) -> BSTR { return nullptr; });
    Run([&] { ran = true; });
    EXPECT_TRUE(ran) << "the exception ends at the border to the window manager";
    EXPECT_TRUE(m_page.Browser.Navigated.empty());
}

TEST_F(Host, WithoutThePagesAddressTheDialogIsEmpty) {
    bool ran = false;
    HOOK_IMPORT(name, GetModuleFileNameW, [](auto...) -> DWORD { return 0; });
    Run([&] { ran = true; });
    EXPECT_TRUE(ran);
    EXPECT_TRUE(m_page.Browser.Navigated.empty());
}

TEST_F(Host, TheControlFollowsTheWindow) {
    Run([&] {
        RECT client = {};
        GetClientRect(m_dialog.m_hWnd, &client);
        ASSERT_FALSE(m_page.Browser.Rectangles.empty());
        EXPECT_TRUE(EqualRect(&m_page.Browser.Rectangles.back(), &client));
        SetWindowPos(m_dialog.m_hWnd, nullptr, 0, 0, 900, 950, SWP_NOMOVE | SWP_NOZORDER);
        RECT resized = {};
        GetClientRect(m_dialog.m_hWnd, &resized);
        EXPECT_FALSE(EqualRect(&client, &resized));
        EXPECT_TRUE(EqualRect(&m_page.Browser.Rectangles.back(), &resized));
        const std::size_t before = m_page.Browser.Rectangles.size();
        SendMessageW(m_dialog.m_hWnd, WM_SIZE, SIZE_MINIMIZED, 0);
        EXPECT_EQ(m_page.Browser.Rectangles.size(), before);
    });
}

TEST_F(Host, TheSiteOutlivesTheDialog) {
    IOleClientSite* site = nullptr;
    auto dialog = std::make_unique<CkorcontrolcenterDlg>();
    RunModal(*dialog, m_page, {Do([&] {
        site = m_page.Browser.Site;
        site->AddRef();
    })});
    dialog.reset();
    ASSERT_NE(site, nullptr);
    IOleInPlaceSite* place = nullptr;
    IDocHostUIHandler* handler = nullptr;
    ASSERT_EQ(site->QueryInterface(IID_PPV_ARGS(&place)), S_OK);
    ASSERT_EQ(site->QueryInterface(IID_PPV_ARGS(&handler)), S_OK);
    HWND window = GetDesktopWindow();
    EXPECT_EQ(place->GetWindow(&window), E_FAIL);
    EXPECT_EQ(window, nullptr);
    DOCHOSTUIINFO info = {};
    EXPECT_EQ(handler->GetHostInfo(&info), E_FAIL);
    MSG key = {};
    key.message = WM_KEYUP;
    key.wParam = VK_F5;
    EXPECT_EQ(handler->TranslateAccelerator(&key, nullptr, 0), S_FALSE);
    handler->Release();
    place->Release();
    EXPECT_EQ(site->Release(), 0U);
}

TEST_F(Host, WithoutTheControlTheDialogIsEmpty) {
    HOOK_IMPORT(create, CoCreateInstance,
                [](REFCLSID, IUnknown*, DWORD, REFIID, void** object) -> HRESULT {
                    *object = nullptr;
                    return REGDB_E_CLASSNOTREG;
                });
    bool shown = false;
    HOOK_IMPORT(get, GetMessageW, [&](MSG* message, auto...) -> BOOL {
        shown = IsWindowVisible(m_dialog.m_hWnd) != FALSE;
        SendMessageW(m_dialog.m_hWnd, WM_SIZE, SIZE_RESTORED, MAKELPARAM(100, 100));
        SendMessageW(m_dialog.m_hWnd, WM_COMMAND, IDCANCEL, 0);
        *message = {};
        message->hwnd = m_dialog.m_hWnd;
        message->message = WM_KEYDOWN;
        return TRUE;
    });
    EXPECT_EQ(m_dialog.DoModal(), IDCANCEL);
    EXPECT_TRUE(shown);
}

TEST_F(Host, TheParentIsDisabledMeanwhile) {
    const HWND window = CreateWindowExW(0, L"STATIC", L"parent", WS_OVERLAPPEDWINDOW, 0, 0, 10, 10,
                                        nullptr, nullptr, nullptr, nullptr);
    CWnd parent;
    parent.m_hWnd = window;
    CkorcontrolcenterDlg dialog(&parent);
    RunModal(dialog, m_page, {Do([&] {
                 EXPECT_FALSE(IsWindowEnabled(window));
                 EXPECT_EQ(GetWindow(dialog.m_hWnd, GW_OWNER), window);
             })});
    EXPECT_TRUE(IsWindowEnabled(window));
    DestroyWindow(window);
}

} // namespace
