// From the tag, its attributes, the style sheet and the style attribute to one resolved style.
// Pages of this system have no document type, so tables start anew with the text size of the
// browser.
#include "wine/htmldocument/engine/Style.h"

#include <cstdlib>

#include "wine/htmldocument/engine/TextTools.h"

namespace html {
namespace {

constexpr double MediumFontSize = 16; // CSS pixels
constexpr double PixelsPerPoint = 96.0 / 72.0;
constexpr double BodyMarginAbove = 15; // and below
constexpr double BodyMarginBeside = 10;
constexpr double ListIndent = 40;
constexpr double DefaultCellSpacing = 2;
constexpr double DefaultCellPadding = 1;
constexpr double MaxLength = 100000; // keeps every sum of lengths within the range of an int

struct TagDefault {
    std::wstring_view tag;
    Display display;
    double fontSize; // relative to the parent's, 0: the same
    double margin;   // above and below, in multiples of the own text size
    bool bold;
};
constexpr TagDefault TagDefaults[] = {
    {L"html", Display::Block, 0, 0, false},     {L"body", Display::Block, 0, 0, false},
    {L"div", Display::Block, 0, 0, false},      {L"center", Display::Block, 0, 0, false},
    {L"form", Display::Block, 0, 0, false},     {L"p", Display::Block, 0, 1, false},
    {L"ul", Display::Block, 0, 1, false},       {L"ol", Display::Block, 0, 1, false},
    {L"li", Display::ListItem, 0, 0, false},    {L"h1", Display::Block, 2, 0.67, true},
    {L"h2", Display::Block, 1.5, 0.83, true},   {L"h3", Display::Block, 1.17, 1, true},
    {L"h4", Display::Block, 0, 1.33, true},     {L"table", Display::Table, 0, 0, false},
    {L"tbody", Display::RowGroup, 0, 0, false}, {L"thead", Display::RowGroup, 0, 0, false},
    {L"tfoot", Display::RowGroup, 0, 0, false}, {L"tr", Display::Row, 0, 0, false},
    {L"td", Display::Cell, 0, 0, false},        {L"th", Display::Cell, 0, 0, true},
    {L"b", Display::Inline, 0, 0, true},        {L"strong", Display::Inline, 0, 0, true},
    {L"br", Display::Break, 0, 0, false},       {L"head", Display::None, 0, 0, false},
    {L"style", Display::None, 0, 0, false},     {L"script", Display::None, 0, 0, false},
    {L"title", Display::None, 0, 0, false},     {L"meta", Display::None, 0, 0, false},
    {L"link", Display::None, 0, 0, false},      {L"base", Display::None, 0, 0, false},
    {L"template", Display::None, 0, 0, false},  {L"textarea", Display::None, 0, 0, false},
};

// What lengths in this element are relative to.
struct Units {
    double scale;
    double em;
};

// The number at the front of the text and what follows it; false where there is none.
bool ParseNumber(std::wstring_view text, double& number, std::wstring_view& unit) {
    size_t length = 0;
    while (length < text.size() && (IsAsciiDigit(text[length]) || text[length] == L'.' ||
                                    (length == 0 && (text[0] == L'-' || text[0] == L'+')))) {
        ++length;
    }
    const std::wstring digits(text.substr(0, length));
    wchar_t* end = nullptr;
    number = std::wcstod(digits.c_str(), &end);
    if (end == digits.c_str()) {
        return false;
    }
    number = number > MaxLength ? MaxLength : number < -MaxLength ? -MaxLength : number;
    unit = Trim(text.substr(length));
    return true;
}

// percentOf: what 100% is; negative where a percentage is of no use. A number without a unit is
// pixels.
bool ParseLength(std::wstring_view text, const Units& units, double percentOf, double& length) {
    double number = 0;
    std::wstring_view unit;
    if (!ParseNumber(Trim(text), number, unit)) {
        return false;
    }
    if (unit.empty() || EqualNoCase(unit, L"px")) {
        length = number * units.scale;
    } else if (EqualNoCase(unit, L"pt")) {
        length = number * PixelsPerPoint * units.scale;
    } else if (EqualNoCase(unit, L"em")) {
        length = number * units.em;
    } else if (unit == L"%" && percentOf >= 0) {
        length = number * percentOf / 100;
    } else {
        return false;
    }
    return true;
}

void ParseWidth(std::wstring_view text, double scale, Width& width) {
    double number = 0;
    std::wstring_view unit;
    if (!ParseNumber(Trim(text), number, unit) || number < 0) {
        return;
    }
    if (unit == L"%") {
        width = {Width::Kind::Percent, number};
    } else if (unit.empty() || EqualNoCase(unit, L"px")) {
        width = {Width::Kind::Pixels, number * scale};
    }
}

bool ParseAlign(std::wstring_view text, TextAlign& align) {
    if (EqualNoCase(text, L"center")) {
        align = TextAlign::Center;
    } else if (EqualNoCase(text, L"right")) {
        align = TextAlign::Right;
    } else if (EqualNoCase(text, L"left")) {
        align = TextAlign::Left;
    } else {
        return false;
    }
    return true;
}

void ParseVerticalAlign(std::wstring_view text, VerticalAlign& align) {
    if (EqualNoCase(text, L"top")) {
        align = VerticalAlign::Top;
    } else if (EqualNoCase(text, L"middle")) {
        align = VerticalAlign::Middle;
    } else if (EqualNoCase(text, L"bottom")) {
        align = VerticalAlign::Bottom;
    }
}

// One value for all edges, up to one for each: top, right, bottom, left.
void ParseEdges(std::wstring_view text, const Units& units, Edges& edges) {
    double values[4] = {};
    size_t count = 0;
    for (std::wstring_view word = TakeWord(text); !word.empty() && count < 4;
         word = TakeWord(text)) {
        if (!ParseLength(word, units, -1, values[count])) {
            return;
        }
        ++count;
    }
    if (count != 0) {
        edges.top = values[0];
        edges.right = count > 1 ? values[1] : values[0];
        edges.bottom = count > 2 ? values[2] : edges.top;
        edges.left = count > 3 ? values[3] : edges.right;
    }
}

void ParseLineHeight(std::wstring_view text, const Units& units, Style& style) {
    double number = 0;
    std::wstring_view unit;
    if (EqualNoCase(text, L"normal")) {
        style.lineHeight = 0;
    } else if (ParseNumber(text, number, unit) && unit.empty()) {
        style.lineHeight = number * units.em;
    } else {
        ParseLength(text, units, units.em, style.lineHeight);
    }
}

bool IsBoldWord(std::wstring_view word) {
    return EqualNoCase(word, L"bold") || EqualNoCase(word, L"bolder") || word == L"600" ||
           word == L"700" || word == L"800" || word == L"900";
}

// "[bold] [italic] size[/line height] families"; whatever it does not name becomes normal.
void ParseFont(std::wstring_view text, double parentSize, double scale, Style& style) {
    style.bold = false;
    style.italic = false;
    style.lineHeight = 0;
    for (std::wstring_view word = TakeWord(text); !word.empty(); word = TakeWord(text)) {
        const size_t slash = word.find(L'/');
        if (ParseLength(word.substr(0, slash), {scale, parentSize}, parentSize, style.fontSize)) {
            if (slash != std::wstring_view::npos) {
                ParseLineHeight(word.substr(slash + 1), {scale, style.fontSize}, style);
            }
            style.fontFamily = Trim(text);
            return;
        }
        style.bold = style.bold || IsBoldWord(word);
        style.italic = style.italic || EqualNoCase(word, L"italic");
    }
}

// The properties whose values depend on the text size, and those that are a single word.
class DeclarationReader {
public:
    DeclarationReader(Style& style, const Style& parent, double scale)
        : m_style(style), m_parent(parent), m_scale(scale) {}

