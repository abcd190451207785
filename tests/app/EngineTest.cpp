// What an engine does by itself, and what the dialog makes of it: reloads, drops, menus, foreign
// pages, late events.
#include <windows.h>

#include <exdispid.h>
#include <mshtmdid.h>
#include <mshtmhst.h>

#include <string>
#include <vector>

#include "tests/app/HostedDialog.h"
#include "tests/support/GuardedMemory.h"
#include "tests/support/SystemCalls.h"

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

// The mouse on an item of the page.
struct OnItem {
    OnItem() {
        Item.ClassName = L"item";
        Item.Style = &Style;
        Event.Source = &Item;
    }

    test::FakeStyle Style;
    test::FakeElement Item;
    test::FakeEvent Event;
};

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

    template <typename Interface>
    CComPtr<Interface>& Site(CComPtr<Interface>& face) {
        EXPECT_EQ(m_page.Browser.Site->QueryInterface(IID_PPV_ARGS(&face)), S_OK);
        return face;
    }

    test::FakeElement m_newBody;
};

TEST_F(Engine, APageThatWasLoadedAgainIsFilledAgainAndItsEventsArrive) {
    test::FakeDocument other;
    other.Sections = &m_page.Sections;
    other.Body = &m_newBody;
    other.Log = &m_page.Log;
    Run(
        Completed(),
        [&] {
            m_page.Log.clear();
            Reload();
            EXPECT_EQ(Fills(), 2U);
            EXPECT_EQ(m_page.Log, (std::vector<std::string>{"document unadvise", "document advise",
                                                            "innerHTML"}));
            Reload();
            EXPECT_EQ(Fills(), 3U) << "and once more";
        },
        [&] {
            m_page.Browser.Document = &other;
            m_page.Browser.Fire(DISPID_DOWNLOADCOMPLETE, {});
            EXPECT_EQ(Fills(), 4U) << "with a new document, too";
            EXPECT_EQ(m_page.Document.Sink, nullptr);
            EXPECT_NE(other.Sink, nullptr);
        });
}

TEST_F(Engine, DownloadsWithinThePageDoNotFillIt) {
    Run(
        [&] {
            m_page.Browser.Fire(DISPID_DOWNLOADCOMPLETE, {});
            EXPECT_EQ(Fills(), 0U) << "the page is not complete yet";
        },
        Completed(),
        [&] {
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
        });
}

TEST_F(Engine, ItsContextMenuIsNotShown) {
    Run([&] {
        CComPtr<IDocHostUIHandler> handler;
        POINT position = {};
        EXPECT_EQ(Site(handler)->ShowContextMenu(0, &position, nullptr, nullptr), S_OK)
            << "S_FALSE would have the engine show its own";
    });
    POINT position = {};
    EXPECT_EQ(m_dialog.ShowContextMenu(0, &position, nullptr, nullptr), S_FALSE)
        << "the dialog has shown none";
}

TEST_F(Engine, NothingCanBeDroppedOnThePage) {
    Run([&] {
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
    });
}

TEST_F(Engine, NoNavigationOfTheTopFrameLeavesThePage) {
    test::FakeDocument frame;
    Run([&] { EXPECT_FALSE(CancelsNavigation()) << "the page's own"; }, Completed(),
        [&] {
            EXPECT_TRUE(CancelsNavigation());
            EXPECT_FALSE(CancelsNavigation(frame)) << "within the page";
            m_page.Browser.Fire(DISPID_BEFORENAVIGATE2, {});
        });
}

TEST_F(Engine, NewWindowsAndErrorPagesAreCancelled) {
    Run([&] {
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
    });
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
    OnItem on;
    constexpr auto MouseOut = static_cast<DISPID>(0x80010009);
    Run(Completed(), [&] {
        m_page.Document.Fire(MouseOut, {VariantOf(on.Event)});
        EXPECT_EQ(on.Style.Colors.size(), 1U);
        m_page.Document.Url = L"file:///C:/dropped.htm";
        m_page.Document.Fire(MouseOut, {VariantOf(on.Event)});
        EXPECT_EQ(on.Style.Colors.size(), 1U);
        m_page.Complete();
        EXPECT_EQ(m_page.Document.Sink, nullptr);
        EXPECT_EQ(Fills(), 1U);
    });
}

