// Which version a file of the system's has, or why that is not known.
#include "diag/FileVersion.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "tests/support/ImportHook.h"
#include "tests/support/TestInstallation.h"

namespace {

// The system's folder is one of ours, with libraries made for the test.
class SystemFiles : public testing::Test {
protected:
    SystemFiles() { m_files.MakeFolder(L"C:\\KorTest\\system"); }

    // A copy of this program, which Wine does not take for its own library of that name, with the
    // resource.
    static void MakeLibrary(const wchar_t* name, const std::vector<WORD>& version) {
        wchar_t program[MAX_PATH] = L"";
        GetModuleFileNameW(nullptr, program, MAX_PATH);
        const std::wstring path = std::wstring(L"C:\\KorTest\\system\\") + name;
        ASSERT_TRUE(CopyFileW(program, path.c_str(), FALSE));
        const HANDLE update = BeginUpdateResourceW(path.c_str(), TRUE);
        ASSERT_NE(update, nullptr);
        ASSERT_TRUE(UpdateResourceW(update, RT_VERSION, MAKEINTRESOURCEW(1), 0x409,
                                    const_cast<WORD*>(version.data()),
                                    static_cast<DWORD>(version.size() * sizeof(WORD))));
        ASSERT_TRUE(EndUpdateResourceW(update, FALSE));
    }

    // A version resource that has only the fixed part, with the given value of it.
    static std::vector<WORD> Resource(const std::vector<WORD>& fixed) {
        std::vector<WORD> data = {0, static_cast<WORD>(fixed.size() * sizeof(WORD)), 0};
        constexpr wchar_t Name[] = L"VS_VERSION_INFO";
        for (const wchar_t c : Name) {
            data.push_back(c);
        }
        data.push_back(0); // the fixed part begins at a multiple of four bytes
        data.insert(data.end(), fixed.begin(), fixed.end());
        data[0] = static_cast<WORD>(data.size() * sizeof(WORD));
        return data;
    }

    static std::vector<WORD> Fixed() {
        std::vector<WORD> fixed(sizeof(VS_FIXEDFILEINFO) / sizeof(WORD));
        VS_FIXEDFILEINFO info = {};
        info.dwSignature = VS_FFI_SIGNATURE;
        info.dwStrucVersion = 0x10000;
        info.dwFileVersionMS = 0x000B0000;
        info.dwFileVersionLS = 0x585F0BBF;
        info.dwProductVersionMS = 0x00010002;
        std::memcpy(fixed.data(), &info, sizeof info);
        return fixed;
    }

    static FileVersion VersionOf(const wchar_t* name) {
        HOOK_IMPORT(folder, GetSystemDirectoryW, [](LPWSTR path, UINT) -> UINT {
            constexpr wchar_t Folder[] = L"C:\\KorTest\\system";
            std::memcpy(path, Folder, sizeof Folder);
            return std::size(Folder) - 1;
        });
        return VersionOfSystemFile(name);
    }

    test::TestInstallation m_files;
};

TEST_F(SystemFiles, TheVersionIsThatOfTheFile) {
    MakeLibrary(L"a.dll", Resource(Fixed()));
    const FileVersion version = VersionOf(L"a.dll");
    EXPECT_EQ(version.Error, static_cast<DWORD>(ERROR_SUCCESS));
    EXPECT_EQ(version.Text, L"11.0.22623.3007");
}

TEST_F(SystemFiles, AFileThatIsNotThereOrSaysNothingHasNoVersion) {
    EXPECT_EQ(VersionOf(L"a.dll").Error, static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    std::ofstream("C:\\KorTest\\system\\a.dll") << "no library";
    EXPECT_NE(VersionOf(L"a.dll").Error, static_cast<DWORD>(ERROR_SUCCESS));
    EXPECT_EQ(VersionOf(L"a.dll").Text, L"");
    MakeLibrary(L"b.dll", Resource({}));
    EXPECT_EQ(VersionOf(L"b.dll").Error, static_cast<DWORD>(ERROR_INVALID_DATA));
    MakeLibrary(L"c.dll", Resource({1, 2, 3, 4}));
    EXPECT_EQ(VersionOf(L"c.dll").Error, static_cast<DWORD>(ERROR_INVALID_DATA));
}

TEST_F(SystemFiles, WithoutTheLibraryForVersionsThereIsNone) {
    HOOK_IMPORT(load, LoadLibraryExW, test::FailsWith<HMODULE>(ERROR_MOD_NOT_FOUND));
    EXPECT_EQ(VersionOf(L"a.dll").Error, static_cast<DWORD>(ERROR_MOD_NOT_FOUND));
}

TEST_F(SystemFiles, WithoutTheSystemsFolderNoFileOfAnotherOneIsAsked) {
    constexpr wchar_t Folder[] = L"C:\\KorTest\\system";
    MakeLibrary(L"a.dll", Resource(Fixed()));
    ASSERT_TRUE(SetCurrentDirectoryW(Folder));
    for (const UINT length : {0U, 260U, 5000U}) {
        HOOK_IMPORT(folder, GetSystemDirectoryW, [&](auto...) { return length; });
        const FileVersion version = VersionOfSystemFile(L"a.dll");
        EXPECT_EQ(version.Text, L"");
        EXPECT_EQ(version.Error, static_cast<DWORD>(ERROR_PATH_NOT_FOUND));
    }
    ASSERT_TRUE(SetCurrentDirectoryW(L"C:\\"));
}

} // namespace
