// What the layout has to know about an element once all declarations are resolved. Lengths are
// device pixels.
#pragma once

#include <windows.h>

#include <string>

#include "wine/htmldocument/engine/Node.h"
#include "wine/htmldocument/engine/StyleSheet.h"

namespace html {

enum class Display { None, Inline, Block, ListItem, Table, RowGroup, Row, Cell, Break };
enum class TextAlign { Left, Center, Right };
enum class VerticalAlign { Top, Middle, Bottom };

struct Edges {
    double top = 0;
    double right = 0;
    double bottom = 0;
    double left = 0;
};

struct Width {
    enum class Kind { Automatic, Pixels, Percent };
    Kind kind = Kind::Automatic;
    double value = 0;
};

struct Style {
    Display display = Display::Inline;
    // Inherited.
    COLORREF color = RGB(0, 0, 0);
    std::wstring fontFamily; // names separated by commas
    double fontSize = 0;
    bool bold = false;
    bool italic = false;
    double lineHeight = 0; // 0: as the font says
    TextAlign textAlign = TextAlign::Left;
    VerticalAlign verticalAlign = VerticalAlign::Middle; // of table cells
    std::wstring cursor;
    double cellPadding = 0; // a table's attribute, on its way to the cells
    // Passed on to what is inside, but not inherited: nothing inside can take it back.
    bool underline = false;
    // The element's own.
    Edges margin;
    Edges padding;
    Edges border; // its width; 0 where no border is drawn
    COLORREF borderColor = RGB(0, 0, 0);
    Width width;
    double height = 0; // 0: as tall as its content
    double cellSpacing = 0;
    // A top margin that the element has only by custom: the start of a cell swallows it.
    bool customTopMargin = false;
};

// The style that everything on the page inherits from.
Style InitialStyle(double scale);
// scale: device pixels per CSS pixel.
Style ResolveStyle(const Node& element, const Style& parent, const StyleSheet& sheet, double scale);

// A colour as style sheets and attributes write it; false and no change for anything else.
bool ParseColor(std::wstring_view text, COLORREF& color);

} // namespace html