TEST_F(Engine, ASinkThatIsNoLongerConnectedAnswersNothing) {
    OnItem on;
    CComPtr<IDispatch> pageSink;
    CComPtr<IDispatch> browserSink;
    const auto tellBoth = [&] {
        EXPECT_EQ(test::FireAt(pageSink, static_cast<DISPID>(0x80010008), {VariantOf(on.Event)}),
                  S_OK);
        VARIANT url = Text(L"");
        EXPECT_EQ(
            test::FireAt(browserSink, DISPID_DOCUMENTCOMPLETE, {url, VariantOf(m_page.Browser)}),
            S_OK);
        VariantClear(&url);
        VARIANT_BOOL cancelled = VARIANT_FALSE;
        VARIANT cancel = {};
        cancel.vt = VT_BYREF | VT_BOOL;
        cancel.pboolVal = &cancelled;
        EXPECT_EQ(test::FireAt(browserSink, DISPID_NEWWINDOW2, {cancel, {}}), S_OK);
        EXPECT_EQ(cancelled, VARIANT_FALSE);
    };
    Run(Completed(), [&] {
        pageSink = m_page.Document.Sink;
        browserSink = m_page.Browser.Sink;
    });
    ASSERT_EQ(Fills(), 1U);
    tellBoth();
    EXPECT_TRUE(on.Style.Colors.empty());
    EXPECT_EQ(Fills(), 1U);
}

TEST_F(Engine, NothingIsAnsweredWhileTheSourceLetsGo) {
    Run(Completed(), [&] { m_page.Browser.OnUnadvise = [&] { m_page.Complete(); }; });
    EXPECT_EQ(Fills(), 1U);
}

TEST_F(Engine, TheControlIsToldWhenTheFrameIsActivated) {
    Run([&] {
        m_page.Browser.FrameActivations.clear();
        SendMessageW(m_dialog.m_hWnd, WM_ACTIVATE, WA_INACTIVE, 0);
        SendMessageW(m_dialog.m_hWnd, WM_ACTIVATE, WA_ACTIVE, 0);
        SendMessageW(m_dialog.m_hWnd, WM_ACTIVATE, WA_CLICKACTIVE, 0);
        EXPECT_EQ(m_page.Browser.FrameActivations, (std::vector<BOOL>{FALSE, TRUE, TRUE}));
    });
}

// The element under the mouse is kept until the dialog's end, the event's until its handler's.
TEST_F(Engine, ClosingInTheMiddleOfAnEventLeavesNoReferenceBehind) {
    OnItem on;
    bool wentOn = false;
    {
        CkorcontrolcenterDlg dialog;
        on.Style.OnColor = [&] { DestroyWindow(dialog.m_hWnd); };
        RunModal(dialog, m_page,
                 {Do([&] { m_page.Complete(); }), Do([&] {
                      m_page.Document.Fire(static_cast<DISPID>(0x80010008), {VariantOf(on.Event)});
                  }),
                  Do([&] { wentOn = true; })});
        EXPECT_EQ(on.Event.References, 0);
        EXPECT_EQ(m_page.Browser.References, 0);
        EXPECT_EQ(m_page.Browser.Site, nullptr);
        EXPECT_EQ(m_page.Body.References, 0);
        EXPECT_EQ(m_page.Document.References, 0);
    }
    EXPECT_FALSE(wentOn);
    EXPECT_EQ(on.Style.Colors.size(), 1U);
    EXPECT_EQ(on.Item.References, 0);
    EXPECT_EQ(on.Style.References, 0);
}

TEST_F(Engine, ClosingWhileThePageIsFilledEndsIt) {
    m_page.Sections.OnInnerHtml = [&] { DestroyWindow(m_dialog.m_hWnd); };
    Run([&] { EXPECT_EQ(m_page.Complete(), S_OK); });
    EXPECT_EQ(m_page.Sections.References, 0);
    EXPECT_EQ(m_page.Browser.References, 0);
}

// The site, the two sinks and a drop target: objects that delete themselves.
TEST_F(Engine, NothingOfTheHostOutlivesItsDialog) {
    const auto show = [] {
        test::FakePage page;
        CkorcontrolcenterDlg dialog;
        RunModal(dialog, page, {Do([&] {
                     CComPtr<IDocHostUIHandler> host;
                     CComPtr<IDropTarget> target;
                     EXPECT_EQ(page.Browser.Site->QueryInterface(IID_PPV_ARGS(&host)), S_OK);
                     EXPECT_EQ(host->GetDropTarget(nullptr, &target), S_OK);
                     EXPECT_EQ(page.Complete(), S_OK);
                 })});
    };
    show();
    const std::int64_t before = test::LiveBlocks();
    show();
    EXPECT_EQ(test::LiveBlocks(), before);
}

