// A page without window and without COM: its nodes, its style sheet, its images and its layout.
#pragma once

#include <windows.h>

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "wine/htmldocument/engine/FontCache.h"
#include "wine/htmldocument/engine/Layout.h"
#include "wine/htmldocument/engine/Node.h"
#include "wine/htmldocument/engine/Picture.h"
#include "wine/htmldocument/engine/StyleSheet.h"

namespace html {

class Page {
public:
    // An empty page.
    Page();

    void Load(std::wstring_view markup);
    Node& Root() { return *m_root; }
    Node* Body() { return m_root->FindByTag(L"body"); }
    void WriteInnerHtml(Node& element, std::wstring_view markup);
    void SetInlineStyle(Node& element, std::wstring_view property, std::wstring value);
    void SetAttribute(Node& element, std::wstring_view name, std::wstring value);
    bool IsOnPage(const Node& node) const { return m_root->Contains(node); }

    // The sources of images on the page that nobody asked for yet. From here on somebody did.
    std::vector<std::wstring> TakeMissingImages();
    void SetImage(const std::wstring& source, const std::string& bytes);
    // Null while it is not there.
    const Picture* ImageOf(const Node& element) const;

    // Any change of the page drops the layout. width: device pixels; scale: device pixels per CSS
    // pixel.
    const Layout& LayoutFor(double width, double scale);
    Style StyleOf(const Node& element) const;

private:
    void CollectMissingImages(const Node& node, std::vector<std::wstring>& sources);

    NodePtr m_root;
    StyleSheet m_sheet;
    std::map<std::wstring, Picture> m_images; // an entry for each source that was asked for
    FontCache m_fonts;
    std::optional<Layout> m_layout;
    double m_layoutWidth = 0;
    double m_layoutScale = 0;
};

} // namespace html
