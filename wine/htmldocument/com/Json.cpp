// UTF-16 to escaped UTF-8.
#include "wine/htmldocument/com/Json.h"

namespace html {
namespace {

void AppendEscape(std::string& to, unsigned unit) {
    constexpr char Digits[] = "0123456789abcdef";
    to += "\\u";
    for (int shift = 12; shift >= 0; shift -= 4) {
        to += Digits[(unit >> shift) & 0xF];
    }
}

void AppendUtf8(std::string& to, unsigned code) {
    const auto continuation = [&](int shift) {
        to += static_cast<char>(0x80 | ((code >> shift) & 0x3F));
    };
    if (code < 0x80) {
        to += static_cast<char>(code);
    } else if (code < 0x800) {
        to += static_cast<char>(0xC0 | (code >> 6));
        continuation(0);
    } else if (code < 0x10000) {
        to += static_cast<char>(0xE0 | (code >> 12));
        continuation(6);
        continuation(0);
    } else {
        to += static_cast<char>(0xF0 | (code >> 18));
        continuation(12);
        continuation(6);
        continuation(0);
    }
}

bool IsHighSurrogate(unsigned unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}
bool IsLowSurrogate(unsigned unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

} // namespace

std::string JsonText(std::wstring_view text) {
    std::string json = "\"";
    for (size_t i = 0; i < text.size(); ++i) {
        const unsigned unit = text[i];
        const unsigned next = i + 1 < text.size() ? text[i + 1] : 0U;
        if (unit == '"' || unit == '\\') {
            json += '\\';
            json += static_cast<char>(unit);
        } else if (IsHighSurrogate(unit) && IsLowSurrogate(next)) {
            AppendUtf8(json, 0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00));
            ++i;
        } else if (unit < 0x20 || IsHighSurrogate(unit) || IsLowSurrogate(unit)) {
            AppendEscape(json, unit);
        } else {
            AppendUtf8(json, unit);
        }
    }
    return json + '"';
}

} // namespace html
