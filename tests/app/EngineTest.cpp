// What an engine does by itself, and what the dialog makes of it: reloads, drops, menus, foreign
// pages, keys.
#include <windows.h>

#include <exdispid.h>
#include <mshtmdid.h>
#include <mshtmhst.h>

#include "tests/app/HostedDialog.h"

namespace {

using test::Do;
using test::RunModal;
using test::VariantOf;

VARIANT Text(const wchar_t* text) {
    VARIANT value = {};
    value.vt = VT_BSTR;
    value.bstrVal = SysAllocString(text);
    return value;
}

class Engine : public test::HostedDialog {
protected:
    // An event of the top frame about an address, and whether it was cancelled.
    bool Cancels(DISPID event, std::size_t arguments, std::size_t cancel, test::FakeObject& frame) {
        VARIANT_BOOL cancelled = VARIANT_FALSE;
        VARIANT url = Text(L"http://elsewhere/");
        std::vector<VARIANT> list(arguments);
        list[arguments - 1] = VariantOf(frame);
        list[arguments - 2].vt = VT_BYREF | VT_VARIANT;
        list[arguments - 2].pvarVal = &url;
        list[cancel].vt = VT_BYREF | VT_BOOL;
        list[cancel].pboolVal = &cancelled;
        EXPECT_EQ(m_page.Browser.Fire(event, list), S_OK);
        VariantClear(&url);
        return cancelled != VARIANT_FALSE;
    }
    bool CancelsNavigation(test::FakeObject& frame) {
        return Cancels(DISPID_BEFORENAVIGATE2, 7, 0, frame);
    }
    bool CancelsNavigation() { return CancelsNavigation(m_page.Browser); }

    // As the engine loads the page again: the same document with other contents.
    void Reload() {
        m_page.Document.Body = m_page.Document.Body == &m_page.Body ? &m_newBody : &m_page.Body;
        m_page.Browser.Fire(DISPID_DOWNLOADBEGIN, {});
        m_page.Browser.Fire(DISPID_DOWNLOADCOMPLETE, {});
    }

    test::Turn Key(UINT message, WPARAM key) {
        return [this, message, key] {
            MSG posted = {};
            posted.hwnd = m_dialog.m_hWnd;
            posted.message = message;
            posted.wParam = key;
            return posted;
        };
    }

    template <typename Interface>
    CComPtr<Interface>& Site(CComPtr<Interface>& face) {
        EXPECT_EQ(m_page.Browser.Site->QueryInterface(IID_PPV_ARGS(&face)), S_OK);
        return face;
    }

    std::size_t Fills() const { return m_page.Sections.InnerHtml.size(); }

