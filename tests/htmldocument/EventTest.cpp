// The mouse and the keyboard, by the messages that Windows sends.
#include "tests/htmldocument/HostTest.h"

#include "tests/htmldocument/PageText.h"

namespace test {
namespace {

constexpr auto MouseOver = static_cast<DISPID>(0x80010008);
constexpr auto MouseOut = static_cast<DISPID>(0x80010009);
constexpr DISPID Click = -600;

using EventTest = HostTest;

void SetColor(IHTMLElement& element, LONG color) {
    ComPtr<IHTMLStyle> style;
    ASSERT_EQ(S_OK, element.get_style(style.GetAddressOf()));
    VARIANT value;
    VariantInit(&value);
    V_VT(&value) = VT_I4;
    V_I4(&value) = color;
    EXPECT_EQ(S_OK, style->put_color(value));
}

void SetCursorStyle(IHTMLElement& element, const wchar_t* cursor) {
    ComPtr<IHTMLStyle> style;
    ASSERT_EQ(S_OK, element.get_style(style.GetAddressOf()));
    BSTR text = SysAllocString(cursor);
    EXPECT_EQ(S_OK, style->put_cursor(text));
    SysFreeString(text);
}

TEST_F(EventTest, OverAndOutWhereTheElementChanges) {
    Show(GridMarkup(2, 2));
    const POINT first = MiddleOf(L"S0_0");
    const POINT second = MiddleOf(L"S1_1");
    MoveTo(first);
    MoveTo({first.x + 1, first.y});
    MoveTo(second);
    SendMessageW(host->DocumentWindow(), WM_MOUSELEAVE, 0, 0);
    const struct {
        DISPID id;
        const wchar_t* element;
        const wchar_t* type;
    } expected[] = {{MouseOver, L"S0_0", L"mouseover"},
                    {MouseOut, L"S0_0", L"mouseout"},
                    {MouseOver, L"S1_1", L"mouseover"},
                    {MouseOut, L"S1_1", L"mouseout"}};
    ASSERT_EQ(ARRAYSIZE(expected), host->events.size());
    for (size_t i = 0; i < ARRAYSIZE(expected); ++i) {
        EXPECT_EQ(expected[i].id, host->events[i].id) << i;
        EXPECT_EQ(expected[i].element, host->events[i].sourceId) << i;
        EXPECT_EQ(expected[i].type, host->events[i].type) << i;
    }
}

TEST_F(EventTest, TheSourceIsTheInnermostElement) {
    Show(L"<div id=outer>text <span class=item id=link>link <b>bold</b></span></div>");
    POINT bold = {};
    const Json trace = Trace();
    for (const Json& box : trace[L"boxes"].items) {
        if (box[L"id"].text == L"link") {
            bold = {box[L"x"].Int() + box[L"width"].Int() - 3,
                    box[L"y"].Int() + box[L"height"].Int() / 2};
        }
    }
    ClickAt(bold);
    ASSERT_EQ(1U, host->events.size());
    EXPECT_EQ(Click, host->events[0].id);
    EXPECT_EQ(L"B", host->events[0].sourceTag);
}

TEST_F(EventTest, AClickNeedsBothHalvesOnOneElement) {
    Show(GridMarkup(1, 2));
    const POINT first = MiddleOf(L"S0_0");
    const POINT second = MiddleOf(L"S0_1");
    const HWND window = host->DocumentWindow();
    SendMessageW(window, WM_LBUTTONUP, 0, MAKELPARAM(first.x, first.y));
    SendMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(first.x, first.y));
    SendMessageW(window, WM_LBUTTONUP, 0, MAKELPARAM(second.x, second.y));
    SendMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(first.x, first.y));
    SendMessageW(window, WM_LBUTTONUP, 0, MAKELPARAM(5000, first.y));
    EXPECT_TRUE(host->events.empty());
    ClickAt(first);
    ASSERT_EQ(1U, host->events.size());
    EXPECT_EQ(L"S0_0", host->events[0].sourceId);
}

TEST_F(EventTest, HoverColoursAndHandCursor) {
    Show(GridMarkup(1, 2));
    host->onEvent = [](const HeardEvent& event, IHTMLElement& element) {
        SetColor(element, event.id == MouseOver ? 0xFF0000 : 0x0000FF);
        if (event.id == MouseOver) {
            SetCursorStyle(element, L"hand");
        }
    };
    EXPECT_EQ(L"#0000ff", (*FindBox(Trace(), L"S0_1"))[L"color"].text);
    SetCursor(LoadCursorW(nullptr, IDC_ARROW));
    MoveTo(MiddleOf(L"S0_1"));
    EXPECT_EQ(LoadCursorW(nullptr, IDC_HAND), GetCursor());
    Json trace = Trace();
    EXPECT_EQ(L"#ff0000", (*FindBox(trace, L"S0_1"))[L"color"].text) << "0xRRGGBB is red";
    EXPECT_EQ(L"hand", (*FindBox(trace, L"S0_1"))[L"cursor"].text);
    EXPECT_EQ(L"#0000ff", (*FindBox(trace, L"S0_0"))[L"color"].text);
    SendMessageW(host->DocumentWindow(), WM_MOUSELEAVE, 0, 0);
    trace = Trace();
    EXPECT_EQ(L"#0000ff", (*FindBox(trace, L"S0_1"))[L"color"].text);
    EXPECT_EQ(L"hand", (*FindBox(trace, L"S0_1"))[L"cursor"].text) << "nobody took it back";
    SetCursor(LoadCursorW(nullptr, IDC_ARROW));
    SendMessageW(host->DocumentWindow(), WM_SETCURSOR, 0, MAKELPARAM(HTCLIENT, WM_MOUSEMOVE));
    EXPECT_EQ(LoadCursorW(nullptr, IDC_ARROW), GetCursor()) << "the mouse is elsewhere";
}

