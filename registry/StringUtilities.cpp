// Operations on the library's strings.
#include "registry/StringUtilities.h"

#include <algorithm>
#include <cwchar>

bool AppendPathPiece(CKORString& path, const CKORString& piece) {
    const std::int64_t length = path.Length();
    const bool isSeparated = length < 2 || path[length - 1] == L'\\' || *piece.Text() == L'\\';
    if (isSeparated) {
        path += piece.Text();
        return true;
    }
    // The piece may be the path itself, so it is taken before the backslash is added.
    const CKORString separatedPiece = L"\\" + piece;
    path += separatedPiece.Text();
    return true;
}

namespace kor {

CKORString LastCharacters(const CKORString& text, std::int64_t count) {
    const std::int64_t length = text.Length();
    return text.Mid(length - std::clamp<std::int64_t>(count, 0, length));
}

void ChangeLength(CKORString& text, std::int64_t length, wchar_t pad) {
    const std::int64_t wanted = length > 0 ? length : 0;
    while (text.Length() > wanted) {
        text.RemoveLast();
        text[text.Length()] = L'\0';
    }
    const std::int64_t missing = wanted - text.Length();
    if (missing > 0) {
        CKORString padding;
        padding.SetSize(missing + 1, false);
        std::fill_n(padding.Data(), missing, pad);
        padding[missing] = L'\0';
        text += padding.Text();
    }
}

bool ContainsText(const CKORString& text, const wchar_t* piece) {
    return std::wcsstr(text.Text(), piece) != nullptr;
}

bool EqualIgnoringCase(const wchar_t* left, const wchar_t* right) {
    return _wcsicmp(left, right) == 0;
}

void RemoveTrailingBackslashes(CKORString& text) {
    while (text.Length() > 0 && text[text.Length() - 1] == L'\\') {
        ChangeLength(text, text.Length() - 1, L' ');
    }
}

void RemoveLeadingBackslashes(CKORString& text) {
    std::int64_t leading = 0;
    while (leading < text.Length() && text[leading] == L'\\') {
        ++leading;
    }
    if (leading > 0) {
        text = text.Mid(leading);
    }
}

} // namespace kor
