// Which declaration wins, and what the values mean.
#include <gtest/gtest.h>

#include "wine/htmldocument/engine/HtmlParser.h"
#include "wine/htmldocument/engine/Style.h"

namespace html {
namespace {

class StyleTest : public testing::Test {
protected:
    void Load(std::wstring_view rules, std::wstring_view body) {
        m_sheet = {};
        m_sheet.Add(rules);
        m_root = ParseDocument(body);
    }
    Style Of(const Node& node, double scale = 1) const {
        const Style parent =
            node.Parent() != nullptr ? Of(*node.Parent(), scale) : InitialStyle(scale);
        return ResolveStyle(node, parent, m_sheet, scale);
    }
    Style OfId(std::wstring_view id, double scale = 1) const {
        return Of(*m_root->FindById(id), scale);
    }

    StyleSheet m_sheet;
    NodePtr m_root;
};

TEST_F(StyleTest, TheMoreSpecificSelectorWinsThenTheLater) {
    const struct {
        const wchar_t* rules;
        COLORREF color;
    } cases[] = {
        {L"p{color:#111111} p{color:#222222}", RGB(0x22, 0x22, 0x22)},
        {L".c{color:#111111} p{color:#222222}", RGB(0x11, 0x11, 0x11)},
        {L"#x{color:#111111} p.c{color:#222222}", RGB(0x11, 0x11, 0x11)},
        {L"#out p{color:#111111} p.c{color:#222222}", RGB(0x11, 0x11, 0x11)},
        {L"div div p{color:#111111} p{color:#222222}", RGB(0x22, 0x22, 0x22)},
        {L"body #out p{color:#111111}", RGB(0x11, 0x11, 0x11)},
        {L"a,p,b{color:#111111}", RGB(0x11, 0x11, 0x11)},
        {L"P.C{COLOR:#111111}", RGB(0x11, 0x11, 0x11)},
        {L"p.c.d{color:#111111}", RGB(0, 0, 0)},
        {L"p > b, p:hover, p[id]{color:#111111}", RGB(0, 0, 0)},
        {L"<!-- p{color:#111111} -->", RGB(0x11, 0x11, 0x11)},
        {L"/* p{} */ p{/*x*/color:#111111/*", RGB(0x11, 0x11, 0x11)},
        {L"{color:#111111} p{color", RGB(0, 0, 0)},
        {L"*{color:#111111}", RGB(0x11, 0x11, 0x11)},
        {L"}}}{{{;:;", RGB(0, 0, 0)},
    };
    for (const auto& c : cases) {
        Load(c.rules, L"<div id=out><p id=x class='b c'>");
        EXPECT_EQ(c.color, OfId(L"x").color) << c.rules;
    }
    Load(L"#x{color:#111111}", L"<p id=x style='color:red'>");
    EXPECT_EQ(RGB(255, 0, 0), OfId(L"x").color) << "the style attribute is stronger";
}

TEST_F(StyleTest, Colours) {
    const struct {
        const wchar_t* text;
        bool good;
        COLORREF color;
    } cases[] = {
        {L"#0000FF", true, RGB(0, 0, 255)},
        {L"#1a2B3c", true, RGB(0x1a, 0x2b, 0x3c)},
        {L"#f80", true, RGB(255, 0x88, 0)},
        {L"rgb(1, 2,300)", true, RGB(1, 2, 255)},
        {L" Navy ", true, RGB(0, 0, 128)},
        {L"#12345", false, 0},
        {L"#gggggg", false, 0},
        {L"", false, 0},
        {L"#", false, 0},
        {L"rgb(1,2", false, 0},
        {L"rgb(99999999999999,0,0)", true, RGB(255, 0, 0)},
        {L"nonsense", false, 0},
    };
    for (const auto& c : cases) {
        COLORREF color = 0xABCDEF;
        EXPECT_EQ(c.good, ParseColor(c.text, color)) << c.text;
        EXPECT_EQ(c.good ? c.color : 0xABCDEF, color) << c.text;
    }
}

TEST_F(StyleTest, TheFontShorthandResetsWhatItDoesNotName) {
    Load(L"td{font:68% franklin gothic,arial;line-height:12pt}"
         L"h2{font:130% x,y;font-weight:bold;margin:20px 0px -5px 10px}",
         L"<table><tr><td id=cell><h2 id=head><span id=in>");
    const Style cell = OfId(L"cell");
    EXPECT_DOUBLE_EQ(16 * 0.68, cell.fontSize);
    EXPECT_DOUBLE_EQ(16, cell.lineHeight) << "12pt";
    EXPECT_EQ(L"franklin gothic,arial", cell.fontFamily);
    EXPECT_FALSE(cell.bold);
    const Style head = OfId(L"head");
    EXPECT_DOUBLE_EQ(16 * 0.68 * 1.3, head.fontSize) << "of the cell's, not of the default for h2";
    EXPECT_DOUBLE_EQ(0, head.lineHeight);
    EXPECT_TRUE(head.bold);
    EXPECT_DOUBLE_EQ(20, head.margin.top);
    EXPECT_DOUBLE_EQ(0, head.margin.right);
    EXPECT_DOUBLE_EQ(-5, head.margin.bottom);
    EXPECT_DOUBLE_EQ(10, head.margin.left);
    EXPECT_TRUE(OfId(L"in").bold) << "inherited";
    EXPECT_DOUBLE_EQ(0, OfId(L"in").margin.top) << "not inherited";
}

TEST_F(StyleTest, ATableStartsAnewWithTheTextSize) {
    Load(L"body{font:50% a;line-height:6pt} td{font:50% a}",
         L"<body><p id=p>x<table><tr><td id=one><table><tr><td id=two>");
    EXPECT_DOUBLE_EQ(8, OfId(L"p").fontSize);
    EXPECT_DOUBLE_EQ(8, OfId(L"p").lineHeight);
    EXPECT_DOUBLE_EQ(8, OfId(L"one").fontSize);
    EXPECT_DOUBLE_EQ(8, OfId(L"two").fontSize) << "not smaller with each table";
    EXPECT_DOUBLE_EQ(0, OfId(L"two").lineHeight);
}

TEST_F(StyleTest, BordersNeedAStyle) {
    Load(L"#b table{BORDER-STYLE:solid;BORDER-COLOR:#AAAAAA;BORDER-WIDTH:1px}"
         L"table.innertable{BORDER-WIDTH:0px} .w{border-width:3px}",
         L"<table id=b><tr><td><table id=t class=innertable><tr><td id=c class=w>");
    EXPECT_DOUBLE_EQ(1, OfId(L"t").border.left) << "the id makes the first rule stronger";
    EXPECT_EQ(RGB(0xAA, 0xAA, 0xAA), OfId(L"t").borderColor);
    EXPECT_DOUBLE_EQ(0, OfId(L"b").border.left);
    EXPECT_DOUBLE_EQ(0, OfId(L"c").border.left) << "a width without a style";
}

TEST_F(StyleTest, LengthsFollowTheScale) {
    Load(L"p{margin:10px;font-size:9pt;padding:2em}", L"<p id=p width=20 >");
    for (const double scale : {1.0, 1.25, 1.5}) {
        const Style style = OfId(L"p", scale);
        EXPECT_DOUBLE_EQ(10 * scale, style.margin.left);
        EXPECT_DOUBLE_EQ(12 * scale, style.fontSize);
        EXPECT_DOUBLE_EQ(24 * scale, style.padding.top);
        EXPECT_DOUBLE_EQ(20 * scale, style.width.value);
    }
}

TEST_F(StyleTest, ValuesThatMakeNoSenseChangeNothing) {
    Load(L"p{font-size:x;margin:1px y;width:-5px;line-height:;font:bold;cursor:}",
         L"<p id=p width=abc style='margin:1e999px;font-size:99999999999999px'>");
    const Style style = OfId(L"p");
    EXPECT_DOUBLE_EQ(100000, style.fontSize) << "the largest length there is";
    EXPECT_EQ(Width::Kind::Automatic, style.width.kind);
    EXPECT_EQ(L"", style.cursor);
}

TEST_F(StyleTest, UnderlineAndCursorReachWhatIsInside) {
    Load(L"", L"<span style='text-decoration:underline;cursor:hand'><b id=b "
              L"style='text-decoration:none'>");
    EXPECT_TRUE(OfId(L"b").underline);
    EXPECT_EQ(L"hand", OfId(L"b").cursor);
}

} // namespace
} // namespace html