    test::FakeElement m_newBody;
};

TEST_F(Engine, APageThatWasLoadedAgainIsFilledAgainAndItsEventsArrive) {
    test::FakeDocument other;
    other.Sections = &m_page.Sections;
    other.Body = &m_newBody;
    other.Log = &m_page.Log;
    RunModal(m_dialog, m_page,
             {Do([&] { m_page.Complete(); }), Do([&] {
                  m_page.Log.clear();
                  Reload();
                  EXPECT_EQ(Fills(), 2U);
                  EXPECT_EQ(m_page.Log, (std::vector<std::string>{"document unadvise",
                                                                  "document advise", "innerHTML"}));
                  Reload();
                  EXPECT_EQ(Fills(), 3U) << "and once more";
              }),
              Do([&] {
                  m_page.Browser.Document = &other;
                  m_page.Browser.Fire(DISPID_DOWNLOADCOMPLETE, {});
                  EXPECT_EQ(Fills(), 4U) << "with a new document, too";
                  EXPECT_EQ(m_page.Document.Sink, nullptr);
                  EXPECT_NE(other.Sink, nullptr);
              })});
}

TEST_F(Engine, DownloadsWithinThePageDoNotFillIt) {
    RunModal(m_dialog, m_page,
             {Do([&] {
                  m_page.Browser.Fire(DISPID_DOWNLOADCOMPLETE, {});
                  EXPECT_EQ(Fills(), 0U) << "the page is not complete yet";
              }),
              Do([&] { m_page.Complete(); }), Do([&] {
                  m_page.Browser.Fire(DISPID_DOWNLOADCOMPLETE, {});
                  EXPECT_EQ(Fills(), 1U) << "a picture, say";
                  m_page.Document.State = L"interactive";
                  Reload();
                  EXPECT_EQ(Fills(), 1U) << "the reloaded page is not complete yet";
                  m_page.Document.State = L"complete";
                  m_page.Browser.Fire(DISPID_DOWNLOADCOMPLETE, {});
                  EXPECT_EQ(Fills(), 2U);
                  m_page.Document.Body = nullptr;
                  m_page.Browser.Fire(DISPID_DOWNLOADCOMPLETE, {});
                  EXPECT_EQ(Fills(), 2U);
              })});
}

TEST_F(Engine, ItsContextMenuIsNotShown) {
    RunModal(m_dialog, m_page, {Do([&] {
                 CComPtr<IDocHostUIHandler> handler;
                 POINT position = {};
                 EXPECT_EQ(Site(handler)->ShowContextMenu(0, &position, nullptr, nullptr), S_OK)
                     << "S_FALSE would have the engine show its own";
             })});
    POINT position = {};
    EXPECT_EQ(m_dialog.ShowContextMenu(0, &position, nullptr, nullptr), S_FALSE)
        << "the dialog has shown none";
}

TEST_F(Engine, NothingCanBeDroppedOnThePage) {
    RunModal(m_dialog, m_page, {Do([&] {
                 EXPECT_EQ(m_page.Browser.TakesDrops, VARIANT_FALSE);
                 CComPtr<IDocHostUIHandler> handler;
                 CComPtr<IDropTarget> target;
                 ASSERT_EQ(Site(handler)->GetDropTarget(nullptr, &target), S_OK);
                 ASSERT_NE(target, nullptr);
                 const auto expectRefusal = [](const std::function<HRESULT(DWORD*)>& drag) {
                     DWORD effect = DROPEFFECT_COPY | DROPEFFECT_LINK;
                     EXPECT_EQ(drag(&effect), S_OK);
                     EXPECT_EQ(effect, static_cast<DWORD>(DROPEFFECT_NONE));
                 };
                 expectRefusal([&](DWORD* e) { return target->DragEnter(nullptr, 0, {}, e); });
                 expectRefusal([&](DWORD* e) { return target->DragOver(0, {}, e); });
                 expectRefusal([&](DWORD* e) { return target->Drop(nullptr, 0, {}, e); });
                 EXPECT_EQ(target->DragLeave(), S_OK);
                 CComPtr<IDropTarget> same;
                 EXPECT_EQ(target->QueryInterface(IID_PPV_ARGS(&same)), S_OK);
                 CComPtr<IDispatch> none;
                 EXPECT_EQ(target->QueryInterface(IID_PPV_ARGS(&none)), E_NOINTERFACE);
             })});
}

TEST_F(Engine, NoNavigationOfTheTopFrameLeavesThePage) {
    test::FakeDocument frame;
    RunModal(m_dialog, m_page,
             {Do([&] { EXPECT_FALSE(CancelsNavigation()) << "the page's own"; }),
              Do([&] { m_page.Complete(); }), Do([&] {
                  EXPECT_TRUE(CancelsNavigation());
                  EXPECT_FALSE(CancelsNavigation(frame)) << "within the page";
                  m_page.Browser.Fire(DISPID_BEFORENAVIGATE2, {});
              })});
}

TEST_F(Engine, NewWindowsAndErrorPagesAreCancelled) {
    RunModal(m_dialog, m_page, {Do([&] {
                 EXPECT_TRUE(Cancels(DISPID_NAVIGATEERROR, 5, 0, m_page.Browser));
                 EXPECT_TRUE(Cancels(DISPID_NEWWINDOW3, 5, 3, m_page.Browser));
                 VARIANT_BOOL cancelled = VARIANT_FALSE;
                 VARIANT cancel = {};
                 cancel.vt = VT_BYREF | VT_BOOL;
                 cancel.pboolVal = &cancelled;
                 m_page.Browser.Fire(DISPID_NEWWINDOW2, {cancel, {}});
                 EXPECT_EQ(cancelled, VARIANT_TRUE);
                 m_page.Browser.Fire(DISPID_NEWWINDOW2, {{}, {}});
                 m_page.Browser.Fire(DISPID_NAVIGATEERROR, {});
             })});
    EXPECT_EQ(Fills(), 0U);
}

TEST_F(Engine, AForeignPageIsNeitherFilledNorHeard) {
    for (const wchar_t* const foreign :
         {L"file:///C:/dropped.htm", L"http://elsewhere/129", L"res://ieframe.dll/dnserror.htm",
          L"res:/129x", L"about:blank", L""}) {
        SCOPED_TRACE(testing::PrintToString(foreign));
        test::FakePage page;
        page.Document.Url = foreign;
        RunModal(m_dialog, page, {Do([&] {
                     EXPECT_EQ(page.Complete(), S_OK);
                     EXPECT_TRUE(page.Sections.InnerHtml.empty());
                     EXPECT_EQ(page.Document.Sink, nullptr);
                 })});
    }
}

TEST_F(Engine, EventsOfAForeignPageInTheSameDocumentReachNoHandler) {
    test::FakeStyle style;
    test::FakeElement item;
    item.ClassName = L"item";
    item.Style = &style;
    test::FakeEvent event;
    event.Source = &item;
    constexpr auto MouseOut = static_cast<DISPID>(0x80010009);
    RunModal(m_dialog, m_page, {Do([&] { m_page.Complete(); }), Do([&] {
                                    m_page.Document.Fire(MouseOut, {VariantOf(event)});
                                    EXPECT_EQ(style.Colors.size(), 1U);
                                    m_page.Document.Url = L"file:///C:/dropped.htm";
                                    m_page.Document.Fire(MouseOut, {VariantOf(event)});
                                    EXPECT_EQ(style.Colors.size(), 1U);
                                    m_page.Complete();
                                    EXPECT_EQ(m_page.Document.Sink, nullptr);
                                    EXPECT_EQ(Fills(), 1U);
                                })});
}

TEST_F(Engine, ASinkThatIsNoLongerConnectedAnswersNothing) {
    test::FakeStyle style;
    test::FakeElement item;
    item.ClassName = L"item";
    item.Style = &style;
    test::FakeEvent event;
    event.Source = &item;
    CComPtr<IDispatch> pageSink;
    CComPtr<IDispatch> browserSink;
    const auto tellBoth = [&] {
        EXPECT_EQ(test::FireAt(pageSink, static_cast<DISPID>(0x80010008), {VariantOf(event)}),
                  S_OK);
        VARIANT url = Text(L"");
        EXPECT_EQ(
            test::FireAt(browserSink, DISPID_DOCUMENTCOMPLETE, {url, m_page.Browser.Dispatch()}),
            S_OK);
        VariantClear(&url);
        VARIANT_BOOL cancelled = VARIANT_FALSE;
        VARIANT cancel = {};
        cancel.vt = VT_BYREF | VT_BOOL;
        cancel.pboolVal = &cancelled;
        EXPECT_EQ(test::FireAt(browserSink, DISPID_NEWWINDOW2, {cancel, {}}), S_OK);
        EXPECT_EQ(cancelled, VARIANT_FALSE);
    };
    RunModal(m_dialog, m_page, {Do([&] { m_page.Complete(); }), Do([&] {
                                    pageSink = m_page.Document.Sink;
                                    browserSink = m_page.Browser.Sink;
                                })});
    ASSERT_EQ(Fills(), 1U);
    tellBoth();
    EXPECT_TRUE(style.Colors.empty());
    EXPECT_EQ(Fills(), 1U);
}

TEST_F(Engine, NothingIsAnsweredWhileTheSourceLetsGo) {
    RunModal(m_dialog, m_page, {Do([&] { m_page.Complete(); }), Do([&] {
                                    m_page.Browser.OnUnadvise = [&] { m_page.Complete(); };
                                })});
    EXPECT_EQ(Fills(), 1U);
}

TEST_F(Engine, TheControlIsToldWhenTheFrameIsActivated) {
    RunModal(m_dialog, m_page, {Do([&] {
                 m_page.Browser.FrameActivations.clear();
                 SendMessageW(m_dialog.m_hWnd, WM_ACTIVATE, WA_INACTIVE, 0);
                 SendMessageW(m_dialog.m_hWnd, WM_ACTIVATE, WA_ACTIVE, 0);
                 SendMessageW(m_dialog.m_hWnd, WM_ACTIVATE, WA_CLICKACTIVE, 0);
                 EXPECT_EQ(m_page.Browser.FrameActivations, (std::vector<BOOL>{FALSE, TRUE, TRUE}));
             })});
}

// The element under the mouse is kept until the dialog's end, the event's until its handler's.
TEST_F(Engine, ClosingInTheMiddleOfAnEventLeavesNoReferenceBehind) {
    test::FakeStyle style;
    test::FakeElement item;
    item.ClassName = L"item";
    item.Style = &style;
    test::FakeEvent event;
    event.Source = &item;
    bool wentOn = false;
    {
        CkorcontrolcenterDlg dialog;
        style.OnColor = [&] { DestroyWindow(dialog.m_hWnd); };
        RunModal(dialog, m_page,
                 {Do([&] { m_page.Complete(); }), Do([&] {
                      m_page.Document.Fire(static_cast<DISPID>(0x80010008), {VariantOf(event)});
                  }),
                  Do([&] { wentOn = true; })});
        EXPECT_EQ(event.References, 0);
        EXPECT_EQ(m_page.Browser.References, 0);
        EXPECT_EQ(m_page.Browser.Site, nullptr);
        EXPECT_EQ(m_page.Body.References, 0);
        EXPECT_EQ(m_page.Document.References, 0);
    }
    EXPECT_FALSE(wentOn);
    EXPECT_EQ(style.Colors.size(), 1U);
    EXPECT_EQ(item.References, 0);
    EXPECT_EQ(style.References, 0);
}

TEST_F(Engine, ClosingWhileThePageIsFilledEndsIt) {
    m_page.Sections.OnInnerHtml = [&] { DestroyWindow(m_dialog.m_hWnd); };
    RunModal(m_dialog, m_page, {Do([&] { EXPECT_EQ(m_page.Complete(), S_OK); })});
    EXPECT_EQ(m_page.Sections.References, 0);
    EXPECT_EQ(m_page.Browser.References, 0);
}

// The engine is one that: never asks; asks and takes the host's answer; asks again and again;
// asks only when the key is dispatched to its window; takes every key without asking.
TEST_F(Engine, F5FillsOnceHoweverTheEngineAsks) {
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
            RunModal(m_dialog, m_page,
                     {Do([&] {
                          m_page.Complete();
                          before = Fills();
                      }),
                      Key(WM_KEYDOWN, VK_F5), Key(WM_KEYUP, VK_F5),
                      Do([&] { EXPECT_EQ(Fills(), before + 1); }), Key(WM_KEYUP, VK_F5),
                      Do([&] { EXPECT_EQ(Fills(), before + 2) << "the next one is another"; })});
            EXPECT_EQ(m_page.Browser.Keys, (std::vector<UINT>{WM_KEYUP, WM_KEYUP}))
                << "the engine would refresh when the key goes down";
        }
    }
}

