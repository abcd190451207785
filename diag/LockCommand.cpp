// kordiag registry lock: a command runs while the mutex of a volatile location is held.
#include "diag/Cause.h"
#include "diag/RegistryAccess.h"

namespace {

// An interrupt is the command's; the mutex must be released after it.
BOOL WINAPI LeaveInterruptToCommand(DWORD event) {
    return event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT ? TRUE : FALSE;
}

// Waits for its end. False when the command could not be started.
bool RunAndWait(std::wstring line, DWORD& exitCode) {
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process = {};
    SetConsoleCtrlHandler(LeaveInterruptToCommand, TRUE);
    if (CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                       &process) == FALSE) {
        return false;
    }
    const bool ended = WaitForSingleObject(process.hProcess, INFINITE) == WAIT_OBJECT_0 &&
                       GetExitCodeProcess(process.hProcess, &exitCode) != FALSE;
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return ended;
}

} // namespace

ExitCode RunRegistryLock(const Arguments& arguments, Streams& streams) {
    SelectLayoutAndRule(arguments);
    CRegistryKey key;
    if (!OpenKey(arguments, streams, key)) {
        return ExitCode::No;
    }
    if (!key.LockVolatile()) {
        // A mutex whose holder ended without releasing it is held now, and refused all the same.
        Complain(streams,
                 key.UnlockVolatile()
                     ? L"the program that held the lock before ended without releasing it; "
                       L"its data may be incomplete. The lock is free again."
                     : L"the lock could not be taken: only volatile locations of the runtime and "
                       L"development roots have one, and the system may refuse it");
        return ExitCode::No;
    }
    DWORD exitCode = 0;
    const bool started = RunAndWait(CommandLineOf(arguments.CommandLine), exitCode);
    const bool released = key.UnlockVolatile();
    if (!started) {
        Complain(streams, CKORString(L"the command could not be started: ") +
                              arguments.CommandLine[0].c_str());
        return ExitCode::No;
    }
    if (!released) {
        Complain(streams, L"the lock could not be released");
        return ExitCode::No;
    }
    return static_cast<ExitCode>(exitCode);
}
