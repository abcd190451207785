// Shows a fatal message where a user sees it.
#include "base/ReportFatalError.h"

#include <windows.h>

#include <wtsapi32.h>

#include <cwchar>

#include "base/SystemLibraries.h"

namespace {

DWORD SessionOfThisProcess() {
    DWORD session = 0;
    return ProcessIdToSessionId(GetCurrentProcessId(), &session) != FALSE ? session : 0;
}

DWORD BytesWithTerminator(const wchar_t* text) {
    return static_cast<DWORD>(2 * std::wcslen(text) + 2);
}

// Loaded when it is needed, which is hardly ever: a static import of this one would be looked for
// beside the program first.
DWORD SendToSession(DWORD session, LPWSTR caption, LPWSTR message, DWORD style) {
    DWORD answer = IDOK;
    const HMODULE services = LoadSystemLibrary(L"wtsapi32.dll");
    if (services == nullptr) {
        return answer;
    }
    const FARPROC found = GetProcAddress(services, "WTSSendMessageW");
    const auto send = reinterpret_cast<decltype(&WTSSendMessageW)>(reinterpret_cast<void*>(found));
    if (send != nullptr) {
        send(WTS_CURRENT_SERVER_HANDLE, session, caption, BytesWithTerminator(caption), message,
             BytesWithTerminator(message), style, 0, &answer, TRUE);
    }
    return answer;
}

// WTSSendMessageW takes its texts as non-const although it only reads them.
LPWSTR AsMutable(const wchar_t* text) {
    return const_cast<LPWSTR>(text);
}

} // namespace

int ReportFatalError(const wchar_t* message, const wchar_t* caption, unsigned int style) {
    const DWORD session = SessionOfThisProcess();
    const DWORD consoleSession = WTSGetActiveConsoleSessionId();
    // Only compared with 0: docs/quirks.md.
    if (session == 0 && consoleSession != 0) {
        return static_cast<int>(
            SendToSession(consoleSession, AsMutable(caption), AsMutable(message), style));
    }
    return MessageBoxW(nullptr, message, caption, style);
}
