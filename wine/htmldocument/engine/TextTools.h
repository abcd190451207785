// Small text questions that the parser, the style sheet and the layout all ask. Only ASCII has
// cases here: that is what HTML and CSS names fold.
#pragma once

#include <string>
#include <string_view>

namespace html {

constexpr bool IsHtmlSpace(wchar_t c) {
    return c == L' ' || c == L'\t' || c == L'\n' || c == L'\r' || c == L'\f';
}

constexpr bool IsAsciiLetter(wchar_t c) {
    return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z');
}

constexpr bool IsAsciiDigit(wchar_t c) {
    return c >= L'0' && c <= L'9';
}

constexpr wchar_t ToLowerAscii(wchar_t c) {
    return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c + (L'a' - L'A')) : c;
}

inline std::wstring LowerAscii(std::wstring_view text) {
    std::wstring lower(text);
    for (wchar_t& c : lower) {
        c = ToLowerAscii(c);
    }
    return lower;
}

inline bool EqualNoCase(std::wstring_view a, std::wstring_view b) {
    if (a.size() != b.size()) {
        return false;
    }
    for (size_t i = 0; i < a.size(); ++i) {
        if (ToLowerAscii(a[i]) != ToLowerAscii(b[i])) {
            return false;
        }
    }
    return true;
}

inline std::wstring_view Trim(std::wstring_view text) {
    while (!text.empty() && IsHtmlSpace(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && IsHtmlSpace(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

// Takes the next word off the front of the text; empty at its end.
inline std::wstring_view TakeWord(std::wstring_view& text) {
    text = Trim(text);
    size_t length = 0;
    while (length < text.size() && !IsHtmlSpace(text[length])) {
        ++length;
    }
    const std::wstring_view word = text.substr(0, length);
    text.remove_prefix(length);
    return word;
}

} // namespace html