    void ReadFonts(const Declarations& declarations) {
        for (const Declaration& d : declarations) {
            if (d.property == L"font") {
                ParseFont(d.value, m_parent.fontSize, m_scale, m_style);
            } else if (d.property == L"font-size") {
                ParseLength(d.value, {m_scale, m_parent.fontSize}, m_parent.fontSize,
                            m_style.fontSize);
            } else if (d.property == L"font-weight") {
                m_style.bold = IsBoldWord(d.value);
            } else if (d.property == L"font-style") {
                m_style.italic = EqualNoCase(d.value, L"italic");
            } else if (d.property == L"font-family") {
                m_style.fontFamily = d.value;
            } else if (d.property == L"line-height") {
                ParseLineHeight(d.value, OwnUnits(), m_style);
            }
        }
    }

    void ReadTexts(const Declarations& declarations) {
        for (const Declaration& d : declarations) {
            if (d.property == L"color") {
                ParseColor(d.value, m_style.color);
            } else if (d.property == L"text-align") {
                ParseAlign(d.value, m_style.textAlign);
            } else if (d.property == L"vertical-align") {
                ParseVerticalAlign(d.value, m_style.verticalAlign);
            } else if (d.property == L"cursor") {
                m_style.cursor = LowerAscii(d.value);
            } else if (d.property == L"text-decoration") {
                m_style.underline = m_parent.underline ||
                                    LowerAscii(d.value).find(L"underline") != std::wstring::npos;
            } else if (d.property == L"display" && EqualNoCase(d.value, L"none")) {
                m_style.display = Display::None;
            }
        }
    }

