#include "tests/support/TestInstallation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace test {

namespace {

constexpr wchar_t TestFolder[] = L"C:\\KorTest";

std::filesystem::path AsPath(std::wstring path) {
    std::replace(path.begin(), path.end(), L'/', L'\\');
    return std::filesystem::path(path).lexically_normal();
}

HKEY OpenKey(const std::wstring& key) {
    HKEY handle = nullptr;
    const LSTATUS result = RegCreateKeyExW(HKEY_LOCAL_MACHINE, (L"Software\\" + key).c_str(), 0,
                                           nullptr, 0, KEY_ALL_ACCESS, nullptr, &handle, nullptr);
    EXPECT_EQ(result, ERROR_SUCCESS) << testing::PrintToString(key);
    return handle;
}

} // namespace

void TestInstallation::SetBytes(const std::wstring& key, const wchar_t* value, DWORD type,
                                const void* data, DWORD size) const {
    const HKEY handle = OpenKey(key);
    EXPECT_EQ(RegSetValueExW(handle, value, 0, type, static_cast<const BYTE*>(data), size),
              ERROR_SUCCESS);
    RegCloseKey(handle);
}

void TestInstallation::SetText(const std::wstring& key, const wchar_t* value,
                               const std::wstring& text, DWORD type) const {
    SetBytes(key, value, type, text.c_str(),
             static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
}

void TestInstallation::MakeKey(const std::wstring& key) const {
    RegCloseKey(OpenKey(key));
}

void TestInstallation::DeleteKey(const std::wstring& key) const {
    EXPECT_EQ(RegDeleteTreeW(HKEY_LOCAL_MACHINE, (L"Software\\" + key).c_str()), ERROR_SUCCESS);
}

void TestInstallation::DeleteValue(const std::wstring& key, const wchar_t* value) const {
    const HKEY handle = OpenKey(key);
    EXPECT_EQ(RegDeleteValueW(handle, value), ERROR_SUCCESS);
    RegCloseKey(handle);
}

void TestInstallation::MakeFile(const std::wstring& path) const {
    const std::filesystem::path file = AsPath(path);
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file) << "x";
    EXPECT_TRUE(std::filesystem::exists(file)) << testing::PrintToString(path);
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
    std::error_code ignored;
    std::filesystem::remove_all(TestFolder, ignored);
}

} // namespace test
