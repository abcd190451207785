// Puts data into the registry and files on drive C, and takes them away.
#include "tests/support/TestInstallation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "tests/support/RawRegistry.h"

namespace test {

namespace {

constexpr wchar_t TestFolder[] = L"C:\\KorTest";

std::filesystem::path AsPath(std::wstring path) {
    std::replace(path.begin(), path.end(), L'/', L'\\');
    return std::filesystem::path(path).lexically_normal();
}

HANDLE CreateEmptyFile(const std::filesystem::path& path) {
    return CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
}

// With what the entries of the folder tell of themselves: std::filesystem asks the system several
// times about each, and each time it is a question to Wine's server.
void DeleteFolder(const std::wstring& folder) {
    WIN32_FIND_DATAW entry = {};
    const HANDLE search = FindFirstFileW((folder + L"\\*").c_str(), &entry);
    if (search == INVALID_HANDLE_VALUE) {
        return;
    }
    do {
        const std::wstring name = entry.cFileName;
        const std::wstring path = folder + L"\\" + name;
        if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
            DeleteFileW(path.c_str());
        } else if (name != L"." && name != L"..") {
            DeleteFolder(path);
        }
    } while (FindNextFileW(search, &entry) != FALSE);
    FindClose(search);
    RemoveDirectoryW(folder.c_str());
}

} // namespace

void TestInstallation::SetBytes(const std::wstring& key, const wchar_t* value, DWORD type,
                                const void* data, DWORD size) const {
    const auto* const bytes = static_cast<const BYTE*>(data);
    SetRaw(HKEY_LOCAL_MACHINE, L"Software\\" + key, value, {type, {bytes, bytes + size}});
}

void TestInstallation::SetText(const std::wstring& key, const wchar_t* value,
                               const std::wstring& text, DWORD type) const {
    SetRaw(HKEY_LOCAL_MACHINE, L"Software\\" + key, value, Text(type, text));
}

void TestInstallation::MakeDevelopment(const std::wstring& folder) const {
    SetText(LibraryKey, L"KorVersion", L"1");
    SetText(LibraryKey, L"KORType", L"Development");
    SetText(InstallKey, L"installdir", folder);
}

void TestInstallation::MakeKey(const std::wstring& key) const {
    test::MakeKey(HKEY_LOCAL_MACHINE, L"Software\\" + key);
}

void TestInstallation::DeleteKey(const std::wstring& key) const {
    EXPECT_EQ(RegDeleteTreeW(HKEY_LOCAL_MACHINE, (L"Software\\" + key).c_str()), ERROR_SUCCESS);
}

void TestInstallation::DeleteValue(const std::wstring& key, const wchar_t* value) const {
    EXPECT_EQ(RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, (L"Software\\" + key).c_str(), value),
              ERROR_SUCCESS);
}

void TestInstallation::MakeFile(const std::wstring& path) const {
    const std::filesystem::path file = AsPath(path);
    HANDLE handle = CreateEmptyFile(file);
    if (handle == INVALID_HANDLE_VALUE) {
        std::filesystem::create_directories(file.parent_path());
        handle = CreateEmptyFile(file);
    }
    DWORD count = 0;
    EXPECT_TRUE(WriteFile(handle, "x", 1, &count, nullptr)) << testing::PrintToString(path);
    CloseHandle(handle);
}

void TestInstallation::MakeFolder(const std::wstring& path) const {
    std::filesystem::create_directories(AsPath(path));
    EXPECT_TRUE(std::filesystem::is_directory(AsPath(path))) << testing::PrintToString(path);
}

void TestInstallation::DeleteFileOf(const std::wstring& path) const {
    EXPECT_TRUE(std::filesystem::remove(AsPath(path))) << testing::PrintToString(path);
}

void TestInstallation::Wipe() {
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"Software\\Vantrel");
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"Software\\Wow6432Node\\Vantrel");
    RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Vantrel");
    DeleteFolder(TestFolder);
}

} // namespace test
