// Asks for a variable, and for a machine that may be changed: Wine, Windows Sandbox, one given up.
#include "tests/support/Expendable.h"

#include <lmcons.h>
#include <windows.h>

#include <cwchar>

namespace test {

namespace {

bool IsSet(const wchar_t* variable) {
    return GetEnvironmentVariableW(variable, nullptr, 0) != 0;
}

bool RunsUnderWine() {
    return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

// Its user has this name in every one.
bool RunsInWindowsSandbox() {
    wchar_t user[UNLEN + 1];
    DWORD size = UNLEN + 1;
    return GetUserNameW(user, &size) != FALSE && std::wcscmp(user, L"WDAGUtilityAccount") == 0;
}

} // namespace

bool MayChangeThisMachine() {
    return IsSet(L"KOR_TEST_SANDBOX") &&
           (RunsUnderWine() || RunsInWindowsSandbox() || IsSet(L"KOR_TEST_EXPENDABLE"));
}

} // namespace test
