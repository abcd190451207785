// The main function of every test program. Tests delete keys and folders, so they run only where a
// throw-away prefix says that they may.
#include "tests/support/Expendable.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cstdio>

namespace {

// A crash ends the process with the exception's code at once. With Wine's debugger in between, the
// code of a second crash in the same prefix (a death test's was the first) is lost: the program
// would end with 0 and count as passed.
LONG WINAPI EndWithTheExceptionsCode(EXCEPTION_POINTERS* exception) {
    const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
    std::fprintf(stderr, "Exception %08lX at %p\n", record.ExceptionCode, record.ExceptionAddress);
    TerminateProcess(GetCurrentProcess(), record.ExceptionCode);
    return EXCEPTION_EXECUTE_HANDLER;
}

// There from the start of the tests to their end. A process that Wine gives up, as after a stack
// overflow, may end with 0; wine/in-prefix.py looks for this file then.
constexpr wchar_t RunningFile[] = L"C:\\tests-are-running";

} // namespace

int main(int argc, char** argv) {
    if (!test::MayChangeThisMachine()) {
        std::fputs("This program deletes registry keys and files. It runs only in the throw-away "
                   "prefix that wine/in-prefix.py makes, and in Windows Sandbox by the kit's "
                   "run-tests.cmd.\n",
                   stderr);
        return 2;
    }
    SetUnhandledExceptionFilter(&EndWithTheExceptionsCode);
    // CTest shows the output as it comes; an abort must not lose lines.
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    testing::InitGoogleTest(&argc, argv);
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const HANDLE file =
        CreateFileW(RunningFile, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE || CloseHandle(file) == FALSE) {
        std::fputs("The file that tells of a lost end could not be made.\n", stderr);
        return 2;
    }
    const int result = RUN_ALL_TESTS();
    DeleteFileW(RunningFile);
    return result;
}
