// Colours: "#rrggbb", "#rgb", "rgb(r, g, b)" and the basic names.
#include <array>

#include "wine/htmldocument/engine/Style.h"
#include "wine/htmldocument/engine/TextTools.h"

namespace html {
namespace {

struct NamedColor {
    std::wstring_view name;
    COLORREF color;
};
constexpr NamedColor NamedColors[] = {
    {L"black", RGB(0, 0, 0)},       {L"silver", RGB(192, 192, 192)}, {L"gray", RGB(128, 128, 128)},
    {L"white", RGB(255, 255, 255)}, {L"maroon", RGB(128, 0, 0)},     {L"red", RGB(255, 0, 0)},
    {L"purple", RGB(128, 0, 128)},  {L"fuchsia", RGB(255, 0, 255)},  {L"green", RGB(0, 128, 0)},
    {L"lime", RGB(0, 255, 0)},      {L"olive", RGB(128, 128, 0)},    {L"yellow", RGB(255, 255, 0)},
    {L"navy", RGB(0, 0, 128)},      {L"blue", RGB(0, 0, 255)},       {L"teal", RGB(0, 128, 128)},
    {L"aqua", RGB(0, 255, 255)},
};

// Each part at most 255.
constexpr COLORREF MakeColor(unsigned red, unsigned green, unsigned blue) {
    return red | green << 8 | blue << 16;
}

bool ParseHexadecimal(std::wstring_view digits, COLORREF& color) {
    std::array<BYTE, 6> values{};
    if (digits.size() != 3 && digits.size() != 6) {
        return false;
    }
    for (size_t i = 0; i < digits.size(); ++i) {
        const wchar_t lower = ToLowerAscii(digits[i]);
        if (IsAsciiDigit(lower)) {
            values[i] = static_cast<BYTE>(lower - L'0');
        } else if (lower >= L'a' && lower <= L'f') {
            values[i] = static_cast<BYTE>(lower - L'a' + 10);
        } else {
            return false;
        }
    }
    color = digits.size() == 3 ? MakeColor(values[0] * 17U, values[1] * 17U, values[2] * 17U)
                               : MakeColor(values[0] * 16U + values[1], values[2] * 16U + values[3],
                                           values[4] * 16U + values[5]);
    return true;
}

bool ParseTriple(std::wstring_view text, COLORREF& color) {
    std::array<unsigned, 3> values{};
    size_t at = 0;
    for (size_t i = 0; i < values.size(); ++i) {
        while (at < text.size() && !IsAsciiDigit(text[at])) {
            ++at;
        }
        if (at >= text.size()) {
            return false;
        }
        while (at < text.size() && IsAsciiDigit(text[at])) {
            values[i] = values[i] * 10 + static_cast<unsigned>(text[at] - L'0');
            values[i] = values[i] > 255 ? 255 : values[i];
            ++at;
        }
    }
    color = MakeColor(values[0], values[1], values[2]);
    return true;
}

} // namespace

bool ParseColor(std::wstring_view text, COLORREF& color) {
    text = Trim(text);
    if (!text.empty() && text.front() == L'#') {
        return ParseHexadecimal(text.substr(1), color);
    }
    if (EqualNoCase(text.substr(0, 4), L"rgb(")) {
        return ParseTriple(text.substr(4), color);
    }
    for (const NamedColor& known : NamedColors) {
        if (EqualNoCase(text, known.name)) {
            color = known.color;
            return true;
        }
    }
    return false;
}

} // namespace html