TEST_F(EventTest, StylesReadBackAndRefuseNonsense) {
    Show(GridMarkup(1, 1));
    const ComPtr<IHTMLElement> item = host->Element(L"S0_0");
    ComPtr<IHTMLStyle> style;
    ASSERT_EQ(S_OK, item->get_style(style.GetAddressOf()));
    SetColor(*item.Get(), 0x12ABCD);
    VARIANT value;
    ASSERT_EQ(S_OK, style->get_color(&value));
    ASSERT_EQ(VT_BSTR, V_VT(&value));
    EXPECT_STREQ(L"#12abcd", V_BSTR(&value));
    VariantClear(&value);
    BSTR nonsense = SysAllocString(L"no such thing");
    EXPECT_EQ(E_INVALIDARG, style->put_cursor(nonsense));
    V_VT(&value) = VT_BSTR;
    V_BSTR(&value) = nonsense;
    EXPECT_EQ(E_INVALIDARG, style->put_color(value));
    VariantClear(&value);
    EXPECT_EQ(L"#12abcd", (*FindBox(Trace(), L"S0_0"))[L"color"].text);
}

TEST_F(EventTest, AWriteInTheMiddleOfAnEventIsSafe) {
    Show(GridMarkup(2, 3));
    const POINT first = MiddleOf(L"S0_0");
    const POINT second = MiddleOf(L"S1_2");
    host->onEvent = [this](const HeardEvent&, IHTMLElement&) {
        host->Write(L"Sections", GridMarkup(2, 3));
    };
    MoveTo(first);
    host->events.clear();
    // The element that the mouse was over left the page, so it has nobody to tell.
    MoveTo(second);
    ASSERT_EQ(1U, host->events.size());
    EXPECT_EQ(MouseOver, host->events[0].id);
    ClickAt(second);
    EXPECT_EQ(Click, host->events.back().id);
    EXPECT_EQ(L"S1_2", host->events.back().sourceId);
}

TEST_F(EventTest, AHostMayCloseInTheMiddleOfAnEvent) {
    for (const bool byClick : {true, false}) {
        Show(GridMarkup(1, 1));
        host->onEvent = [&](const HeardEvent&, IHTMLElement&) { host->Close(); };
        const POINT item = MiddleOf(L"S0_0");
        if (byClick) {
            ClickAt(item);
        } else {
            MoveTo(item);
        }
        EXPECT_EQ(nullptr, host->Window()) << "closed by the event";
        EXPECT_EQ(0U, host->Close());
    }
}

TEST_F(EventTest, NobodyHearsAfterUnadvise) {
    Show(GridMarkup(1, 1));
    const POINT item = MiddleOf(L"S0_0");
    ComPtr<IConnectionPointContainer> container;
    ComPtr<IConnectionPoint> point;
    ASSERT_EQ(S_OK, host->Document().As(&container));
    EXPECT_EQ(CONNECT_E_NOCONNECTION,
              container->FindConnectionPoint(IID_IDispatch, point.GetAddressOf()));
    ASSERT_EQ(S_OK,
              container->FindConnectionPoint(__uuidof(HTMLDocumentEvents2), point.GetAddressOf()));
    int heard = 0;
    HostSink sink(__uuidof(HTMLDocumentEvents2), [&](DISPID, DISPPARAMS&) { ++heard; });
    DWORD cookie = 0;
    ASSERT_EQ(S_OK, point->Advise(&sink, &cookie));
    ClickAt(item);
    EXPECT_EQ(1, heard);
    EXPECT_EQ(S_OK, point->Unadvise(cookie));
    EXPECT_EQ(CONNECT_E_NOCONNECTION, point->Unadvise(cookie));
    ClickAt(item);
    EXPECT_EQ(1, heard);
    EXPECT_EQ(0U, sink.References());
}

TEST_F(EventTest, TheRealMouseIsHeard) {
    Show(GridMarkup(1, 2));
    SetForegroundWindow(host->Window());
    POINT at = MiddleOf(L"S0_1");
    ClientToScreen(host->DocumentWindow(), &at);
    SetCursorPos(at.x, at.y);
    EXPECT_TRUE(BrowserHost::PumpUntil(
        [&] { return !host->events.empty() && host->events.back().sourceId == L"S0_1"; }));
    SetCursorPos(1500, 1100);
    EXPECT_TRUE(BrowserHost::PumpUntil([&] {
        return !host->events.empty() && host->events.back().id == MouseOut;
    })) << "the mouse left the window";
}

TEST_F(EventTest, KeysGoToTheHostFirst) {
    Show(GridMarkup(8, 12));
    constexpr UINT Messages[] = {WM_KEYDOWN, WM_KEYUP, WM_SYSKEYDOWN, WM_SYSKEYUP};
    for (const UINT message : Messages) {
        host->keyMessages.clear();
        host->keyAnswer = S_OK;
        EXPECT_EQ(S_OK, host->Translate(message, VK_NEXT));
        ASSERT_EQ(1U, host->keyMessages.size());
        EXPECT_EQ(message, host->keyMessages[0]);
    }
    EXPECT_EQ(0, Trace()[L"scrollTop"].Int()) << "the host took the key";
    for (const HRESULT declined : {S_FALSE, E_FAIL, E_NOTIMPL}) {
        host->keyAnswer = declined;
        EXPECT_NE(S_OK, host->Translate(WM_KEYUP, VK_F5));
    }
    host->keyAnswer = S_FALSE;
    EXPECT_EQ(S_OK, host->Translate(WM_KEYDOWN, VK_NEXT));
    EXPECT_LT(0, Trace()[L"scrollTop"].Int());
}

} // namespace
} // namespace test
