// The trace file, scrolling, and markup that nobody should write.
#include "tests/htmldocument/HostTest.h"

#include <random>

#include "tests/htmldocument/PageText.h"
#include "wine/htmldocument/com/Json.h"

namespace test {
namespace {

using TraceTest = HostTest;

TEST(JsonText, IsAlwaysValid) {
    const struct {
        std::wstring text;
        const char* json;
    } cases[] = {{L"", "\"\""},
                 {L"a\"b\\c", "\"a\\\"b\\\\c\""},
                 {std::wstring(L"\0\n\x1F", 3), "\"\\u0000\\u000a\\u001f\""},
                 {L"\u00E9\u20AC\U0001F600", "\"\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\""},
                 {L"\xD83D", "\"\\ud83d\""},
                 {L"\xDE00x\xD83D", "\"\\ude00x\\ud83d\""},
                 {L"\xD83D\xD83D\xDE00", "\"\\ud83d\xF0\x9F\x98\x80\""}};
    for (const auto& c : cases) {
        EXPECT_EQ(c.json, html::JsonText(c.text));
        Json value;
        EXPECT_TRUE(ParseJson(html::JsonText(c.text), value));
        EXPECT_EQ(c.text, value.text);
    }
}

TEST_F(TraceTest, TellsWhatIsShown) {
    const std::wstring markup = GridMarkup(3, 2);
    Show(markup);
    const Json trace = Trace();
    EXPECT_EQ(Json::Kind::Bool, trace[L"loaded"].kind);
    EXPECT_EQ(1, trace[L"loaded"].Int());
    EXPECT_EQ(96, trace[L"dpi"].Int());
    EXPECT_EQ(1, trace[L"writes"].Int());
    EXPECT_EQ(markup, trace[L"innerHtml"][L"Sections"].text);
    RECT client = {};
    POINT corner = {};
    GetClientRect(host->DocumentWindow(), &client);
    ClientToScreen(host->DocumentWindow(), &corner);
    EXPECT_EQ(corner.x, trace[L"window"][L"x"].Int());
    EXPECT_EQ(corner.y, trace[L"window"][L"y"].Int());
    EXPECT_EQ(client.right, trace[L"window"][L"width"].Int());
    EXPECT_EQ(client.bottom, trace[L"window"][L"height"].Int());

    std::wstring order;
    for (const Json& box : trace[L"boxes"].items) {
        order += box[L"tag"].text + L" ";
        EXPECT_LT(0, box[L"width"].Int()) << order;
    }
    EXPECT_EQ(L"div td img td div "
              L"td div h2 span span td div h2 span span "
              L"td div h2 span span td ",
              order);
    for (const Json& box : trace[L"boxes"].items) {
        if (box[L"tag"].text == L"img") {
            EXPECT_EQ(1, box[L"loaded"].Int());
            EXPECT_LT(100, box[L"width"].Int()) << "the picture's own size";
        }
    }
    const Json& item = *FindBox(trace, L"S1_1");
    EXPECT_EQ(L"item", item[L"class"].text);
    EXPECT_EQ(L"Item 1 of section 1", item[L"text"].text);
}

TEST_F(TraceTest, EachChangeIsANewStateOfTheFile) {
    Show(GridMarkup(1, 1));
    int sequence = Trace()[L"sequence"].Int();
    host->Write(L"Sections", L"two");
    Json trace = Trace();
    EXPECT_LT(sequence, trace[L"sequence"].Int());
    EXPECT_EQ(2, trace[L"writes"].Int());
    EXPECT_EQ(L"two", trace[L"innerHtml"][L"Sections"].text);
    sequence = trace[L"sequence"].Int();
    host->Resize({500, 400});
    trace = Trace();
    EXPECT_LT(sequence, trace[L"sequence"].Int());
    EXPECT_GE(500, trace[L"window"][L"width"].Int());
    EXPECT_GE(400, trace[L"window"][L"height"].Int());
}

TEST_F(TraceTest, AnImageThatIsMissingIsNotLoaded) {
    Show(L"<img src=\"res:/IMAGE/NOBODY.JPG\"><img src=\"\"><img src=\"::\">");
    int images = 0;
    const Json trace = Trace();
    for (const Json& box : trace[L"boxes"].items) {
        if (box[L"tag"].text == L"img" && box[L"loaded"].Int() == 0) {
            ++images;
        }
    }
    EXPECT_EQ(3, images);
}

bool HasBar(HWND window, LONG style) {
    return (GetWindowLongW(window, GWL_STYLE) & style) != 0;
}

TEST_F(TraceTest, ScrollsWhereThePageIsTallerThanTheWindow) {
    Show(GridMarkup(8, 12), {740, 400});
    const HWND window = host->DocumentWindow();
    EXPECT_TRUE(HasBar(window, WS_VSCROLL));
    EXPECT_FALSE(HasBar(window, WS_HSCROLL));
    const Json before = Trace();
    const int range = before[L"contentHeight"].Int() - before[L"window"][L"height"].Int();
    ASSERT_LT(200, range);
    const int itemTop = (*FindBox(before, L"S0_0"))[L"y"].Int();

    const auto scrolled = [&] { return Trace()[L"scrollTop"].Int(); };
    SendMessageW(window, WM_MOUSEWHEEL, MAKEWPARAM(0, static_cast<WORD>(-WHEEL_DELTA)), 0);
    const int notch = scrolled();
    EXPECT_LT(0, notch);
    EXPECT_EQ(itemTop - notch, (*FindBox(Trace(), L"S0_0"))[L"y"].Int());
    // A fine wheel: seventeen times 7 and once 1 make one notch of 120.
    for (int i = 0; i < 17; ++i) {
        SendMessageW(window, WM_MOUSEWHEEL, MAKEWPARAM(0, 7), 0);
    }
    EXPECT_LT(0, scrolled());
    SendMessageW(window, WM_MOUSEWHEEL, MAKEWPARAM(0, 1), 0);
    EXPECT_EQ(0, scrolled()) << "no part of a notch is lost";
    SendMessageW(window, WM_MOUSEWHEEL, MAKEWPARAM(0, WHEEL_DELTA), 0);
    EXPECT_EQ(0, scrolled()) << "there is nothing above";

    const struct {
        UINT message;
        WPARAM wParam;
        int position;
    } steps[] = {{WM_KEYDOWN, VK_END, range},  {WM_KEYDOWN, VK_DOWN, range},
                 {WM_KEYDOWN, VK_HOME, 0},     {WM_VSCROLL, SB_BOTTOM, range},
                 {WM_VSCROLL, SB_TOP, 0},      {WM_VSCROLL, MAKEWPARAM(SB_THUMBPOSITION, 0), 0},
                 {WM_VSCROLL, SB_ENDSCROLL, 0}};
    for (const auto& step : steps) {
        SendMessageW(window, step.message, step.wParam, 0);
        EXPECT_EQ(step.position, scrolled()) << step.message << " " << step.wParam;
    }
    SendMessageW(window, WM_KEYDOWN, VK_NEXT, 0);
    const int page = scrolled();
    EXPECT_EQ(Trace()[L"window"][L"height"].Int(), page);
    SendMessageW(window, WM_KEYDOWN, VK_PRIOR, 0);
    EXPECT_EQ(0, scrolled());

    // The element under a point is the one that was scrolled there.
    SendMessageW(window, WM_KEYDOWN, VK_END, 0);
    MoveTo(MiddleOf(L"S7_11"));
    ASSERT_FALSE(host->events.empty());
    EXPECT_EQ(L"S7_11", host->events.back().sourceId);

    host->Write(L"Sections", L"short");
    EXPECT_EQ(0, scrolled());
    EXPECT_TRUE(HasBar(window, WS_VSCROLL)) << "the bar stands there without a use";
}

TEST_F(TraceTest, BorderAndBarTakeTheirRoomUnlessTheHostDeclinesThem) {
    const LONG border = 2 * GetSystemMetrics(SM_CXEDGE);
    const LONG bar = GetSystemMetrics(SM_CXVSCROLL);
    const struct {
        DWORD flags;
        LONG less;
    } cases[] = {{0, border + bar},
                 {DOCHOSTUIFLAG_FLAT_SCROLLBAR, border + bar},
                 {DOCHOSTUIFLAG_NO3DBORDER, bar},
                 {DOCHOSTUIFLAG_SCROLL_NO, border},
                 {DOCHOSTUIFLAG_NO3DBORDER | DOCHOSTUIFLAG_SCROLL_NO, 0}};
    for (const auto& c : cases) {
        host = std::make_unique<BrowserHost>(SIZE{680, 600});
        host->hostFlags = c.flags;
        ASSERT_TRUE(host->Open());
        RECT client = {};
        GetClientRect(host->DocumentWindow(), &client);
        EXPECT_EQ(680 - c.less, client.right) << c.flags;
        EXPECT_EQ(client.right, Trace()[L"window"][L"width"].Int());
        EXPECT_EQ(0U, host->Close());
    }
}

TEST_F(TraceTest, ANarrowWindowScrollsSideways) {
    Show(L"x", {300, 700});
    EXPECT_TRUE(HasBar(host->DocumentWindow(), WS_HSCROLL)) << "the banner is wider";
    SendMessageW(host->DocumentWindow(), WM_HSCROLL, SB_BOTTOM, 0);
    const Json trace = Trace();
    for (const Json& box : trace[L"boxes"].items) {
        if (box[L"tag"].text == L"img") {
            EXPECT_GT(0, box[L"x"].Int());
            EXPECT_LE(box[L"x"].Int() + box[L"width"].Int(), trace[L"window"][L"width"].Int());
        }
    }
}

TEST_F(TraceTest, OddMarkupIsShownSomehow) {
    std::wstring deep;
    for (int i = 0; i < 3000; ++i) {
        deep += i % 3 == 0 ? L"<table><tr><td>" : i % 3 == 1 ? L"<ul><li>" : L"<span><div>";
    }
    const std::wstring cases[] = {
        L"",
        L"<",
        L"</",
        L"<>",
        L"</>",
        L"<!",
        L"<!--",
        L"&",
        L"&#",
        L"&#x",
        L"&;",
        L"\"",
        L"'",
        L"<div",
        L"<div id",
        L"<div id=",
        L"<div id=\"",
        L"<div id='x",
        L"<div id=x<div>",
        L"C:\\Program Files\\\"KOR\"\\<x>&y;",
        L"\u00E9\u4E2D\u6587 \u05D0\u05D1",
        std::wstring(L"a\0b<i\0d>c", 9),
        L"\xD800",
        L"\xDC00\xD800<b>\xD83D</b>\xDE00",
        L"</table></td></tr></div></body></html>after",
        L"<table><table><tr><table>x",
        L"<td><td><tr><td>",
        L"<ul></li><li></ul><li>",
        L"<table></td>x</table>",
        L"<style>*{display:none}</style>x",
        L"<script>",
        L"<title>x",
        L"<img><img src>",
        L"<div style=\"margin:-9999999px;width:-1;font:0px x;line-height:-50pt\">x</div>",
        L"<div style=\"font-size:99999999px\">x</div>",
        L"<p style=display:none><b>x",
        L"<table width=99999999%><tr><td width=-5%>x<td width=0%>y<td width=900%>z</table>",
        L"<table cellspacing=99999999 cellpadding=-1 border=x><tr><td>x</table>",
        L"<div id=Sections>inner</div>",
        std::wstring(50000, L'x'),
        std::wstring(20000, L'<'),
        std::wstring(20000, L'&'),
        deep};
    Show(L"x");
    for (const std::wstring& markup : cases) {
        host->Write(L"Sections", markup);
        UpdateWindow(host->DocumentWindow());
        MoveTo({300, 300});
        EXPECT_EQ(markup, Trace()[L"innerHtml"][L"Sections"].text) << markup.substr(0, 60);
    }
    host->Write(L"Sections", GridMarkup(1, 1));
    EXPECT_NE(nullptr, FindBox(Trace(), L"S0_0")) << "the page is whole after all that";
}

TEST_F(TraceTest, ThousandsOfDamagedPagesAreShownSomehow) {
    SetEnvironmentVariableW(L"KOR_HTML_TRACE", nullptr);
    Show(L"x");
    const std::wstring good = GridMarkup(3, 2);
    const wchar_t special[] = L"<>/=\"'&;# \t\n!-?\0tdrliuspan\u00E9\xD800%0";
    std::mt19937 random(20); // the same damage on every run
    const auto below = [&random](size_t limit) { return static_cast<size_t>(random() % limit); };
    for (int i = 0; i < 3000; ++i) {
        std::wstring markup = good;
        for (size_t n = below(12) + 1; n > 0; --n) {
            const size_t at = below(markup.size());
            switch (random() % 4) {
            case 0:
                markup[at] = special[below(ARRAYSIZE(special) - 1)];
                break;
            case 1:
                markup.erase(at, below(40));
                break;
            case 2:
                markup.insert(at, 1, special[below(ARRAYSIZE(special) - 1)]);
                break;
            default:
                markup.insert(at, good, below(good.size()), below(80));
                break;
            }
            markup = markup.empty() ? L"x" : markup;
        }
        host->Write(L"Sections", markup);
        if (i % 100 == 0) {
            UpdateWindow(host->DocumentWindow());
            MoveTo({static_cast<LONG>(below(600)), static_cast<LONG>(below(500))});
        }
    }
    host->Write(L"Sections", GridMarkup(1, 1));
    EXPECT_NE(nullptr, host->Element(L"S0_0"));
}

} // namespace
} // namespace test
