// Answers from the attributes of a file.
#include "env/PathTests.h"

#include <windows.h>

#include <shlwapi.h>

#include <algorithm>
#include <cwchar>
#include <iterator>
#include <string_view>

namespace {

constexpr std::wstring_view UrlPrefixes[] = {L"ftp://", L"ftps://", L"http://", L"https://"};

// INVALID_FILE_ATTRIBUTES for what is no path or cannot be examined.
DWORD AttributesOf(const wchar_t* path) {
    const bool isEmpty = path == nullptr || *path == L'\0';
    return isEmpty ? INVALID_FILE_ATTRIBUTES : GetFileAttributesW(path);
}

} // namespace

bool kor::PathExists(const wchar_t* path) {
    return PathFileExistsW(path) != FALSE;
}

bool IsExistingDirectory(const wchar_t* path) {
    const DWORD attributes = AttributesOf(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool IsExistingFile(const wchar_t* path) {
    const DWORD attributes = AttributesOf(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

bool IsUrl(const wchar_t* text) {
    if (text == nullptr) {
        return false;
    }
    // Only as many characters as a prefix has are read.
    return std::any_of(std::begin(UrlPrefixes), std::end(UrlPrefixes), [&](std::wstring_view p) {
        return std::wcsncmp(text, p.data(), p.size()) == 0;
    });
}
