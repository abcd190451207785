// Makes a folder and deletes it at the end.
#include "tests/env/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace test {

namespace {

std::wstring Verbatim(const std::wstring& path) {
    return L"\\\\?\\" + path;
}

void MakeOneFolder(const std::wstring& path) {
    EXPECT_TRUE(CreateDirectoryW(Verbatim(path).c_str(), nullptr)) << GetLastError();
}

} // namespace

TempFolder::TempFolder() {
    static int number = 0;
    wchar_t folder[MAX_PATH] = L"";
    GetTempPathW(MAX_PATH, folder);
    m_path = folder +
             (L"kor" + std::to_wstring(GetCurrentProcessId()) + L"_" + std::to_wstring(++number));
    MakeOneFolder(m_path);
}

std::wstring TempFolder::MakeFolder(const std::wstring& name) const {
    MakeOneFolder(PathOf(name));
    return PathOf(name);
}

std::wstring TempFolder::MakeFile(const std::wstring& name, DWORD attributes) const {
    std::wstring path = PathOf(name);
    const HANDLE file = CreateFileW(Verbatim(path).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                    attributes, nullptr);
    EXPECT_NE(file, INVALID_HANDLE_VALUE) << GetLastError();
    CloseHandle(file);
    return path;
}

std::wstring TempFolder::MakeFolderOfLength(std::size_t length) const {
    constexpr std::size_t NameLength = 100;
    std::wstring path = m_path;
    while (path.size() + 1 < length) {
        const std::size_t left = length - path.size() - 1;
        // No rest of one character, which would be the separator alone.
        const std::size_t name = left == NameLength + 1 ? NameLength - 1 : left;
        path += L"\\" + std::wstring(std::min(name, NameLength), L'd');
        if (!Exists(path)) {
            MakeOneFolder(path);
        }
    }
    EXPECT_EQ(path.size(), length);
    return path;
}

bool Exists(const std::wstring& path) {
    return GetFileAttributesW(Verbatim(path).c_str()) != INVALID_FILE_ATTRIBUTES;
}

} // namespace test
