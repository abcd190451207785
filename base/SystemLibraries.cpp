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

bool FindSystemFile(const wchar_t* name, wchar_t (&path)[MAX_PATH]) {
    const UINT length = GetSystemDirectoryW(path, MAX_PATH);
    if (length == 0 || length + 1 + std::wcslen(name) >= MAX_PATH) {
        return false;
    }
    path[length] = L'\\';
    std::wcscpy(path + length + 1, name);
    return true;
}

HMODULE LoadSystemLibrary(const wchar_t* name) {
    const HMODULE library = LoadLibraryExW(name, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    if (library != nullptr) {
        return library;
    }
    // The system may not know the flag.
    wchar_t path[MAX_PATH];
    return FindSystemFile(name, path) ? LoadLibraryExW(path, nullptr, LOAD_WITH_ALTERED_SEARCH_PATH)
                                      : nullptr;
}
