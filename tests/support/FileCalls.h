// Records the calls that search and delete files, and lets one of them fail.
#pragma once

#include <windows.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/support/ImportHook.h"

namespace test {

// While it lives, every such call of the test program is passed on and recorded, except the one
// that fails: that is only recorded.
class FileCalls {
public:
    struct Call {
        std::string function;
        // As it was given; that of a search call is the pattern or the found name.
        std::wstring text;
        DWORD attributes = 0;
        bool succeeded = false;
    };

    static constexpr int NoFailure = -1;
    static constexpr DWORD InjectedError = ERROR_IO_DEVICE;

    // The call with this number, from 0, fails with the injected error.
    explicit FileCalls(int failing = NoFailure) : m_failing(failing) {}

    const std::vector<Call>& Calls() const { return m_calls; }

    // Each call on a line of its own, with the names' beginning taken off where it is the folder's
    // path.
    std::wstring Listed(const std::wstring& folder) const {
        std::wstring lines;
        for (const Call& call : m_calls) {
            const bool isInside = call.text.compare(0, folder.size(), folder) == 0;
            lines += std::wstring(call.function.begin(), call.function.end()) + L" " +
                     (isInside ? L"~" + call.text.substr(folder.size()) : call.text) + L"\n";
        }
        return lines;
    }

    // Whether every search that was opened was closed once, and nothing else was closed.
    bool IsBalanced() const {
        std::vector<HANDLE> opened = m_opened;
        std::vector<HANDLE> closed = m_closed;
        std::sort(opened.begin(), opened.end());
        std::sort(closed.begin(), closed.end());
        return opened == closed;
    }

private:
    bool Fails() const { return static_cast<int>(m_calls.size()) == m_failing; }

    template <typename Forward>
    BOOL Record(const char* function, const wchar_t* text, DWORD attributes, Forward forward) {
        const bool fails = Fails();
        const BOOL succeeded = fails ? FALSE : forward();
        const DWORD error = fails ? InjectedError : GetLastError();
        m_calls.push_back({function, text, attributes, succeeded != FALSE});
        SetLastError(error);
        return succeeded;
    }

    template <typename Tag, typename Function>
    using Hook = ImportHook<Tag, Function>;

    int m_failing;
    std::vector<Call> m_calls;
    std::vector<HANDLE> m_opened;
    std::vector<HANDLE> m_closed;

    Hook<struct FindFirstTag, decltype(&FindFirstFileW)> m_findFirst{
        "FindFirstFileW", [this](LPCWSTR pattern, LPWIN32_FIND_DATAW data) {
            HANDLE search = INVALID_HANDLE_VALUE;
            Record("FindFirst", pattern, 0, [&] {
                search = m_findFirst.Original(pattern, data);
                return search != INVALID_HANDLE_VALUE;
            });
            if (search != INVALID_HANDLE_VALUE) {
                m_opened.push_back(search);
            }
            return search;
        }};
    Hook<struct FindNextTag, decltype(&FindNextFileW)> m_findNext{
        "FindNextFileW", [this](HANDLE search, LPWIN32_FIND_DATAW data) {
            const BOOL found =
                Record("FindNext", L"", 0, [&] { return m_findNext.Original(search, data); });
            m_calls.back().text = found != FALSE ? data->cFileName : L"-";
            return found;
        }};
    Hook<struct FindCloseTag, decltype(&FindClose)> m_findClose{
        "FindClose", [this](HANDLE search) {
            m_closed.push_back(search);
            return Record("FindClose", L"", 0, [&] {
                const BOOL closed = m_findClose.Original(search);
                // What a clean-up may leave behind.
                SetLastError(ERROR_BUSY);
                return closed;
            });
        }};
    Hook<struct DeleteFileTag, decltype(&DeleteFileW)> m_deleteFile{
        "DeleteFileW", [this](LPCWSTR path) {
            return Record("DeleteFile", path, 0, [&] { return m_deleteFile.Original(path); });
        }};
    Hook<struct RemoveDirectoryTag, decltype(&RemoveDirectoryW)> m_removeDirectory{
        "RemoveDirectoryW", [this](LPCWSTR path) {
            return Record("RemoveDirectory", path, 0,
                          [&] { return m_removeDirectory.Original(path); });
        }};
    Hook<struct SetFileAttributesTag, decltype(&SetFileAttributesW)> m_setFileAttributes{
        "SetFileAttributesW", [this](LPCWSTR path, DWORD attributes) {
            return Record("SetFileAttributes", path, attributes,
                          [&] { return m_setFileAttributes.Original(path, attributes); });
        }};
};

} // namespace test