TEST_F(Engine, TheReloadKeyOfAKeyboardDoesNotReachIt) {
    RunModal(m_dialog, m_page,
             {Do([&] { m_page.Complete(); }), Key(WM_KEYDOWN, VK_BROWSER_REFRESH),
              Do([&] { EXPECT_TRUE(m_page.Browser.Keys.empty()); })});
}

TEST_F(Engine, AltF4QuitsOnceHoweverTheEngineAsks) {
    for (const bool asks : {false, true}) {
        SCOPED_TRACE(asks);
        m_page.Quits = 0;
        m_page.Browser.OnKey = [&](const MSG* key) {
            return asks ? AskHost(key->message, key->wParam) : S_FALSE;
        };
        RunModal(m_dialog, m_page,
                 {Key(WM_SYSKEYDOWN, VK_F4), Do([&] {
                      EXPECT_EQ(m_page.Quits, 0);
                      EXPECT_NE(m_dialog.m_hWnd, nullptr);
                  }),
                  Key(WM_SYSKEYUP, VK_F4), Do([&] {
                      EXPECT_EQ(m_page.Quits, 1);
                      EXPECT_NE(m_dialog.m_hWnd, nullptr) << "not closed by it";
                  })});
    }
}

TEST_F(Engine, AFailureToFillThePageEndsBeforeTheLoop) {
    bool fails = false;
    HOOK_IMPORT(allocate, SysAllocString, [&](const OLECHAR* text) -> BSTR {
        return !fails || wcscmp(text, L"Sections") == 0 ? allocate.Original(text) : nullptr;
    });
    bool wentOn = false;
    RunModal(m_dialog, m_page,
             {Do([&] {
                  m_page.Complete();
                  fails = true;
              }),
              Key(WM_KEYUP, VK_F5), Do([&] {
                  fails = false;
                  wentOn = true;
              })});
    EXPECT_TRUE(wentOn);
    EXPECT_EQ(Fills(), 1U);
}

