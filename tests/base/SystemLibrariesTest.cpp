// Where DLLs come from.
#include "base/SystemLibraries.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/support/ImportHook.h"

namespace {

const HMODULE Found = reinterpret_cast<HMODULE>(0x5000);
DWORD g_directories = 0;

BOOL WINAPI TakeDirectories(DWORD directories) {
    g_directories = directories;
    return TRUE;
}

TEST(SystemLibraries, ArePutInForceWhereTheSystemCan) {
    g_directories = 0;
    HOOK_IMPORT(find, GetProcAddress, [](HMODULE module, LPCSTR name) -> FARPROC {
        EXPECT_EQ(module, GetModuleHandleW(L"kernel32.dll"));
        EXPECT_STREQ(name, "SetDefaultDllDirectories");
        return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&TakeDirectories));
    });
    LoadLibrariesFromSystemOnly();
    EXPECT_EQ(g_directories, 0x800U | 0x400U) << "the system's folder and those of users";
}

TEST(SystemLibraries, AnOldSystemStaysAsItIs) {
    HOOK_IMPORT(find, GetProcAddress, [](auto...) -> FARPROC { return nullptr; });
    LoadLibrariesFromSystemOnly();
}

TEST(SystemLibraries, ComeFromTheSystemsFolder) {
    std::vector<std::wstring> asked;
    HOOK_IMPORT(load, LoadLibraryExW, [&](LPCWSTR name, HANDLE, DWORD flags) -> HMODULE {
        asked.emplace_back(name);
        EXPECT_EQ(flags, 0x800U);
        return Found;
    });
    EXPECT_EQ(LoadSystemLibrary(L"some.dll"), Found);
    EXPECT_EQ(asked, std::vector<std::wstring>{L"some.dll"});
}

TEST(SystemLibraries, ComeByTheirPathWhereTheSystemDoesNotKnowTheFlag) {
    std::vector<std::pair<std::wstring, DWORD>> asked;
    HOOK_IMPORT(load, LoadLibraryExW, [&](LPCWSTR name, HANDLE, DWORD flags) -> HMODULE {
        asked.emplace_back(name, flags);
        SetLastError(ERROR_INVALID_PARAMETER);
        return (flags & 0x800U) != 0 ? nullptr : Found;
    });
    EXPECT_EQ(LoadSystemLibrary(L"some.dll"), Found);
    wchar_t folder[MAX_PATH];
    GetSystemDirectoryW(folder, MAX_PATH);
    EXPECT_EQ(asked, (std::vector<std::pair<std::wstring, DWORD>>{
                         {L"some.dll", 0x800U},
                         // What the library needs itself comes from its folder, too.
                         {std::wstring(folder) + L"\\some.dll", 0x8U}}));
}

TEST(SystemLibraries, AreNotLookedForWithoutTheSystemsFolder) {
    int asked = 0;
    HOOK_IMPORT(load, LoadLibraryExW, [&](auto...) -> HMODULE {
        ++asked;
        return nullptr;
    });
    for (const UINT length : {0U, 260U, 5000U, 251U}) {
        HOOK_IMPORT(folder, GetSystemDirectoryW, [&](auto...) { return length; });
        EXPECT_EQ(LoadSystemLibrary(L"some.dll"), nullptr);
    }
    EXPECT_EQ(asked, 4) << "by name only";
}

TEST(SystemLibraries, AreThereForReal) {
    EXPECT_NE(LoadSystemLibrary(L"wtsapi32.dll"), nullptr);
    EXPECT_EQ(LoadSystemLibrary(L"nosuch.dll"), nullptr);
}

} // namespace
