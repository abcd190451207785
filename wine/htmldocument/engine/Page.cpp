// Keeps nodes, images and layout of a page together.
#include "wine/htmldocument/engine/Page.h"

#include <cmath>

#include "wine/htmldocument/engine/HtmlParser.h"
#include "wine/htmldocument/engine/LayoutEngine.h"

namespace html {
namespace {

void CollectStyleBlocks(const Node& node, StyleSheet& sheet) {
    if (node.Tag() == L"style") {
        for (const NodePtr& text : node.Children()) {
            sheet.Add(text->Text());
        }
    }
    for (const NodePtr& child : node.Children()) {
        CollectStyleBlocks(*child, sheet);
    }
}

} // namespace

Page::Page() : m_root(ParseDocument(L"")) {}

void Page::Load(std::wstring_view markup) {
    m_layout.reset();
    m_root = ParseDocument(markup);
    m_sheet = {};
    m_images.clear();
    CollectStyleBlocks(*m_root, m_sheet);
}

void Page::WriteInnerHtml(Node& element, std::wstring_view markup) {
    m_layout.reset();
    element.ReplaceChildren(ParseFragment(markup));
}

void Page::SetInlineStyle(Node& element, std::wstring_view property, std::wstring value) {
    m_layout.reset();
    element.SetInlineStyle(property, std::move(value));
}

void Page::SetAttribute(Node& element, std::wstring_view name, std::wstring value) {
    m_layout.reset();
    element.SetAttribute(name, std::move(value));
}

void Page::CollectMissingImages(const Node& node, std::vector<std::wstring>& sources) {
    const std::wstring* source = node.Tag() == L"img" ? node.FindAttribute(L"src") : nullptr;
    if (source != nullptr && m_images.emplace(*source, Picture()).second) {
        sources.push_back(*source);
    }
    for (const NodePtr& child : node.Children()) {
        CollectMissingImages(*child, sources);
    }
}

std::vector<std::wstring> Page::TakeMissingImages() {
    std::vector<std::wstring> sources;
    CollectMissingImages(*m_root, sources);
    return sources;
}

void Page::SetImage(const std::wstring& source, const std::string& bytes) {
    Picture picture;
    if (picture.Decode(bytes)) {
        m_layout.reset();
        m_images[source] = picture;
    }
}

const Picture* Page::ImageOf(const Node& element) const {
    const std::wstring* source = element.FindAttribute(L"src");
    if (element.Tag() != L"img" || source == nullptr) {
        return nullptr;
    }
    const auto found = m_images.find(*source);
    return found != m_images.end() && found->second.IsDecoded() ? &found->second : nullptr;
}

const Layout& Page::LayoutFor(double width, double scale) {
    if (!m_layout || m_layoutWidth != width || m_layoutScale != scale) {
        const auto imageSize = [this, scale](const Node& image) {
            const Picture* picture = ImageOf(image);
            const SIZE size = picture != nullptr ? picture->Size() : SIZE{};
            return SIZE{std::lround(size.cx * scale), std::lround(size.cy * scale)};
        };
        m_layout = LayoutEngine(m_sheet, imageSize, m_fonts, scale).Run(*m_root, width);
        m_layoutWidth = width;
        m_layoutScale = scale;
    }
    return *m_layout;
}

Style Page::StyleOf(const Node& element) const {
    const Style parent = element.Parent() != nullptr ? StyleOf(*element.Parent()) : InitialStyle(1);
    return element.IsText() ? parent : ResolveStyle(element, parent, m_sheet, 1);
}

} // namespace html
