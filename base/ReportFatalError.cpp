#include "base/ReportFatalError.h"

#include <windows.h>

#include <wtsapi32.h>

#include <cwchar>

namespace {

DWORD SessionOfThisProcess() {
    DWORD session = 0;
    return ProcessIdToSessionId(GetCurrentProcessId(), &session) != FALSE ? session : 0;
}

DWORD BytesWithTerminator(const wchar_t* text) {
    return static_cast<DWORD>(2 * std::wcslen(text) + 2);
}

// WTSSendMessageW takes its texts as non-const although it only reads them.
LPWSTR AsMutable(const wchar_t* text) {
    return const_cast<LPWSTR>(text);
}

} // namespace

int ReportFatalError(const wchar_t* message, const wchar_t* caption, unsigned int style) {
    const DWORD session = SessionOfThisProcess();
    const DWORD consoleSession = WTSGetActiveConsoleSessionId();
    // The comparison with 0 alone is intended: without a console (0xFFFFFFFF) the message still
    // goes to the terminal services.
    if (session == 0 && consoleSession != 0) {
        DWORD answer = IDOK;
        WTSSendMessageW(WTS_CURRENT_SERVER_HANDLE, consoleSession, AsMutable(caption),
                        BytesWithTerminator(caption), AsMutable(message),
                        BytesWithTerminator(message), style, 0, &answer, TRUE);
        return static_cast<int>(answer);
    }
    return MessageBoxW(nullptr, message, caption, style);
}
