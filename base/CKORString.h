// The library's wide-character string: a table of UTF-16 code units that ends with a null, so its
// text can be handed to any wide C or Windows call as it stands.
#pragma once

#include <cstdarg>
#include <memory>

#include "base/CTable1D.h"

// An object that may travel with a string; it is destroyed with the string.
class CKORStringAuxiliary {
public:
    CKORStringAuxiliary() = default;
    CKORStringAuxiliary(const CKORStringAuxiliary&) = delete;
    CKORStringAuxiliary& operator=(const CKORStringAuxiliary&) = delete;
    virtual ~CKORStringAuxiliary() = default;
};

// The count of the table includes the terminating null. A string without storage is empty too.
// Default-constructed and copied strings grow in steps of 32 characters, all others to the exact
// size. Lengths are characters. Null texts are taken by construction and assignment only. A string
// with a null within it is copied whole by construction, and up to that null by assignment.
class CKORString : public CTable1D<wchar_t> {
public:
    CKORString();
    // With transform set, printable characters except the backslash and "B" are mirrored
    // (158 - c).
    CKORString(const wchar_t* text, bool transform = false);
    CKORString(const CKORString& other);
    CKORString(CKORString&& other) noexcept = default;
    CKORString& operator=(const wchar_t* text);
    CKORString& operator=(const CKORString& other);
    ~CKORString() override = default;

    CKORString& operator+=(const wchar_t* text);
    CKORString& operator+=(const CKORString& other);

    // Only for a string with storage, which is given back with the last element, the terminator.
    void RemoveLast();

    // printf rules of the C runtime's wide functions (%s is wide). A format error leaves the count
    // at 0. No argument may lie in the string itself.
    CKORString& FormatV(const wchar_t* format, va_list arguments);
    static CKORString Format(const wchar_t* format, ...);

    // A count of -1 means to the end, which of a string without storage gives one without storage.
    // Start and count must lie within the string.
    [[nodiscard]] CKORString Mid(std::int64_t start, std::int64_t count = -1) const;
    [[nodiscard]] CKORString Left(std::int64_t count) const;

    // Every delimiter character ends a token; empty tokens are kept. An empty string has none.
    [[nodiscard]] CTable1D<CKORString> Split(const CKORString& delimiters) const;

    // Never null.
    const wchar_t* Text() const { return m_count > 0 ? m_data : L""; }
    std::int64_t Length() const { return m_count > 0 ? m_count - 1 : 0; }

private:
    struct WithoutStorage {};
    explicit CKORString(WithoutStorage) {}

    // Whether the text lies in this string's storage, which growing would free.
    bool IsOwnText(const wchar_t* text) const;

    std::unique_ptr<unsigned char[]> m_auxiliaryBuffer;
    std::unique_ptr<CKORStringAuxiliary> m_auxiliaryObject;
};

CKORString operator+(const CKORString& left, const CKORString& right);
CKORString operator+(const CKORString& left, const wchar_t* right);
CKORString operator+(const wchar_t* left, const CKORString& right);
