// Where test programs refuse to run.
#include "tests/support/Expendable.h"

#include "tests/support/ImportHook.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cwchar>

namespace {

// A process on Windows itself, under a user's name, with the variables that are set.
class OnWindows : public testing::Test {
protected:
    OnWindows() {
        SetEnvironmentVariableW(L"KOR_TEST_SANDBOX", nullptr);
        SetEnvironmentVariableW(L"KOR_TEST_EXPENDABLE", nullptr);
    }
    ~OnWindows() override {
        SetEnvironmentVariableW(L"KOR_TEST_SANDBOX", L"1");
        SetEnvironmentVariableW(L"KOR_TEST_EXPENDABLE", nullptr);
    }

    static bool MayRun(const wchar_t* user) {
        HOOK_IMPORT(wine, GetProcAddress, [](auto...) -> FARPROC { return nullptr; });
        HOOK_IMPORT(name, GetUserNameW, [&](wchar_t* buffer, DWORD*) -> BOOL {
            std::wcscpy(buffer, user);
            return TRUE;
        });
        return test::MayChangeThisMachine();
    }
};

TEST_F(OnWindows, ATestProgramDoesNotRunUntold) {
    EXPECT_FALSE(MayRun(L"WDAGUtilityAccount"));
    EXPECT_FALSE(test::MayChangeThisMachine());
    SetEnvironmentVariableW(L"KOR_TEST_EXPENDABLE", L"1");
    EXPECT_FALSE(MayRun(L"WDAGUtilityAccount"));
}

TEST_F(OnWindows, ATestProgramToldOnceRunsInTheSandboxAndUnderWineOnly) {
    SetEnvironmentVariableW(L"KOR_TEST_SANDBOX", L"1");
    EXPECT_FALSE(MayRun(L"somebody"));
    EXPECT_TRUE(MayRun(L"WDAGUtilityAccount"));
    EXPECT_TRUE(test::MayChangeThisMachine());
}

TEST_F(OnWindows, ATestProgramToldTwiceRunsAnywhere) {
    SetEnvironmentVariableW(L"KOR_TEST_SANDBOX", L"1");
    SetEnvironmentVariableW(L"KOR_TEST_EXPENDABLE", L"1");
    EXPECT_TRUE(MayRun(L"somebody"));
}

} // namespace
