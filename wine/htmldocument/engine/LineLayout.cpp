// The inline half of the layout: words, spaces and images on lines.
#include <algorithm>
#include <cmath>

#include "wine/htmldocument/engine/LayoutEngine.h"
#include "wine/htmldocument/engine/TextTools.h"

namespace html {
namespace {

constexpr wchar_t Bullet[] = L"\u2022";
constexpr double BulletDistance = 8; // CSS pixels between the bullet and the item

// How far a text reaches above and below the baseline once its line height is respected.
struct Extent {
    double above = 0;
    double below = 0;
};

Extent ExtentOf(const Font& font, const Style& style) {
    const double height = style.lineHeight != 0 ? style.lineHeight : font.lineHeight;
    const double leading = height - font.ascent - font.descent;
    return {font.ascent + leading / 2, font.descent + leading / 2};
}

} // namespace

// A text's own style is that of the element around it.
const Style& LayoutEngine::StyleAround(const Node& text) {
    return StyleOf(*text.Parent());
}

void LayoutEngine::CollectText(const Node& text, InlineItems& items) {
    const Style& style = StyleAround(text);
    Font& font = m_fonts.FontOf(style);
    std::wstring_view rest = text.Text();
    while (!rest.empty()) {
        InlineItem item;
        item.element = text.Parent();
        item.style = &style;
        const bool space = IsHtmlSpace(rest.front());
        size_t length = 0;
        while (length < rest.size() && IsHtmlSpace(rest[length]) == space) {
            ++length;
        }
        item.kind = space ? InlineItem::Kind::Space : InlineItem::Kind::Word;
        item.text = space ? std::wstring_view(L" ") : rest.substr(0, length);
        item.width = m_fonts.WidthOf(font, item.text);
        const bool doubled =
            space && (items.empty() || items.back().kind == InlineItem::Kind::Space);
        if (!doubled) {
            items.push_back(std::move(item));
        }
        rest.remove_prefix(length);
    }
}

void LayoutEngine::CollectInline(const Node& node, InlineItems& items) {
    if (node.IsText()) {
        CollectText(node, items);
        return;
    }
    const Style& style = StyleOf(node);
    InlineItem item;
    item.element = &node;
    item.style = &style;
    if (style.display == Display::Break) {
        item.kind = InlineItem::Kind::Break;
        items.push_back(std::move(item));
    } else if (style.display != Display::None && node.Tag() == L"img") {
        const SIZE natural = m_imageSizes(node);
        item.kind = InlineItem::Kind::Image;
        item.width = style.width.kind == Width::Kind::Pixels ? style.width.value : natural.cx;
        item.height = style.height > 0 ? style.height : natural.cy;
        items.push_back(std::move(item));
    } else if (style.display != Display::None) {
        for (const NodePtr& child : node.Children()) {
            CollectInline(*child, items);
        }
    }
}

void LayoutEngine::LayOutLines(const Node& container, const InlineItems& items, double x,
                               double width, Flow& flow) {
    InlineItems line;
    double lineWidth = 0;
    for (size_t i = 0; i < items.size();) {
        if (items[i].kind == InlineItem::Kind::Break) {
            line.push_back(items[i]);
            PlaceLine(container, std::move(line), x, width, flow);
            line.clear();
            lineWidth = 0;
            ++i;
            continue;
        }
        if (items[i].kind == InlineItem::Kind::Space) {
            if (!line.empty()) {
                lineWidth += items[i].width;
                line.push_back(items[i]);
            }
            ++i;
            continue;
        }
        // What stands together without a space stays together.
        size_t end = i;
        double chunkWidth = 0;
        while (end < items.size() && (items[end].kind == InlineItem::Kind::Word ||
                                      items[end].kind == InlineItem::Kind::Image)) {
            chunkWidth += items[end].width;
            ++end;
        }
        if (!line.empty() && lineWidth + chunkWidth > width) {
            PlaceLine(container, std::move(line), x, width, flow);
            line.clear();
            lineWidth = 0;
        }
        line.insert(line.end(), items.begin() + static_cast<std::ptrdiff_t>(i),
                    items.begin() + static_cast<std::ptrdiff_t>(end));
        lineWidth += chunkWidth;
        i = end;
    }
    PlaceLine(container, std::move(line), x, width, flow);
}

void LayoutEngine::PlaceLine(const Node& container, InlineItems line, double x, double width,
                             Flow& flow) {
    while (!line.empty() && line.back().kind == InlineItem::Kind::Space) {
        line.pop_back();
    }
    if (line.empty()) {
        return;
    }
    Settle(flow);
    const Style& containerStyle = StyleOf(container);
    Extent extent;
    bool onlyImages = true;
    double lineWidth = 0;
    for (const InlineItem& item : line) {
        lineWidth += item.width;
        const bool isImage = item.kind == InlineItem::Kind::Image;
        onlyImages = onlyImages && isImage;
        const Extent own =
            isImage ? Extent{item.height, 0} : ExtentOf(m_fonts.FontOf(*item.style), *item.style);
        extent.above = std::max(extent.above, own.above);
        extent.below = std::max(extent.below, own.below);
    }
    // A line of images alone is as tall as they are; beside text the block's own font counts too.
    if (!onlyImages) {
        const Extent strut = ExtentOf(m_fonts.FontOf(containerStyle), containerStyle);
        extent.above = std::max(extent.above, strut.above);
        extent.below = std::max(extent.below, strut.below);
    }
    const double spare = std::max(0.0, width - lineWidth);
    const double indent = containerStyle.textAlign == TextAlign::Center  ? std::floor(spare / 2)
                          : containerStyle.textAlign == TextAlign::Right ? spare
                                                                         : 0;
    const double baseline = flow.y + extent.above;
    PlaceBullet(baseline);
    PlaceItems(line, x + indent, baseline);
    flow.y += extent.above + extent.below;
}

void LayoutEngine::PlaceItems(const InlineItems& line, double x, double baseline) {
    for (size_t i = 0; i < line.size();) {
        const InlineItem& first = line[i];
        if (first.kind == InlineItem::Kind::Break) {
            ++i;
            continue;
        }
        if (first.kind == InlineItem::Kind::Image) {
            AddBox(*first.element, *first.style,
                   {x, baseline - first.height, first.width, first.height});
            x += first.width;
            ++i;
            continue;
        }
        TextItem item;
        item.element = first.element;
        while (i < line.size() && line[i].element == first.element && !line[i].text.empty()) {
            item.text += line[i].text;
            ++i;
        }
        Font& font = m_fonts.FontOf(*first.style);
        item.font = font.handle;
        item.color = first.style->color;
        item.baseline = std::round(baseline);
        item.area = {x, item.baseline - font.ascent,
                     static_cast<double>(m_fonts.WidthOf(font, item.text)),
                     static_cast<double>(font.ascent + font.descent)};
        x += item.area.width;
        m_layout.texts.push_back(std::move(item));
    }
}

void LayoutEngine::PlaceBullet(double baseline) {
    if (m_bulletOwner == nullptr) {
        return;
    }
    const Style& style = StyleOf(*m_bulletOwner);
    Font& font = m_fonts.FontOf(style);
    TextItem item;
    item.element = m_bulletOwner;
    item.isBullet = true;
    item.text = Bullet;
    item.font = font.handle;
    item.color = style.color;
    item.baseline = std::round(baseline);
    const double width = m_fonts.WidthOf(font, item.text);
    item.area = {m_bulletX - BulletDistance * m_scale - width, item.baseline - font.ascent, width,
                 static_cast<double>(font.ascent + font.descent)};
    m_layout.texts.push_back(std::move(item));
    m_bulletOwner = nullptr;
}

} // namespace html
