// Small operations on texts that the registry layer and the builders of paths share.
#pragma once

#include <cstdint>

#include "base/CKORString.h"

// Joins path and piece: one backslash is put between them when the path has two characters or more,
// does not end in a backslash and the piece does not begin with one. Always true.
bool AppendPathPiece(CKORString& path, const CKORString& piece);

namespace kor {

// The last characters of the text; the whole text when it has no more than that many.
[[nodiscard]] CKORString LastCharacters(const CKORString& text, std::int64_t count);

// Cuts the text to the length, or fills it up to it with the pad character. A length below 0 is 0.
void ChangeLength(CKORString& text, std::int64_t length, wchar_t pad);

// Whether the piece occurs in the text, compared with case.
bool ContainsText(const CKORString& text, const wchar_t* piece);

constexpr bool IsPathSeparator(wchar_t c) {
    return c == L'\\' || c == L'/';
}

// By the C runtime's rules, which fold A to Z only.
bool EqualIgnoringCase(const wchar_t* left, const wchar_t* right);

void RemoveTrailingBackslashes(CKORString& text);
void RemoveLeadingBackslashes(CKORString& text);

} // namespace kor
