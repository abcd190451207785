// The block half of the layout: one below the other, with margins that collapse.
#include <algorithm>
#include <cmath>

#include "wine/htmldocument/engine/LayoutEngine.h"

namespace html {

LayoutEngine::LayoutEngine(const StyleSheet& sheet, ImageSizes imageSizes, FontCache& fonts,
                           double scale)
    : m_sheet(sheet), m_imageSizes(std::move(imageSizes)), m_fonts(fonts), m_scale(scale),
      m_initial(InitialStyle(scale)) {}

Layout LayoutEngine::Run(const Node& root, double width) {
    Flow flow;
    LayOutBlock(root, 0, width, flow);
    Settle(flow);
    m_layout.height = flow.y;
    for (const BoxItem& box : m_layout.boxes) {
        m_layout.width = std::max(m_layout.width, box.area.x + box.area.width);
    }
    for (const TextItem& item : m_layout.texts) {
        m_layout.width = std::max(m_layout.width, item.area.x + item.area.width);
    }
    return std::move(m_layout);
}

const Style& LayoutEngine::StyleOf(const Node& element) {
    const auto known = m_styles.find(&element);
    if (known != m_styles.end()) {
        return known->second;
    }
    const Style& parent = element.Parent() != nullptr ? StyleOf(*element.Parent()) : m_initial;
    return m_styles.emplace(&element, ResolveStyle(element, parent, m_sheet, m_scale))
        .first->second;
}

void LayoutEngine::Margins::Add(double margin) {
    positive = std::max(positive, margin);
    negative = std::min(negative, margin);
}

// Turns the collected margins into space: content comes next.
void LayoutEngine::Settle(Flow& flow) {
    flow.y += flow.margins.Sum();
    flow.margins = {};
    flow.atCellStart = false;
    for (const size_t index : flow.undecidedTops) {
        m_layout.boxes[index].area.y = flow.y;
    }
    flow.undecidedTops.clear();
}

size_t LayoutEngine::AddBox(const Node& element, const Style& style, const Area& area) {
    m_layout.boxes.push_back({&element, area, style.border, style.borderColor});
    return m_layout.boxes.size() - 1;
}

void LayoutEngine::Shift(size_t firstBox, size_t endBox, size_t firstText, size_t endText,
                         double dy) {
    for (size_t i = firstBox; i < endBox; ++i) {
        m_layout.boxes[i].area.y += dy;
    }
    for (size_t i = firstText; i < endText; ++i) {
        m_layout.texts[i].area.y += dy;
        m_layout.texts[i].baseline += dy;
    }
}

bool LayoutEngine::IsInlineLevel(const Node& node) {
    if (node.IsText()) {
        return true;
    }
    const Display display = StyleOf(node).display;
    if (display == Display::Break) {
        return true;
    }
    return display == Display::Inline &&
           std::all_of(node.Children().begin(), node.Children().end(),
                       [this](const NodePtr& child) {
                           return IsInlineLevel(*child) || StyleOf(*child).display == Display::None;
                       });
}

void LayoutEngine::LayOutBlock(const Node& node, double x, double width, Flow& flow) {
    const Style& style = StyleOf(node);
    if (!(flow.atCellStart && style.customTopMargin)) {
        flow.margins.Add(style.margin.top);
    }
    const double left = x + style.margin.left;
    const double outer = std::max(0.0, width - style.margin.left - style.margin.right);
    if (style.display == Display::Table) {
        LayOutTable(node, left, outer, flow);
        flow.margins.Add(style.margin.bottom);
        return;
    }
    const double above = style.border.top + style.padding.top;
    const double below = style.border.bottom + style.padding.bottom;
    const double before = style.border.left + style.padding.left;
    const double after = style.border.right + style.padding.right;
    const size_t index = AddBox(node, style, {left, flow.y + flow.margins.Sum(), outer, 0});
    flow.undecidedTops.push_back(index);
    if (above > 0) {
        Settle(flow);
        flow.y += above;
    }
    if (style.display == Display::ListItem) {
        m_bulletOwner = &node;
        m_bulletX = left + before;
    }
    LayOutChildren(node, left + before, std::max(0.0, outer - before - after), flow);
    if (m_bulletOwner == &node) {
        m_bulletOwner = nullptr;
    }
    if (below > 0) {
        Settle(flow);
        flow.y += below;
    }
    Area& area = m_layout.boxes[index].area;
    area.height = std::max(0.0, flow.y - area.y);
    flow.margins.Add(style.margin.bottom);
}

void LayoutEngine::LayOutChildren(const Node& node, double x, double width, Flow& flow) {
    InlineItems items;
    for (const NodePtr& child : node.Children()) {
        if (IsInlineLevel(*child)) {
            CollectInline(*child, items);
            continue;
        }
        if (StyleOf(*child).display == Display::None) {
            continue;
        }
        LayOutLines(node, items, x, width, flow);
        items.clear();
        if (StyleOf(*child).display == Display::Inline) {
            // Blocks inside of a span: the span's own box does not matter here.
            LayOutChildren(*child, x, width, flow);
        } else {
            LayOutBlock(*child, x, width, flow);
        }
    }
    LayOutLines(node, items, x, width, flow);
}

} // namespace html