TEST_F(Engine, TheDocumentGetsTheFocusOfAnActiveDialog) {
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
        RunModal(m_dialog, m_page,
                 {Do([&] {
                      SetActiveWindow(m_dialog.m_hWnd);
                      // A page that was complete before the dialog was shown gets it with the next
                      // activation; until then the dialog manager gives it to the control.
                      if (!atOnce) {
                          m_page.Complete();
                          EXPECT_EQ(GetFocus(), m_page.Document.Window);
                      }
                      SendMessageW(m_dialog.m_hWnd, WM_ACTIVATE, WA_ACTIVE, 0);
                      EXPECT_EQ(GetFocus(), m_page.Document.Window);
                      SetFocus(m_dialog.m_hWnd);
                      EXPECT_EQ(GetFocus(), m_page.Document.Window) << "the dialog hands it on";
                  }),
                  Do([&] {
                      const HWND other =
                          CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, 10, 10,
                                          nullptr, nullptr, nullptr, nullptr);
                      m_page.Document.Sections = nullptr; // resizing would activate the dialog
                      SetActiveWindow(other);
                      SetFocus(other);
                      m_page.Complete();
                      EXPECT_EQ(GetFocus(), other) << "nothing is taken from another window";
                      DestroyWindow(other);
                  })});
    }
}

