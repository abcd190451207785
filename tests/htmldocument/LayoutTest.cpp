// Where things come to stand. Fonts differ between machines, so no test knows the position of a
// text; all of them compare boxes with each other.
#include <gtest/gtest.h>

#include <cmath>

#include "tests/htmldocument/PageText.h"
#include "wine/htmldocument/engine/Page.h"

namespace html {
namespace {

constexpr wchar_t Sheet[] =
    L"<style>#bordertable table{BORDER-STYLE:solid;BORDER-COLOR:#AAAAAA;BORDER-WIDTH:1px}"
    L"table.innertable{BORDER-WIDTH:0px}"
    L"body{FONT:68% franklin gothic,arial,helvetica;COLOR:#000000;line-height:6pt;}"
    L"td{FONT:68% franklin gothic,arial,helvetica;COLOR:#000000;line-height:12pt;}"
    L"h2{MARGIN:20px 0px -5px 10px;FONT:130% franklin gothic,arial,helvetica;font-weight:bold;}"
    L"</style>";

class LayoutTest : public testing::Test {
protected:
    void Load(const std::wstring& body) { m_page.Load(Sheet + body); }
    Area AreaOf(std::wstring_view id, double width = 700, double scale = 1) {
        Area area;
        const Node* const node = m_page.Root().FindById(id);
        EXPECT_TRUE(node != nullptr && m_page.LayoutFor(width, scale).AreaOf(*node, area))
            << std::wstring(id);
        return area;
    }
    Page m_page;
};

TEST_F(LayoutTest, TheColumnsOfTheGridAreEven) {
    for (const double width : {640.0, 700.0, 701.0, 1404.0}) {
        Load(L"<table id=bordertable width=100%><tr><td><div id=Sections>" +
             test::GridMarkup(3, 4) + L"</div></table>");
        std::vector<Area> cells;
        for (const BoxItem& box : m_page.LayoutFor(width, 1).boxes) {
            if (box.element->HasClass(L"column")) {
                cells.push_back(box.area);
            }
        }
        ASSERT_EQ(4U, cells.size()) << "the cell that is never closed is there too";
        EXPECT_NEAR(cells[0].width, cells[1].width, 1) << width;
        EXPECT_EQ(cells[0].width, cells[2].width);
        EXPECT_EQ(cells[0].x, cells[2].x);
        EXPECT_EQ(cells[1].x, cells[3].x);
        EXPECT_EQ(cells[0].y, cells[1].y);
        EXPECT_GE(cells[2].y, cells[0].y + cells[0].height);
        EXPECT_EQ(cells[2].height, cells[3].height) << "as tall as its row";
        EXPECT_LE(cells[1].x + cells[1].width, width);
        EXPECT_EQ(width, m_page.LayoutFor(width, 1).width) << "nothing reaches beyond the window";
    }
}

TEST_F(LayoutTest, ThePageHasMarginsOf10And15Pixels) {
    for (const double scale : {1.0, 1.5}) {
        Load(L"<table id=t width=100%><tr><td>x</table>");
        const Area table = AreaOf(L"t", 700, scale);
        EXPECT_DOUBLE_EQ(10 * scale, table.x);
        EXPECT_DOUBLE_EQ(15 * scale, table.y);
        EXPECT_DOUBLE_EQ(700 - 20 * scale, table.width);
        EXPECT_DOUBLE_EQ(table.y + table.height + 15 * scale, m_page.LayoutFor(700, scale).height);
    }
}

TEST_F(LayoutTest, ABlockThatIsTooLongForItsColumnWidensTheTable) {
    Load(L"<table id=t width=100%><tr><td id=a width=50%>x<td id=b width=50%>" +
         std::wstring(300, L'w') + L"</table>");
    EXPECT_GT(AreaOf(L"b").width, 700);
    EXPECT_GE(AreaOf(L"t").width, AreaOf(L"a").width + AreaOf(L"b").width);
}

TEST_F(LayoutTest, ItemsOfAListFollowEachOther) {
    Load(L"<table><tr><td><ul><li id=a>one</li><li id=b>two</li><li id=c>three</ul></table>");
    EXPECT_EQ(AreaOf(L"a").y + 16, AreaOf(L"b").y) << "line-height 12pt";
    EXPECT_EQ(AreaOf(L"b").y + 16, AreaOf(L"c").y);
    EXPECT_EQ(AreaOf(L"a").x, AreaOf(L"b").x);
    int bullets = 0;
    for (const TextItem& item : m_page.LayoutFor(700, 1).texts) {
        bullets += item.isBullet ? 1 : 0;
        EXPECT_TRUE(!item.isBullet || item.area.x + item.area.width < AreaOf(L"a").x);
    }
    EXPECT_EQ(3, bullets);
}

TEST_F(LayoutTest, MarginsCollapse) {
    const struct {
        const wchar_t* first;
        const wchar_t* second;
        double distance;
    } cases[] = {{L"10px", L"20px", 20}, {L"20px", L"10px", 20}, {L"20px", L"-5px", 15},
                 {L"-5px", L"-9px", -9}, {L"0px", L"0px", 0},    {L"-5px", L"11px", 6}};
    for (const auto& c : cases) {
        Load(std::wstring(L"<div id=a style='margin:0px 0px ") + c.first +
             L"'>x</div><div><div id=b style='margin:" + c.second + L" 0px 0px'>y</div></div>");
        const Area a = AreaOf(L"a");
        EXPECT_DOUBLE_EQ(a.y + a.height + c.distance, AreaOf(L"b").y)
            << c.first << L" " << c.second;
    }
}

TEST_F(LayoutTest, ACellKeepsAWrittenMarginButNoCustomaryOne) {
    Load(L"<table><tr><td id=c><div id=d><h2 id=h>x</h2></div></table>");
    EXPECT_EQ(AreaOf(L"c").y + 1 + 20, AreaOf(L"h").y);
    EXPECT_EQ(AreaOf(L"d").y, AreaOf(L"h").y) << "the margin is outside of the block around it";
    Load(L"<table><tr><td id=c><p id=p>x</table>");
    EXPECT_EQ(AreaOf(L"c").y + 1, AreaOf(L"p").y);
}

TEST_F(LayoutTest, LinesBreakBetweenWordsOnly) {
    Load(L"<div id=d>aaaa bbbb<b>cccc</b> dddd</div>");
    const double wide = AreaOf(L"d", 700).height;
    const double narrow = AreaOf(L"d", 60).height;
    EXPECT_GT(narrow, wide);
    std::vector<TextItem> texts = m_page.LayoutFor(17, 1).texts;
    ASSERT_EQ(4U, texts.size());
    EXPECT_EQ(L"bbbb", texts[1].text);
    EXPECT_EQ(L"cccc", texts[2].text);
    EXPECT_EQ(texts[1].baseline, texts[2].baseline) << "no space, no break";
    EXPECT_EQ(texts[1].area.x + texts[1].area.width, texts[2].area.x);
    texts = m_page.LayoutFor(700, 1).texts;
    ASSERT_EQ(3U, texts.size());
    EXPECT_EQ(L"aaaa bbbb", texts[0].text) << "one text for each element and line";
}

TEST_F(LayoutTest, AnImageIsCentredInItsCell) {
    Load(L"<table width=100%><tr><td id=c align=center><img id=i width=100 height=50></table>");
    const Area cell = AreaOf(L"c");
    const Area image = AreaOf(L"i");
    EXPECT_NEAR(cell.x + cell.width / 2, image.x + image.width / 2, 1);
    EXPECT_EQ(50 + 2, cell.height) << "no room for letters below it";
}

TEST_F(LayoutTest, VerticalAlignment) {
    Load(L"<table><tr><td>a<br>b<br>c<td id=t valign=top><b id=x>x</b><td id=m><b id=y>y</b>"
         L"<td valign=bottom><b id=z>z</b></table>");
    EXPECT_LT(AreaOf(L"x").y, AreaOf(L"y").y);
    EXPECT_LT(AreaOf(L"y").y, AreaOf(L"z").y);
    EXPECT_EQ(AreaOf(L"t").height, AreaOf(L"m").height);
}

TEST_F(LayoutTest, EverythingGrowsWithTheScale) {
    Load(L"<table width=100%><tr><td><img id=i width=100 height=50><ul><li id=l>x</ul></table>");
    const Area small = AreaOf(L"i", 700, 1);
    const double line = AreaOf(L"l", 700, 1).height;
    const Area large = AreaOf(L"i", 1050, 1.5);
    EXPECT_DOUBLE_EQ(small.width * 1.5, large.width);
    EXPECT_DOUBLE_EQ(small.height * 1.5, large.height);
    EXPECT_DOUBLE_EQ(line * 1.5, AreaOf(L"l", 1050, 1.5).height);
}

TEST_F(LayoutTest, HitTestsFindTheInnermostElement) {
    Load(L"<div id=d><span id=s>link</span></div>");
    const Area link = AreaOf(L"s");
    const Layout& layout = m_page.LayoutFor(700, 1);
    EXPECT_EQ(L"span", layout.HitTest(link.x + 1, link.y + link.height / 2)->Tag());
    EXPECT_EQ(L"div", layout.HitTest(link.x + link.width + 1, AreaOf(L"d").y + 1)->Tag());
    EXPECT_EQ(nullptr, layout.HitTest(-1, -1));
}

TEST_F(LayoutTest, BoxesComeInDocumentOrder) {
    Load(L"<table id=bordertable width=100%><tr><td>" + test::GridMarkup(4, 2) + L"</table>");
    const Layout& layout = m_page.LayoutFor(700, 1);
    std::vector<const Node*> order;
    const std::function<void(const Node&)> collect = [&](const Node& node) {
        order.push_back(&node);
        for (const NodePtr& child : node.Children()) {
            collect(*child);
        }
    };
    collect(m_page.Root());
    size_t at = 0;
    for (const BoxItem& box : layout.boxes) {
        while (at < order.size() && order[at] != box.element) {
            ++at;
        }
        ASSERT_LT(at, order.size()) << "a box out of order";
    }
}

} // namespace
} // namespace html
