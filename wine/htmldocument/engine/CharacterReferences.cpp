// "&lt;" and its companions: the few names that a page of this size uses, and all numbers.
#include <iterator>

#include "wine/htmldocument/engine/TextTools.h"
#include "wine/htmldocument/engine/Tokenizer.h"

namespace html {
namespace {

struct NamedReference {
    std::wstring_view name;
    wchar_t character;
    bool withoutSemicolon; // old names count in texts even where the semicolon was forgotten
};

constexpr NamedReference NamedReferences[] = {
    {L"lt", L'<', true},          {L"gt", L'>', true},          {L"amp", L'&', true},
    {L"quot", L'"', true},        {L"nbsp", L'\u00A0', true},   {L"copy", L'\u00A9', true},
    {L"reg", L'\u00AE', true},    {L"apos", L'\'', false},      {L"trade", L'\u2122', false},
    {L"ndash", L'\u2013', false}, {L"mdash", L'\u2014', false}, {L"hellip", L'\u2026', false},
    {L"bull", L'\u2022', false},  {L"raquo", L'\u00BB', true},  {L"laquo", L'\u00AB', true},
};
constexpr unsigned MaxCodePoint = 0x10FFFF;
constexpr unsigned ReplacementCharacter = 0xFFFD;

void AppendCodePoint(std::wstring& to, unsigned code) {
    if (code == 0 || code > MaxCodePoint || (code >= 0xD800 && code <= 0xDFFF)) {
        code = ReplacementCharacter;
    }
    if (code >= 0x10000) {
        to += static_cast<wchar_t>(0xD800 + ((code - 0x10000) >> 10));
        to += static_cast<wchar_t>(0xDC00 + ((code - 0x10000) & 0x3FF));
    } else {
        to += static_cast<wchar_t>(code);
    }
}

int DigitOf(wchar_t c, bool hexadecimal) {
    if (IsAsciiDigit(c)) {
        return c - L'0';
    }
    const wchar_t lower = ToLowerAscii(c);
    return hexadecimal && lower >= L'a' && lower <= L'f' ? lower - L'a' + 10 : -1;
}

// The length of "&#123;" at the front of the text, 0 if there is none.
size_t TakeNumber(std::wstring_view text, std::wstring& to) {
    if (text.size() < 3 || text[1] != L'#') {
        return 0;
    }
    const bool hexadecimal = ToLowerAscii(text[2]) == L'x';
    size_t at = hexadecimal ? 3 : 2;
    const size_t firstDigit = at;
    unsigned code = 0;
    while (at < text.size() && DigitOf(text[at], hexadecimal) >= 0) {
        if (code <= MaxCodePoint) {
            code = code * (hexadecimal ? 16U : 10U) +
                   static_cast<unsigned>(DigitOf(text[at], hexadecimal));
        }
        ++at;
    }
    if (at == firstDigit) {
        return 0;
    }
    AppendCodePoint(to, code);
    return at < text.size() && text[at] == L';' ? at + 1 : at;
}

size_t TakeName(std::wstring_view text, bool inAttribute, std::wstring& to) {
    for (const NamedReference& reference : NamedReferences) {
        const size_t length = reference.name.size() + 1;
        if (text.substr(1, reference.name.size()) != reference.name) {
            continue;
        }
        const bool closed = length < text.size() && text[length] == L';';
        if (closed || (reference.withoutSemicolon && !inAttribute)) {
            to += reference.character;
            return closed ? length + 1 : length;
        }
    }
    return 0;
}

} // namespace

std::wstring DecodeReferences(std::wstring_view text, bool inAttribute) {
    std::wstring decoded;
    decoded.reserve(text.size());
    while (!text.empty()) {
        size_t taken = 0;
        if (text.front() == L'&') {
            taken = TakeNumber(text, decoded);
            if (taken == 0) {
                taken = TakeName(text, inAttribute, decoded);
            }
        }
        if (taken == 0) {
            decoded += text.front();
            taken = 1;
        }
        text.remove_prefix(taken);
    }
    return decoded;
}

} // namespace html
