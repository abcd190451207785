// A DLL that notes that it was loaded, and by which path: what a stranger may lay beside a program.
#include <windows.h>

#include <cwchar>

BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, void* /*reserved*/) {
    if (reason != DLL_PROCESS_ATTACH) {
        return TRUE;
    }
    wchar_t path[MAX_PATH + 1];
    DWORD length = GetModuleFileNameW(module, path, MAX_PATH);
    path[length++] = L'\n';
    const HANDLE log =
        CreateFileW(L"C:\\planted.log", FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE,
                    nullptr, OPEN_ALWAYS, 0, nullptr);
    DWORD written = 0;
    WriteFile(log, path, length * sizeof(wchar_t), &written, nullptr);
    CloseHandle(log);
    return TRUE;
}
