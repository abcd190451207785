// A search whose entries a test makes up.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/support/ImportHook.h"

namespace test {

// A search that exists only in the import table: it finds the entries that it was given.
class StagedSearch {
public:
    explicit StagedSearch(std::vector<WIN32_FIND_DATAW> entries) : m_entries(std::move(entries)) {}

    const std::wstring& Pattern() const { return m_pattern; }
    int Closed() const { return m_closed; }

private:
    HANDLE Handle() { return this; }

    std::vector<WIN32_FIND_DATAW> m_entries;
    std::size_t m_next = 0;
    std::wstring m_pattern;
    int m_closed = 0;
    test::ImportHook<struct StagedFirst, decltype(&FindFirstFileW)> m_first{
        "FindFirstFileW", [this](LPCWSTR pattern, LPWIN32_FIND_DATAW data) {
            m_pattern = pattern;
            *data = m_entries[0];
            m_next = 1;
            return Handle();
        }};
    test::ImportHook<struct StagedNext, decltype(&FindNextFileW)> m_nextHook{
        "FindNextFileW", [this](HANDLE search, LPWIN32_FIND_DATAW data) -> BOOL {
            EXPECT_EQ(search, Handle());
            if (m_next == m_entries.size()) {
                SetLastError(ERROR_NO_MORE_FILES);
                return FALSE;
            }
            *data = m_entries[m_next++];
            return TRUE;
        }};
    test::ImportHook<struct StagedClose, decltype(&FindClose)> m_close{
        "FindClose", [this](HANDLE search) -> BOOL {
            EXPECT_EQ(search, Handle());
            ++m_closed;
            SetLastError(ERROR_BUSY);
            return TRUE;
        }};
};

inline WIN32_FIND_DATAW Entry(const wchar_t* name, DWORD attributes = FILE_ATTRIBUTE_NORMAL) {
    WIN32_FIND_DATAW data = {};
    data.dwFileAttributes = attributes;
    wcscpy_s(data.cFileName, name);
    return data;
}

} // namespace test
