// Lets GoogleTest compare and print the library's strings.
#pragma once

#include <cwchar>
#include <ostream>
#include <string>

#include "base/CKORString.h"

inline bool operator==(const CKORString& left, const CKORString& right) {
    return std::wcscmp(left.Text(), right.Text()) == 0;
}

inline bool operator==(const CKORString& left, const wchar_t* right) {
    return std::wcscmp(left.Text(), right) == 0;
}

// Found by GoogleTest through the argument's namespace.
inline void PrintTo(const CKORString& text, std::ostream* out) {
    *out << testing::PrintToString(std::wstring(text.Text()));
}
