// Where the HTML engine finds a page of the program's resources.
#include "mfc/ResourceAddress.h"

#include <cwchar>
#include <iterator>
#include <memory>

namespace {

using Text = std::unique_ptr<wchar_t[]>;

constexpr wchar_t Scheme[] = L"res://";
constexpr std::size_t LongestName = 16;

// Null when there is none. Systems differ in what they say of a path that does not fit, but all
// fill the buffer with it.
Text ModulePath() {
    constexpr DWORD TooLong = 0x10000;
    for (DWORD size = MAX_PATH; size < TooLong; size *= 2) {
        Text path = std::make_unique<wchar_t[]>(size);
        const DWORD length = GetModuleFileName(nullptr, path.get(), size);
        if (length < size) {
            return length != 0 ? std::move(path) : nullptr;
        }
    }
    return nullptr;
}

bool BeginsWith(const wchar_t* text, const wchar_t* with) {
    return std::wcsncmp(text, with, std::wcslen(with)) == 0;
}

// '%' begins an escape and '#' a fragment. Everything else in a path stays as it is: engines take
// blanks, brackets and letters of any script literally.
const wchar_t* EscapeOf(wchar_t c) {
    return c == L'%' ? L"%25" : c == L'#' ? L"%23" : nullptr;
}

} // namespace

_bstr_t ResourceAddress(UINT id) {
    const Text modulePath = ModulePath();
    if (modulePath == nullptr) {
        return _bstr_t();
    }
    // The form for long paths is no part of the name: of a share two backslashes remain.
    const wchar_t* path = modulePath.get();
    const wchar_t* shareMark = L"";
    if (BeginsWith(path, L"\\\\?\\UNC\\")) {
        path += 8;
        shareMark = L"\\\\";
    } else if (BeginsWith(path, L"\\\\?\\")) {
        path += 4;
    }
    // Three characters for one at the most.
    const Text address =
        std::make_unique<wchar_t[]>(std::size(Scheme) + 2 + 3 * std::wcslen(path) + LongestName);
    wchar_t* end = address.get() + wsprintf(address.get(), L"%s%s", Scheme, shareMark);
    for (; *path != L'\0'; ++path) {
        const wchar_t* const escape = EscapeOf(*path);
        if (escape != nullptr) {
            std::wcscpy(end, escape);
            end += std::wcslen(escape);
        } else {
            *end++ = *path;
        }
    }
    wsprintf(end, L"/%u", id);
    return _bstr_t(address.get());
}
