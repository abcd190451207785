// Each way of misbehaving does what its name says, and nothing is left behind by any of them.
#include "tests/htmldocument/HostTest.h"

#include <exdispid.h>

#include <algorithm>

#include "tests/htmldocument/PageText.h"
#include "wine/htmldocument/com/Modes.h"

namespace test {
namespace {

constexpr UINT KeyMessages[] = {WM_KEYDOWN, WM_KEYUP, WM_SYSKEYDOWN, WM_SYSKEYUP};

class ModesTest : public HostTest {
protected:
    // A host with the page open, filled by two links.
    void ShowWith(const wchar_t* modes) {
        SetEnvironmentVariableW(L"KOR_HTML_MODES", modes);
        Show(GridMarkup(1, 2));
    }
    std::wstring State() const {
        return TextOf(*host->Document().Get(), &IHTMLDocument2::get_readyState);
    }
    // The messages that the host was asked about.
    std::vector<UINT> Asked() {
        host->keyMessages.clear();
        for (const UINT message : KeyMessages) {
            host->Translate(message, VK_F6);
        }
        return host->keyMessages;
    }
    // The control's events of downloads and completion that came since the last call.
    std::vector<DISPID> Downloads() {
        std::vector<DISPID> found;
        for (const DISPID id : host->browserEvents) {
            if (id == DISPID_DOWNLOADBEGIN || id == DISPID_DOWNLOADCOMPLETE ||
                id == DISPID_DOCUMENTCOMPLETE) {
                found.push_back(id);
            }
        }
        host->browserEvents.clear();
        return found;
    }
    bool IsEmptied() const {
        return host->Element(L"Sections") != nullptr && host->Element(L"S0_0") == nullptr;
    }
};

TEST_F(ModesTest, OnlyNamesOfTheTableAreKnown) {
    const struct {
        const wchar_t* text;
        bool known;
    } cases[] = {{L"", true},         {L"at-once", true},   {L"drops,no-key-ups", true},
                 {L"worst", true},    {L"fail=1", true},    {L"worst,fail=20", true},
                 {L"at-onc", false},  {L"at-once2", false}, {L"drops,nobody", false},
                 {L"fail=", false},   {L"fail=0", false},   {L"AT-ONCE", false},
                 {L",drops,,", true}, {L"drops ", false}};
    for (const auto& c : cases) {
        html::Modes modes;
        EXPECT_EQ(c.known, html::Modes::Parse(c.text, modes)) << c.text;
    }
    html::Modes modes;
    ASSERT_TRUE(html::Modes::Parse(L"worst,at-once", modes));
    EXPECT_TRUE(modes.Has(html::Mode::NoKeyUps));
    EXPECT_TRUE(modes.Has(html::Mode::AtOnce));
    EXPECT_FALSE(modes.Has(html::Mode::NavigationFails));
}

TEST_F(ModesTest, AMisspelledModeEndsTheProcess) {
    SetEnvironmentVariableW(L"KOR_HTML_MODES", L"nobody");
    EXPECT_EXIT(html::Modes::FromEnvironment(), testing::ExitedWithCode(86), "");
}

TEST_F(ModesTest, ALatePageIsThereBeforeItIsComplete) {
    SetEnvironmentVariableW(L"KOR_HTML_MODES", L"late-complete");
    host = std::make_unique<BrowserHost>();
    ASSERT_TRUE(host->Start());
    ASSERT_TRUE(BrowserHost::PumpUntil(
        [&] { return host->Document() != nullptr && State() == L"interactive"; }));
    EXPECT_NE(nullptr, host->Element(L"Sections"));
    // Wine's control tells of a download of its own before there is a document.
    EXPECT_EQ(std::vector<DISPID>({DISPID_DOWNLOADBEGIN, DISPID_DOWNLOADCOMPLETE}), Downloads());
    EXPECT_TRUE(BrowserHost::PumpUntil([&] { return State() == L"complete"; }));
    EXPECT_EQ(std::vector<DISPID>({DISPID_DOCUMENTCOMPLETE}), Downloads());
}

TEST_F(ModesTest, DownloadsAreToldBeforeAndAfterCompletion) {
    ShowWith(L"download-events");
    std::vector<DISPID> heard = Downloads();
    constexpr DISPID Begin = DISPID_DOWNLOADBEGIN;
    constexpr DISPID End = DISPID_DOWNLOADCOMPLETE;
    EXPECT_EQ(std::vector<DISPID>({Begin, End, Begin, End, Begin, End, DISPID_DOCUMENTCOMPLETE}),
              heard);
    std::vector<DISPID> late;
    EXPECT_TRUE(BrowserHost::PumpUntil([&] {
        const std::vector<DISPID> more = Downloads();
        late.insert(late.end(), more.begin(), more.end());
        return late.size() >= 2;
    }));
    EXPECT_EQ(std::vector<DISPID>({Begin, End}), late);
}

TEST_F(ModesTest, ASilentRefreshTellsOfDownloadsOnly) {
    ShowWith(L"silent-refresh");
    Downloads();
    std::vector<std::wstring> states;
    host->onBrowserEvent = [&](DISPID id, DISPPARAMS&) {
        if (id == DISPID_DOWNLOADCOMPLETE) {
            states.push_back(State());
        }
    };
    host->Browser().Refresh();
    ASSERT_TRUE(BrowserHost::PumpUntil([&] { return IsEmptied() && State() == L"complete"; }));
    EXPECT_EQ(std::vector<DISPID>({DISPID_DOWNLOADBEGIN, DISPID_DOWNLOADCOMPLETE,
                                   DISPID_DOWNLOADBEGIN, DISPID_DOWNLOADCOMPLETE}),
              Downloads());
    EXPECT_EQ(std::vector<std::wstring>({L"interactive", L"complete"}), states);
}

TEST_F(ModesTest, KeyUpsAreKeptFromTheHost) {
    ShowWith(L"no-key-ups");
    EXPECT_EQ(std::vector<UINT>({WM_KEYDOWN, WM_SYSKEYDOWN}), Asked());
}

TEST_F(ModesTest, TheHostIsAskedAfterTheFirstClick) {
    ShowWith(L"asked-after-click");
    EXPECT_EQ(std::vector<UINT>(), Asked());
    ClickAt(MiddleOf(L"S0_0"));
    EXPECT_EQ(4U, Asked().size());
}

TEST_F(ModesTest, TheEnginesOwnKeysRefresh) {
    ShowWith(L"own-refresh-key");
    host->keyAnswer = S_OK;
    EXPECT_EQ(S_OK, host->Translate(WM_KEYDOWN, VK_F5));
    BrowserHost::PumpPending();
    EXPECT_FALSE(IsEmptied()) << "the host took the key";
    host->keyAnswer = S_FALSE;
    for (const WPARAM key : {WPARAM{VK_F5}, WPARAM{VK_BROWSER_REFRESH}}) {
        host->Write(L"Sections", GridMarkup(1, 2));
        EXPECT_NE(S_OK, host->Translate(WM_KEYUP, key));
        EXPECT_EQ(S_OK, host->Translate(WM_KEYDOWN, key));
        EXPECT_TRUE(BrowserHost::PumpUntil([&] { return IsEmptied(); })) << key;
    }
    host->Write(L"Sections", GridMarkup(1, 2));
    SendMessageW(host->DocumentWindow(), WM_APPCOMMAND, 0,
                 MAKELPARAM(0, APPCOMMAND_BROWSER_REFRESH));
    EXPECT_TRUE(BrowserHost::PumpUntil([&] { return IsEmptied(); })) << "the keyboard's own key";
}

TEST_F(ModesTest, AMenuIsShownWhereTheHostHasNone) {
    ShowWith(L"context-menu");
    const HWND window = host->DocumentWindow();
    SendMessageW(window, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(window), MAKELPARAM(100, 100));
    EXPECT_EQ(0, Trace()[L"menus"].Int());
    host->menuAnswer = S_FALSE;
    // The menu waits for an answer: the second entry.
    PostMessageW(window, WM_KEYDOWN, L'R', 0);
    PostMessageW(window, WM_CHAR, L'r', 0);
    SendMessageW(window, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(window), MAKELPARAM(100, 100));
    EXPECT_EQ(1, Trace()[L"menus"].Int());
    EXPECT_TRUE(BrowserHost::PumpUntil([&] { return IsEmptied(); })) << "the menu's Refresh";
}

TEST_F(ModesTest, DropsGoToTheTargetOfTheHostOrTheEngines) {
    ShowWith(L"drops");
    ASSERT_NE(nullptr, host->proposedDropTarget);
    EXPECT_NE(nullptr, GetPropW(host->DocumentWindow(), L"OleDropTargetInterface"));
    DWORD effect = DROPEFFECT_COPY | DROPEFFECT_MOVE;
    EXPECT_EQ(S_OK, host->proposedDropTarget->DragEnter(nullptr, 0, {}, &effect));
    EXPECT_EQ(static_cast<DWORD>(DROPEFFECT_COPY), effect);
    const ComPtr<IDropTarget> engines = host->proposedDropTarget;
    host->Close();
    // The page has gone; who kept its target may still ask it.
    EXPECT_EQ(S_OK, engines->Drop(nullptr, 0, {}, &effect));
}

TEST_F(ModesTest, SinksThatLeftHearTheEndAsWell) {
    ShowWith(L"stale-sinks");
    ComPtr<IConnectionPointContainer> container;
    ComPtr<IConnectionPoint> point;
    ASSERT_EQ(S_OK, host->Document().As(&container));
    ASSERT_EQ(S_OK,
              container->FindConnectionPoint(__uuidof(HTMLDocumentEvents2), point.GetAddressOf()));
    int heard = 0;
    HostSink sink(__uuidof(HTMLDocumentEvents2), [&](DISPID, DISPPARAMS&) { ++heard; });
    DWORD cookie = 0;
    ASSERT_EQ(S_OK, point->Advise(&sink, &cookie));
    const POINT item = MiddleOf(L"S0_0");
    ClickAt(item);
    EXPECT_EQ(1, heard);
    EXPECT_EQ(S_OK, point->Unadvise(cookie));
    ClickAt(item);
    EXPECT_EQ(2, heard) << "it left";
    ASSERT_EQ(S_OK, point->Advise(&sink, &cookie));
    ClickAt(item);
    EXPECT_EQ(3, heard) << "it came back: once is enough";
    EXPECT_EQ(S_OK, point->Unadvise(cookie));
    point.Reset();
    container.Reset();
    host->events.clear();
    host->Close();
    EXPECT_EQ(6, heard) << "over, click and out, at the end";
    EXPECT_EQ(0U, sink.References());
}

TEST_F(ModesTest, AFailedNavigationShowsThePageOfTheEngineUnlessItIsCancelled) {
    for (const bool cancels : {false, true}) {
        SetEnvironmentVariableW(L"KOR_HTML_MODES", L"navigation-fails");
        host = std::make_unique<BrowserHost>();
        bool asked = false;
        host->onBrowserEvent = [&](DISPID id, DISPPARAMS& parameters) {
            if (id == DISPID_NAVIGATEERROR && parameters.cArgs == 5) {
                asked = true;
                *V_BOOLREF(&parameters.rgvarg[0]) = cancels ? VARIANT_TRUE : VARIANT_FALSE;
            }
        };
        ASSERT_TRUE(host->Start());
        EXPECT_TRUE(BrowserHost::PumpUntil([&] { return asked; }));
        BrowserHost::PumpPending();
        EXPECT_EQ(!cancels, host->Element(L"KOR_0") != nullptr);
        EXPECT_EQ(cancels ? L"loading" : L"complete", State());
        EXPECT_EQ(0U, host->Close());
    }
}

TEST_F(ModesTest, ALinkLeadsAwayUnlessTheHostCancels) {
    ShowWith(L"");
    host->Write(L"Sections", L"<a id=away href=about:blank>away</a>"
                             L"<a id=window target=_blank href=about:blank>window</a>");
    bool cancels = true;
    std::vector<DISPID> asked;
    host->onBrowserEvent = [&](DISPID id, DISPPARAMS& parameters) {
        if (id == DISPID_BEFORENAVIGATE2 || id == DISPID_NEWWINDOW2) {
            asked.push_back(id);
            *V_BOOLREF(&parameters.rgvarg[0]) = cancels ? VARIANT_TRUE : VARIANT_FALSE;
        }
    };
    const POINT away = MiddleOf(L"away");
    ClickAt(MiddleOf(L"window"));
    ClickAt(away);
    EXPECT_TRUE(BrowserHost::PumpUntil([&] { return asked.size() == 2; }));
    EXPECT_EQ(std::vector<DISPID>({DISPID_NEWWINDOW2, DISPID_BEFORENAVIGATE2}), asked);
    EXPECT_EQ(0, Trace()[L"newWindows"].Int());
    EXPECT_NE(nullptr, host->Element(L"away"));
    cancels = false;
    ClickAt(MiddleOf(L"window"));
    EXPECT_EQ(1, Trace()[L"newWindows"].Int());
    ClickAt(away);
    EXPECT_TRUE(BrowserHost::PumpUntil(
        [&] { return host->Document() != nullptr && host->Element(L"away") == nullptr; }));
}

TEST_F(ModesTest, ANavigationMayAskNobody) {
    ShowWith(L"unasked-navigation");
    host->Write(L"Sections", L"<a id=away href=res://nobody.exe/1>away</a>");
    host->browserEvents.clear();
    ClickAt(MiddleOf(L"away"));
    EXPECT_TRUE(BrowserHost::PumpUntil([&] { return host->Element(L"away") == nullptr; }));
    EXPECT_EQ(0, std::count(host->browserEvents.begin(), host->browserEvents.end(),
                            DISPID_BEFORENAVIGATE2));
    EXPECT_EQ(L"res://nobody.exe/1", TextOf(*host->Document().Get(), &IHTMLDocument2::get_URL));
}

TEST_F(ModesTest, WhatIsOptionalMayBeRefused) {
    SetEnvironmentVariableW(L"KOR_HTML_MODES", L"refuses-optional");
    host = std::make_unique<BrowserHost>();
    ASSERT_TRUE(host->Open());
    ComPtr<IHTMLDocument3> document;
    EXPECT_EQ(E_NOINTERFACE, host->Document().As(&document));
    EXPECT_EQ(nullptr, document);
    EXPECT_NE(S_OK, host->Translate(WM_KEYDOWN, VK_F6));
}

TEST_F(ModesTest, EachCallMayFailOnceAndNothingIsLeft) {
    unsigned failing = 0;
    bool reached = true;
    while (reached) {
        ++failing;
        ASSERT_LT(failing, 300U);
        SetEnvironmentVariableW(L"KOR_HTML_MODES", (L"fail=" + std::to_wstring(failing)).c_str());
        DeleteFileW(TracePath().c_str());
        host = std::make_unique<BrowserHost>();
        host->Start();
        BrowserHost::PumpUntil([this] { return host->Element(L"Sections") != nullptr; }, 60);
        if (const ComPtr<IHTMLElement> sections = host->Element(L"Sections")) {
            const ComPtr<IHTMLElement> again = host->Element(L"Sections");
            sections->put_innerHTML(nullptr);
        }
        Json trace;
        const bool isWhole = ReadTrace(trace) && trace[L"writes"].Int() == 1;
        reached = !isWhole || trace[L"calls"].Int() >= static_cast<int>(failing);
        EXPECT_EQ(0U, host->Close()) << failing;
        EXPECT_TRUE(LibraryIsIdle()) << failing;
    }
    EXPECT_LT(20U, failing);
}

} // namespace
} // namespace test
