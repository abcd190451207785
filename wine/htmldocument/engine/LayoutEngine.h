// Lays a page out: blocks with collapsing margins, lines of text, list items and tables whose
// columns share the width. One engine serves one layout.
#pragma once

#include <functional>
#include <unordered_map>
#include <vector>

#include "wine/htmldocument/engine/FontCache.h"
#include "wine/htmldocument/engine/Layout.h"
#include "wine/htmldocument/engine/Style.h"

namespace html {

// The natural size of an image in device pixels; 0 by 0 while there is none.
using ImageSizes = std::function<SIZE(const Node& image)>;

class LayoutEngine {
public:
    LayoutEngine(const StyleSheet& sheet, ImageSizes imageSizes, FontCache& fonts, double scale);
    // width: of the window's client area.
    Layout Run(const Node& root, double width);
    // The resolved style of an element of the page.
    const Style& StyleOf(const Node& element);

private:
    // Margins that have met and are not yet turned into space: the largest counts, less the most
    // negative one.
    struct Margins {
        double positive = 0;
        double negative = 0;
        void Add(double margin);
        double Sum() const { return positive + negative; }
    };
    // The way down one column of blocks.
    struct Flow {
        double y = 0;
        Margins margins;
        std::vector<size_t> undecidedTops; // boxes that begin where the next content does
        bool atCellStart = false;
    };
    struct InlineItem {
        enum class Kind { Word, Space, Image, Break };
        Kind kind = Kind::Word;
        const Node* element = nullptr;
        const Style* style = nullptr;
        std::wstring text;
        double width = 0;
        double height = 0; // of images
    };
    using InlineItems = std::vector<InlineItem>;
    struct Widths {
        double minimum = 0;
        double maximum = 0;
    };
    struct Column {
        Widths widths;
        double percent = 0;
        double width = 0;
    };
    using Rows = std::vector<std::vector<const Node*>>;

    // Blocks.
    void Settle(Flow& flow);
    bool IsInlineLevel(const Node& node);
    void LayOutBlock(const Node& node, double x, double width, Flow& flow);
    void LayOutChildren(const Node& node, double x, double width, Flow& flow);
    size_t AddBox(const Node& element, const Style& style, const Area& area);
    void Shift(size_t firstBox, size_t endBox, size_t firstText, size_t endText, double dy);

    // Lines.
    void CollectInline(const Node& node, InlineItems& items);
    void CollectText(const Node& text, InlineItems& items);
    void LayOutLines(const Node& container, const InlineItems& items, double x, double width,
                     Flow& flow);
    void PlaceLine(const Node& container, InlineItems line, double x, double width, Flow& flow);
    void PlaceItems(const InlineItems& line, double x, double baseline);
    void PlaceBullet(double baseline);
    const Style& StyleAround(const Node& text);

    // Tables.
    Rows RowsOf(const Node& table);
    std::vector<Column> ColumnsOf(const Rows& rows);
    double TableWidth(const Node& table, const std::vector<Column>& columns, double available);
    static void ShareWidth(std::vector<Column>& columns, double width);
    void LayOutTable(const Node& table, double x, double available, Flow& flow);
    double LayOutRow(const std::vector<const Node*>& row, const std::vector<Column>& columns,
                     double x, double y, double spacing);

    // Widths that content asks for.
    Widths WidthsOf(const Node& node);
    Widths WidthsOfChildren(const Node& node);
    static Widths WidthsOf(const InlineItems& items);

    const StyleSheet& m_sheet;
    ImageSizes m_imageSizes;
    FontCache& m_fonts;
    double m_scale;
    Style m_initial;
    Layout m_layout;
    std::unordered_map<const Node*, Style> m_styles;
    std::unordered_map<const Node*, Widths> m_widths;
    const Node* m_bulletOwner = nullptr; // a list item whose first line is still to come
    double m_bulletX = 0;
};

} // namespace html
