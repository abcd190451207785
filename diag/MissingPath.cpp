// Walks along a path to the first part that does not exist.
#include "diag/MissingPath.h"

#include <windows.h>

#include <string>

#include "env/PathTests.h"
#include "registry/StringUtilities.h"

namespace {

std::size_t EndOfName(const std::wstring& path, std::size_t start) {
    while (start < path.size() && !kor::IsPathSeparator(path[start])) {
        ++start;
    }
    return start;
}

std::size_t EndOfSeparators(const std::wstring& path, std::size_t start) {
    while (start < path.size() && kor::IsPathSeparator(path[start])) {
        ++start;
    }
    return start;
}

// The part that exists as a whole or not at all: a drive, or a server's share.
std::size_t EndOfRoot(const std::wstring& path) {
    if (path.size() >= 2 && path[1] == L':') {
        return EndOfSeparators(path, 2);
    }
    const std::size_t separators = EndOfSeparators(path, 0);
    if (separators == 2) {
        const std::size_t server = EndOfName(path, separators);
        return EndOfSeparators(path, EndOfName(path, EndOfSeparators(path, server)));
    }
    return separators;
}

CKORString Sentence(const wchar_t* kind, const std::wstring& path) {
    if (path.size() >= MAX_PATH) {
        return CKORString::Format(L"the path is too long: %d characters up to here: %s",
                                  static_cast<int>(path.size()), path.c_str());
    }
    return CKORString(L"the ") + kind + L" " + path.c_str() + L" does not exist";
}

} // namespace

CKORString WhatIsMissingOf(const CKORString& path, bool isFolder) {
    const std::wstring whole(path.Text());
    if (kor::PathExists(whole.c_str())) {
        return L"";
    }
    std::size_t end = EndOfRoot(whole);
    if (end > 1 && !kor::PathExists(whole.substr(0, end).c_str())) {
        return Sentence(L"drive", whole.substr(0, end));
    }
    while (end < whole.size()) {
        end = EndOfName(whole, end);
        const std::size_t next = EndOfSeparators(whole, end);
        const std::wstring part = whole.substr(0, end);
        const bool isLast = next == whole.size();
        if (!kor::PathExists(part.c_str())) {
            return Sentence(isLast && !isFolder ? L"file" : L"folder", part);
        }
        if (!isLast && IsExistingFile(part.c_str())) {
            return CKORString(L"this is a file, not a folder: ") + part.c_str();
        }
        end = next;
    }
    return Sentence(isFolder ? L"folder" : L"file", whole);
}