TEST_F(Engine, ThePageMayLoadPicturesAndNoControls) {
    RunModal(m_dialog, m_page, {Do([&] {
                 CComPtr<IDispatch> ambient;
                 Site(ambient);
                 DISPPARAMS none = {};
                 VARIANT value = {};
                 ASSERT_EQ(ambient->Invoke(DISPID_AMBIENT_DLCONTROL, IID_NULL, 0,
                                           DISPATCH_PROPERTYGET, &none, &value, nullptr, nullptr),
                           S_OK);
                 EXPECT_EQ(value.vt, VT_I4);
                 EXPECT_EQ(value.lVal, 0x10 | 0x100 | 0x200 | 0x400)
                     << "DLIMAGES, NO_JAVA, NO_RUNACTIVEXCTLS, NO_DLACTIVEXCTLS; not NO_SCRIPTS";
                 EXPECT_EQ(ambient->Invoke(DISPID_AMBIENT_USERMODE, IID_NULL, 0,
                                           DISPATCH_PROPERTYGET, &none, &value, nullptr, nullptr),
                           DISP_E_MEMBERNOTFOUND);
                 EXPECT_EQ(ambient->Invoke(DISPID_AMBIENT_DLCONTROL, IID_NULL, 0,
                                           DISPATCH_PROPERTYPUT, &none, &value, nullptr, nullptr),
                           DISP_E_MEMBERNOTFOUND);
             })});
}

} // namespace