    void ReadBoxes(const Declarations& declarations) {
        for (const Declaration& d : declarations) {
            if (d.property == L"margin") {
                ParseEdges(d.value, OwnUnits(), m_style.margin);
                m_style.customTopMargin = false;
            } else if (d.property == L"padding") {
                ParseEdges(d.value, OwnUnits(), m_style.padding);
            } else if (d.property == L"border-width") {
                ParseEdges(d.value, OwnUnits(), m_style.border);
            } else if (d.property == L"border-color") {
                ParseColor(d.value, m_style.borderColor);
            } else if (d.property == L"border-style") {
                m_bordered = !EqualNoCase(d.value, L"none");
            } else if (d.property == L"width") {
                ParseWidth(d.value, m_scale, m_style.width);
            }
        }
        if (!m_bordered) {
            m_style.border = {};
        }
    }
    void DrawBorder() { m_bordered = true; }

private:
    Units OwnUnits() const { return {m_scale, m_style.fontSize}; }

    Style& m_style;
    const Style& m_parent;
    double m_scale;
    bool m_bordered = false;
};

double AttributeLength(const Node& element, std::wstring_view name, double scale, double other) {
    const std::wstring* text = element.FindAttribute(name);
    double length = other * scale;
    if (text != nullptr && ParseLength(*text, {scale, 0}, -1, length) && length < 0) {
        length = 0;
    }
    return length;
}

// Returns the margin above and below, in multiples of the text size.
double ApplyTagDefaults(const Node& element, const Style& parent, double scale, Style& style) {
    const std::wstring& tag = element.Tag();
    double margin = 0;
    for (const TagDefault& known : TagDefaults) {
        if (known.tag == tag) {
            style.display = known.display;
            style.fontSize =
                known.fontSize != 0 ? known.fontSize * parent.fontSize : style.fontSize;
            style.bold = style.bold || known.bold;
            margin = known.margin;
        }
    }
    if (style.display == Display::Table) {
        style.fontSize = MediumFontSize * scale;
        style.bold = false;
        style.italic = false;
        style.lineHeight = 0;
        style.textAlign = TextAlign::Left;
    }
    if (tag == L"ul" || tag == L"ol") {
        style.padding.left = ListIndent * scale;
    } else if (tag == L"center" || tag == L"th") {
        style.textAlign = TextAlign::Center;
    } else if (tag == L"i" || tag == L"em") {
        style.italic = true;
    } else if (tag == L"u") {
        style.underline = true;
    }
    return margin;
}

void ApplyAttributes(const Node& element, const Style& parent, double scale, Style& style) {
    if (const std::wstring* width = element.FindAttribute(L"width")) {
        ParseWidth(*width, scale, style.width);
    }
    ParseVerticalAlign(element.AttributeOr(L"valign", L""), style.verticalAlign);
    const std::wstring align = element.AttributeOr(L"align", L"");
    if (style.display != Display::Table) {
        ParseAlign(align, style.textAlign);
    }
    if (element.Tag() == L"body") {
        style.margin.top = AttributeLength(element, L"topmargin", scale, BodyMarginAbove);
        style.margin.bottom = AttributeLength(element, L"bottommargin", scale, BodyMarginAbove);
        style.margin.left = AttributeLength(element, L"leftmargin", scale, BodyMarginBeside);
        style.margin.right = AttributeLength(element, L"rightmargin", scale, BodyMarginBeside);
    } else if (style.display == Display::Table) {
        style.cellSpacing = AttributeLength(element, L"cellspacing", scale, DefaultCellSpacing);
        style.cellPadding = AttributeLength(element, L"cellpadding", scale, DefaultCellPadding);
        const double border = AttributeLength(element, L"border", scale, 0);
        style.border = {border, border, border, border};
    } else if (style.display == Display::Cell) {
        const double padding = parent.cellPadding;
        style.padding = {padding, padding, padding, padding};
    } else if (element.Tag() == L"img") {
        style.height = AttributeLength(element, L"height", scale, 0);
    }
}

} // namespace

Style InitialStyle(double scale) {
    Style style;
    style.fontSize = MediumFontSize * scale;
    return style;
}

Style ResolveStyle(const Node& element, const Style& parent, const StyleSheet& sheet,
                   double scale) {
    Style style = InitialStyle(scale);
    style.color = parent.color;
    style.fontFamily = parent.fontFamily;
    style.fontSize = parent.fontSize;
    style.bold = parent.bold;
    style.italic = parent.italic;
    style.lineHeight = parent.lineHeight;
    style.textAlign = parent.textAlign;
    style.verticalAlign = parent.verticalAlign;
    style.cursor = parent.cursor;
    style.cellPadding = parent.cellPadding;
    style.underline = parent.underline;
    const double margin = ApplyTagDefaults(element, parent, scale, style);
    ApplyAttributes(element, parent, scale, style);

    Declarations declarations = sheet.MatchesOf(element);
    declarations.insert(declarations.end(), element.InlineStyle().begin(),
                        element.InlineStyle().end());
    DeclarationReader reader(style, parent, scale);
    if (style.display == Display::Table && style.border.top > 0) {
        reader.DrawBorder();
    }
    reader.ReadFonts(declarations);
    if (margin != 0) {
        style.customTopMargin = true;
        style.margin.top = style.margin.bottom = margin * style.fontSize;
    }
    reader.ReadTexts(declarations);
    reader.ReadBoxes(declarations);
    return style;
}

} // namespace html
