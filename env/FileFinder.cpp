// Takes the pattern of a search apart, and joins the full path of each entry.
#include "env/FileFinder.h"

#include <cstdlib>
#include <cwchar>
#include <iterator>

#include "base/CKORString.h"
#include "env/JoinTexts.h"

namespace {

constexpr std::uint64_t TicksPerSecond = 10'000'000;
constexpr std::int64_t SecondsFrom1601To1970 = 11'644'473'600;
constexpr wchar_t VerbatimPrefix[] = L"\\\\?\\";
constexpr std::size_t VerbatimPrefixLength = 4;

std::uint64_t Combine(DWORD high, DWORD low) {
    return (std::uint64_t{high} << 32) | low;
}

std::int64_t SecondsSince1970(const FILETIME& time) {
    const std::uint64_t ticks = Combine(time.dwHighDateTime, time.dwLowDateTime);
    return static_cast<std::int64_t>(ticks / TicksPerSecond) - SecondsFrom1601To1970;
}

} // namespace

bool FileFinder::FindFirst(const wchar_t* pattern) {
    const CKORString given(pattern);
    Close();
    CKORString searched(given);
    std::int64_t length = searched.Length();
    // A slash at the end is left to the system: only backslashes are taken off.
    while (length > 0 && searched[length - 1] == L'\\') {
        --length;
    }
    searched[length] = L'\0';

    const HANDLE search = FindFirstFileW(searched.Text(), &m_data);
    if (search == INVALID_HANDLE_VALUE) {
        return false;
    }
    m_search = search;
    if (!KeepDirectoryPrefix(given.Text()) || !BuildFullPath()) {
        Close();
        return false;
    }
    return true;
}

bool FileFinder::FindNext() {
    m_fullPath[0] = L'\0';
    if (m_search == nullptr) {
        SetLastError(ERROR_INVALID_HANDLE);
        return false;
    }
    return FindNextFileW(m_search, &m_data) != FALSE && BuildFullPath();
}

void FileFinder::Close() {
    if (m_search == nullptr) {
        return;
    }
    const DWORD cause = GetLastError();
    FindClose(m_search);
    SetLastError(cause);
    m_search = nullptr;
    m_fullPath[0] = L'\0';
}

std::uint64_t FileFinder::Size() const {
    return Combine(m_data.nFileSizeHigh, m_data.nFileSizeLow);
}

bool FileFinder::IsDirectoryLink() const {
    // The system gives the reparse point's tag in the first reserved field.
    return IsDirectory() && IsReparsePoint() && IsReparseTagNameSurrogate(m_data.dwReserved0);
}

std::int64_t FileFinder::CreationTime() const {
    return SecondsSince1970(m_data.ftCreationTime);
}

std::int64_t FileFinder::LastAccessTime() const {
    return SecondsSince1970(m_data.ftLastAccessTime);
}

std::int64_t FileFinder::LastWriteTime() const {
    return SecondsSince1970(m_data.ftLastWriteTime);
}

bool FileFinder::IsDots() const {
    // Skips "a..b" too: docs/quirks.md.
    const wchar_t* const name = Name();
    return std::wcscmp(name, L".") == 0 || std::wcsstr(name, L"..") != nullptr ||
           std::wcsstr(name, L"\\.") != nullptr || std::wcsstr(name, L".\\") != nullptr;
}

bool FileFinder::ClearReadOnly() const {
    if (!IsReadOnly()) {
        return true;
    }
    // The bare name, not the full path: docs/quirks.md.
    const DWORD attributes = m_data.dwFileAttributes & ~DWORD{FILE_ATTRIBUTE_READONLY};
    return SetFileAttributesW(Name(), attributes) != FALSE;
}

bool FileFinder::KeepDirectoryPrefix(const wchar_t* pattern) {
    // Some runtimes count "\\?\" as a part of the drive, which then does not fit its buffer; behind
    // it every runtime splits alike.
    const bool isVerbatim = std::wcsncmp(pattern, VerbatimPrefix, VerbatimPrefixLength) == 0;
    const wchar_t* const split = isVerbatim ? pattern + VerbatimPrefixLength : pattern;

    wchar_t drive[4] = L"";
    const std::size_t directorySize = std::wcslen(split) + 1;
    CKORString directory;
    directory.SetSize(static_cast<std::int64_t>(directorySize), false);
    const errno_t failure = _wsplitpath_s(split, drive, std::size(drive), directory.Data(),
                                          directorySize, nullptr, 0, nullptr, 0);
    if (failure != 0) {
        SetLastError(ERROR_INVALID_NAME);
        return false;
    }
    const CKORString prefix = CKORString(isVerbatim ? VerbatimPrefix : L"") + drive;
    return JoinTexts(m_directoryPrefix, prefix.Text(), directory.Text());
}

bool FileFinder::BuildFullPath() {
    return JoinTexts(m_fullPath, m_directoryPrefix, m_data.cFileName);
}
