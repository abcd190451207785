// Where everything on the page is: the result of the layout, which painting, hit tests and the
// trace read. Device pixels from the top left corner of the page.
#pragma once

#include <windows.h>

#include <string>
#include <unordered_map>
#include <vector>

#include "wine/htmldocument/engine/FontCache.h"
#include "wine/htmldocument/engine/Node.h"
#include "wine/htmldocument/engine/Style.h"

namespace html {

struct Area {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;
    bool Contains(double px, double py) const {
        return px >= x && px < x + width && py >= y && py < y + height;
    }
};

// A block, a table, a cell or an image.
struct BoxItem {
    const Node* element = nullptr;
    Area area;
    Edges border;
    COLORREF borderColor = 0;
};

// Text of one element on one line.
struct TextItem {
    const Node* element = nullptr; // the innermost element around the text
    Area area;
    double baseline = 0;
    std::wstring text;
    HFONT font = nullptr; // owned by the font cache
    COLORREF color = 0;
    bool isBullet = false;
};

// The nodes must outlive it, so it is dropped before any of them goes.
struct Layout {
    std::vector<BoxItem> boxes;  // in document order
    std::vector<TextItem> texts; // in document order
    double width = 0;
    double height = 0;

    // The innermost element at the point, null outside of everything.
    const Node* HitTest(double x, double y) const;
    // What encloses the element; false where nothing of it is shown. Only of a finished layout.
    bool AreaOf(const Node& element, Area& area) const;

private:
    void CollectAreas() const;

    mutable std::unordered_map<const Node*, Area> m_areas; // of everything shown, once asked for
};

} // namespace html
