// Loads libraries from the system's folder only.
#include "base/SystemLibraries.h"

#include <cwchar>

void LoadLibrariesFromSystemOnly() {
    using SetDirectories = BOOL(WINAPI*)(DWORD);
    // Windows 7 has it since an update only.
    const FARPROC found =
        GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "SetDefaultDllDirectories");
    const auto setDirectories = reinterpret_cast<SetDirectories>(reinterpret_cast<void*>(found));
    if (setDirectories != nullptr) {
        setDirectories(LOAD_LIBRARY_SEARCH_SYSTEM32 | LOAD_LIBRARY_SEARCH_USER_DIRS);
    }
}

std::wstring FindSystemFile(const wchar_t* name) {
    wchar_t folder[MAX_PATH];
    const UINT length = GetSystemDirectoryW(folder, MAX_PATH);
    if (length == 0 || length + 1 + std::wcslen(name) >= MAX_PATH) {
        return {};
    }
    return std::wstring(folder, length) + L"\\" + name;
}

HMODULE LoadSystemLibrary(const wchar_t* name) {
    const HMODULE library = LoadLibraryExW(name, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    if (library != nullptr) {
        return library;
    }
    // The system may not know the flag.
    const std::wstring path = FindSystemFile(name);
    return path.empty() ? nullptr
                        : LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
}
