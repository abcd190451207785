// The string's operations; those of a table are in CTable1D.h.
#include "base/CKORString.h"

#include <algorithm>
#include <cstdio>
#include <cwchar>

namespace {

constexpr std::int64_t StringGrowBy = 32;

std::int64_t CharactersIn(const wchar_t* text) {
    return static_cast<std::uint32_t>(std::wcslen(text));
}

std::size_t AsSize(std::int64_t count) {
    return static_cast<std::size_t>(count);
}

wchar_t Mirrored(wchar_t c) {
    const bool changes = c >= 32 && c <= 126 && c != L'\\' && c != L'B';
    return changes ? static_cast<wchar_t>(158 - c) : c;
}

} // namespace

CKORString::CKORString() {
    GrowBy = StringGrowBy;
    InitialGrowBy = StringGrowBy;
    CKORString::SetSize(StringGrowBy, false);
    m_count = 1;
    m_data[0] = L'\0';
}

CKORString::CKORString(const wchar_t* text, bool transform) {
    *this = text;
    if (transform) {
        for (wchar_t& c : *this) {
            c = Mirrored(c);
        }
    }
}

CKORString::CKORString(const CKORString& other) : CTable1D<wchar_t>() {
    GrowBy = StringGrowBy;
    InitialGrowBy = StringGrowBy;
    CKORString::SetSize((other.m_count + 31) & ~std::int64_t{31}, false);
    m_count = other.m_count;
    // All places: behind a null within the text nothing would be copied by a text copy, and the
    // terminator at the end would be missing.
    std::copy_n(other.m_data, m_count, m_data);
}

bool CKORString::IsOwnText(const wchar_t* text) const {
    const std::less<const wchar_t*> before;
    return !before(text, m_data) && before(text, m_data + m_capacity);
}

CKORString& CKORString::operator=(const wchar_t* text) {
    const wchar_t* const source = text != nullptr ? text : L"";
    if (IsOwnText(source)) {
        return *this = CKORString(source).Text();
    }
    const std::int64_t needed = CharactersIn(source) + 1;
    GrowTo(needed, true);
    m_count = needed;
    std::copy_n(source, needed, m_data);
    return *this;
}

CKORString& CKORString::operator=(const CKORString& other) {
    if (this != &other) {
        *this = other.Text();
    }
    return *this;
}

CKORString& CKORString::operator+=(const wchar_t* text) {
    if (IsOwnText(text)) {
        return *this += CKORString(text).Text();
    }
    const std::int64_t length = Length();
    const std::int64_t newCount = length + 1 + CharactersIn(text);
    GrowTo(newCount, true);
    m_count = newCount;
    // Up to the end: the text goes behind the first null, which may lie within the string.
    std::fill(m_data + length, m_data + newCount, L'\0');
    wcscat_s(m_data, AsSize(newCount), text);
    return *this;
}

CKORString& CKORString::operator+=(const CKORString& other) {
    if (this == &other) {
        return *this += CKORString(other);
    }
    if (m_count >= 1 && other.m_count >= 1) {
        RemoveLast();
    }
    const std::int64_t kept = m_count;
    const std::int64_t newCount = kept + other.m_count;
    GrowTo(newCount, true);
    m_count = newCount;
    std::copy_n(other.m_data, other.m_count, m_data + kept);
    return *this;
}

void CKORString::RemoveLast() {
    CTable1D<wchar_t>::RemoveLast();
    if (m_count == 0) {
        SetSize(0, false);
    }
}

CKORString& CKORString::FormatV(const wchar_t* format, va_list arguments) {
    va_list measured;
    va_copy(measured, arguments);
    const std::int64_t needed = std::int64_t{_vscwprintf(format, measured)} + 1;
    va_end(measured);
    GrowTo(needed, false);
    m_count = needed;
    if (needed > 0) {
        vswprintf_s(m_data, AsSize(needed), format, arguments);
    }
    return *this;
}

CKORString CKORString::Format(const wchar_t* format, ...) {
    CKORString result;
    va_list arguments;
    va_start(arguments, format);
    result.FormatV(format, arguments);
    va_end(arguments);
    return result;
}

CKORString CKORString::Mid(std::int64_t start, std::int64_t count) const {
    const std::int64_t length = count == -1 ? m_count - 1 - start : count;
    CKORString result{WithoutStorage()};
    if (length < 0) {
        return result;
    }
    result.SetSize(length + 1, false);
    // Up to the end: the copy ends at the first null.
    std::fill(result.m_data, result.m_data + length + 1, L'\0');
    wcsncpy_s(result.m_data, AsSize(length + 1), Text() + start, AsSize(length));
    return result;
}

CKORString CKORString::Left(std::int64_t count) const {
    return Mid(0, count);
}

CTable1D<CKORString> CKORString::Split(const CKORString& delimiters) const {
    CTable1D<CKORString> tokens;
    const std::int64_t length = Length();
    if (length == 0) {
        return tokens;
    }

    std::int64_t pieces = 0;
    for (std::int64_t at = 0; at < length; ++pieces) {
        at += static_cast<std::int64_t>(std::wcscspn(m_data + at, delimiters.Text())) + 1;
    }
    tokens.Reserve(pieces);

    CKORString copy(*this);
    wchar_t* const text = copy.Data();
    std::int64_t end = -1;
    while (end < length) {
        const std::int64_t start = end + 1;
        end = start + static_cast<std::int64_t>(std::wcscspn(text + start, delimiters.Text()));
        text[end] = L'\0';
        tokens.Add(CKORString(text + start));
    }
    return tokens;
}

CKORString operator+(const CKORString& left, const CKORString& right) {
    CKORString result(left);
    result += right;
    return result;
}

CKORString operator+(const CKORString& left, const wchar_t* right) {
    CKORString result(left);
    result += right;
    return result;
}

CKORString operator+(const wchar_t* left, const CKORString& right) {
    CKORString result(left);
    result += right;
    return result;
}