TEST_F(Engine, ThePageMayLoadPicturesAndNoControls) {
    Run([&] {
        CComPtr<IDispatch> ambient;
        Site(ambient);
        DISPPARAMS none = {};
        VARIANT value = {};
        ASSERT_EQ(ambient->Invoke(DISPID_AMBIENT_DLCONTROL, IID_NULL, 0, DISPATCH_PROPERTYGET,
                                  &none, &value, nullptr, nullptr),
                  S_OK);
        EXPECT_EQ(value.vt, VT_I4);
        EXPECT_EQ(value.lVal, 0x10 | 0x100 | 0x200 | 0x400)
            << "DLIMAGES, NO_JAVA, NO_RUNACTIVEXCTLS, NO_DLACTIVEXCTLS; not NO_SCRIPTS";
        EXPECT_EQ(ambient->Invoke(DISPID_AMBIENT_USERMODE, IID_NULL, 0, DISPATCH_PROPERTYGET, &none,
                                  &value, nullptr, nullptr),
                  DISP_E_MEMBERNOTFOUND);
        EXPECT_EQ(ambient->Invoke(DISPID_AMBIENT_DLCONTROL, IID_NULL, 0, DISPATCH_PROPERTYPUT,
                                  &none, &value, nullptr, nullptr),
                  DISP_E_MEMBERNOTFOUND);
    });
}

// What a program may make of the page's questions by members of its own.
class OverridingDialog : public CkorcontrolcenterDlg {
public:
    void OnBeforeNavigate(LPDISPATCH frame, LPCTSTR url) override { Note("before", frame, url); }
    void OnNavigateComplete(LPDISPATCH frame, LPCTSTR url) override { Note("after", frame, url); }
    HRESULT STDMETHODCALLTYPE ShowContextMenu(DWORD menu, POINT* at, IUnknown*,
                                              IDispatch*) override {
        Told.push_back("menu " + std::to_string(menu) + " at " + std::to_string(at->x));
        return E_FAIL;
    }
    HRESULT STDMETHODCALLTYPE GetDropTarget(IDropTarget* proposed, IDropTarget** target) override {
        EXPECT_EQ(proposed, nullptr);
        *target = DropTarget;
        return DropTarget != nullptr ? S_OK : E_NOTIMPL;
    }

    std::vector<std::string> Told;
    IDropTarget* DropTarget = nullptr;

private:
    void Note(const char* when, LPDISPATCH frame, LPCTSTR url) {
        EXPECT_NE(frame, nullptr);
        Told.push_back(when + (" " + test::Narrow(url)));
    }
};

TEST_F(Engine, AProgramsOwnMembersAreAsked) {
    OverridingDialog dialog;
    CComPtr<IDocHostUIHandler> handler;
    CComPtr<IDropTarget> refusing;
    CComPtr<IDropTarget> supplied;
    POINT position = {7, 8};
    VARIANT url = Text(L"http://there/");
    RunModal(dialog, m_page, {Do([&] {
                 EXPECT_FALSE(CancelsNavigation()) << "before the page is there";
                 m_page.Browser.Fire(DISPID_NAVIGATECOMPLETE2, {url, VariantOf(m_page.Browser)});
                 EXPECT_EQ(Site(handler)->ShowContextMenu(3, &position, nullptr, nullptr), S_OK)
                     << "the engine's own is never shown";
                 ASSERT_EQ(handler->GetDropTarget(nullptr, &refusing), S_OK);
                 dialog.DropTarget = refusing;
                 dialog.DropTarget->AddRef();
                 ASSERT_EQ(handler->GetDropTarget(nullptr, &supplied), S_OK);
                 EXPECT_EQ(supplied, refusing);
             })});
    EXPECT_EQ(dialog.Told, (std::vector<std::string>{"before http://elsewhere/",
                                                     "after http://there/", "menu 3 at 7"}));
    VariantClear(&url);
}

} // namespace
