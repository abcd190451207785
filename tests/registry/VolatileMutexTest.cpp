// The mutexes of volatile data, with a second process where it takes two.
#include <cstdlib>
#include <thread>

#include "tests/registry/RegistryTest.h"
#include "tests/support/RegistryCalls.h"

namespace {

using Lines = std::vector<std::string>;

constexpr wchar_t CurrentUserRuntimeMutex[] = L"KOR_CURRENT_USER_RUNTIME_VOLATILE_MUTEX";
constexpr wchar_t Location[] = L"M_KOR_HKEY_CURRENT_USER_RUNTIME\\volatile\\counter";
constexpr int Increments = 5000;

using VolatileMutexes = test::WritableTest;

struct MutexRow {
    std::uint32_t id;
    const char* mutex; // null: the class has none
};

constexpr MutexRow Mutexes[] = {
    {1, "KOR_LOCAL_MACHINE_RUNTIME_VOLATILE_MUTEX"},
    {2, "KOR_CURRENT_USER_RUNTIME_VOLATILE_MUTEX"},
    {3, "KOR_LOCAL_MACHINE_DEVELOPMENT_VOLATILE_MUTEX"},
    {4, "KOR_CURRENT_USER_DEVELOPMENT_VOLATILE_MUTEX"},
    {5, nullptr},
    {6, nullptr},
    {7, "KOR_LOCAL_MACHINE_DEVELOPMENT_VOLATILE_MUTEX"},
    {8, nullptr},
};

TEST_F(VolatileMutexes, EachClassHasItsOwn) {
    for (const MutexRow& row : Mutexes) {
        SCOPED_TRACE(row.id);
        CRegistryKey key;
        ASSERT_TRUE(key.OpenSymbolic(static_cast<SymbolicRootId>(row.id), L"volatile\\x", true));
        test::BalancedCalls calls;
        EXPECT_EQ(key.LockVolatile(), row.mutex != nullptr);
        if (row.mutex == nullptr) {
            EXPECT_TRUE(calls.Calls().empty());
            EXPECT_FALSE(key.UnlockVolatile());
            continue;
        }
        const std::string mutex(row.mutex);
        EXPECT_EQ(calls.Calls(), (Lines{"OpenMutexW(100000, 1, " + mutex + ")",
                                        "CreateMutexW(-, 0, " + mutex + ")",
                                        "WaitForSingleObject(m1, ffffffff)"}));
        calls.Clear();
        EXPECT_FALSE(key.LockVolatile()) << "a second lock on the same object";
        EXPECT_TRUE(calls.Calls().empty());
        EXPECT_TRUE(key.UnlockVolatile());
        EXPECT_EQ(calls.Calls(), (Lines{"ReleaseMutex(m1)", "CloseHandle(m1)"}));
        EXPECT_FALSE(key.UnlockVolatile());
    }
}

TEST_F(VolatileMutexes, AnExistingMutexIsOpened) {
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, CurrentUserRuntimeMutex);
    CRegistryKey key(Location, true);
    {
        test::BalancedCalls calls;
        EXPECT_TRUE(key.LockVolatile());
        EXPECT_EQ(calls.CountOf("CreateMutexW"), 0);
        EXPECT_TRUE(key.UnlockVolatile());
    }
    CloseHandle(mutex);
}

TEST_F(VolatileMutexes, OnlyAnOpenVolatileKeyLocks) {
    CRegistryKey key;
    test::RegistryCalls calls;
    EXPECT_FALSE(key.LockVolatile());
    EXPECT_FALSE(key.UnlockVolatile());
    EXPECT_TRUE(calls.Calls().empty());
    EXPECT_TRUE(key.OpenCurrentUserRuntime(L"ordinary", true));
    calls.Clear();
    EXPECT_FALSE(key.LockVolatile());
    EXPECT_TRUE(calls.Calls().empty());
}

// A failed move leaves the object closed in the location that it was opened in.
TEST_F(VolatileMutexes, AnObjectThatAMoveLeftClosedLocksNothing) {
    CRegistryKey key(Location, true);
    ASSERT_FALSE(key.OpenRelative(L"missing"));
    ASSERT_FALSE(key.IsOpen());
    test::RegistryCalls calls;
    EXPECT_FALSE(key.LockVolatile());
    EXPECT_TRUE(calls.Calls().empty()) << testing::PrintToString(calls.Calls());
    ASSERT_TRUE(key.OpenResolved(false, false, false));
    EXPECT_TRUE(key.LockVolatile()) << "and it still knows the location";
    EXPECT_TRUE(key.UnlockVolatile());
}

// The mutex is that of the location that was opened, wherever the object moves to.
TEST_F(VolatileMutexes, MovingDoesNotChangeTheMutex) {
    CRegistryKey key(Location, true);
    ASSERT_TRUE(key.OpenRelative(L"\\Software"));
    test::RegistryCalls calls;
    ASSERT_TRUE(key.LockVolatile());
    EXPECT_EQ(calls.Calls()[0], "OpenMutexW(100000, 1, KOR_CURRENT_USER_RUNTIME_VOLATILE_MUTEX)");
    EXPECT_TRUE(key.UnlockVolatile());
}

TEST_F(VolatileMutexes, WithoutAHandleTheLockFails) {
    // Something else bears the mutex's name.
    const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, CurrentUserRuntimeMutex);
    CRegistryKey key(Location, true);
    EXPECT_FALSE(key.LockVolatile());
    EXPECT_FALSE(key.UnlockVolatile());
    CloseHandle(event);
    EXPECT_TRUE(key.LockVolatile());
    EXPECT_TRUE(key.UnlockVolatile());
}

TEST_F(VolatileMutexes, ARefusedWaitKeepsTheHandle) {
    CRegistryKey key(Location, true);
    test::BalancedCalls calls;
    calls.FailCall(3);
    EXPECT_FALSE(key.LockVolatile());
    EXPECT_EQ(calls.FailedCall(), "WaitForSingleObject(m1, ffffffff)");
    EXPECT_FALSE(key.LockVolatile());
    EXPECT_FALSE(key.UnlockVolatile()) << "it was never owned, so the release fails";
    EXPECT_TRUE(key.LockVolatile());
    EXPECT_TRUE(key.UnlockVolatile());
}

TEST_F(VolatileMutexes, UnlockingFailsWhenEitherCallDoes) {
    for (const int failing : {1, 2}) {
        CRegistryKey key(Location, true);
        test::BalancedCalls calls;
        ASSERT_TRUE(key.LockVolatile());
        calls.Clear();
        calls.FailCall(failing);
        EXPECT_FALSE(key.UnlockVolatile());
        EXPECT_EQ(calls.Calls(), (Lines{"ReleaseMutex(m1)", "CloseHandle(m1)"}));
        EXPECT_FALSE(key.UnlockVolatile()) << "the handle is forgotten either way";
        if (failing == 1) {
            // Still owned by this thread, which must not keep it.
            const HANDLE mutex = OpenMutexW(SYNCHRONIZE, FALSE, CurrentUserRuntimeMutex);
            ReleaseMutex(mutex);
            CloseHandle(mutex);
        }
    }
}

TEST_F(VolatileMutexes, AKeyThatEndsGivesItsMutexBack) {
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, CurrentUserRuntimeMutex);
    test::BalancedCalls calls;
    {
        CRegistryKey key(Location, true);
        EXPECT_TRUE(key.LockVolatile());
        key.Close();
        EXPECT_FALSE(key.UnlockVolatile()) << "no open key";
    }
    EXPECT_EQ(calls.CountOf("ReleaseMutex"), 1);
    CloseHandle(mutex);
}

// What another thread gets that asks for the mutex without waiting; it does not keep it.
DWORD AskInAnotherThread(HANDLE mutex) {
    DWORD result = WAIT_FAILED;
    std::thread([&] {
        result = WaitForSingleObject(mutex, 0);
        if (result == WAIT_OBJECT_0) {
            ReleaseMutex(mutex);
        }
    }).join();
    return result;
}

// The mutex goes with the object, not with the key that it was locked for.
TEST_F(VolatileMutexes, AnObjectThatMovedAwayCanUnlock) {
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, CurrentUserRuntimeMutex);
    CRegistryKey key(Location, true);
    EXPECT_TRUE(key.LockVolatile());
    EXPECT_TRUE(key.Close());
    EXPECT_TRUE(key.Open(test::UserKey, true));
    EXPECT_EQ(AskInAnotherThread(mutex), DWORD{WAIT_TIMEOUT});
    EXPECT_FALSE(key.LockVolatile());
    EXPECT_TRUE(key.UnlockVolatile());
    EXPECT_EQ(AskInAnotherThread(mutex), DWORD{WAIT_OBJECT_0});
    EXPECT_FALSE(key.UnlockVolatile());
    CloseHandle(mutex);
}

// --- Between processes: the test program is started again to play one of these parts. ---

constexpr wchar_t PartVariable[] = L"KOR_TEST_PART";

int CountUp() {
    CRegistryKey key(Location, true);
    for (int i = 0; i < Increments; ++i) {
        std::uint32_t value = 0;
        if (!key.LockVolatile() || !key.ReadDword(L"n", value) ||
            !key.WriteDword(L"n", value + 1) || !key.UnlockVolatile()) {
            return 1;
        }
    }
    return 0;
}

// Locks and ends without unlocking.
int LockAndLeave() {
    CRegistryKey key(Location, true);
    if (!key.LockVolatile()) {
        return 1;
    }
    TerminateProcess(GetCurrentProcess(), 42);
    return 2;
}

// Locks, tells so, and waits to be ended.
int LockAndWait() {
    CRegistryKey key(Location, true);
    if (!key.LockVolatile()) {
        return 1;
    }
    const HANDLE locked = OpenEventW(EVENT_MODIFY_STATE, FALSE, L"KORTestLocked");
    SetEvent(locked);
    Sleep(60000);
    return 2;
}

class Child {
public:
    explicit Child(const wchar_t* part) {
        wchar_t program[MAX_PATH] = {};
        GetModuleFileNameW(nullptr, program, MAX_PATH);
        SetEnvironmentVariableW(PartVariable, part);
        STARTUPINFOW startup = {};
        startup.cb = sizeof startup;
        wchar_t arguments[] = L"child --gtest_filter=ChildProcess.*";
        m_started = CreateProcessW(program, arguments, nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                                   &startup, &m_process) != FALSE;
        SetEnvironmentVariableW(PartVariable, nullptr);
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    ~Child() {
        if (m_started) {
            CloseHandle(m_process.hThread);
            CloseHandle(m_process.hProcess);
        }
    }

    DWORD Wait() const {
        DWORD code = STILL_ACTIVE;
        WaitForSingleObject(m_process.hProcess, 120000);
        GetExitCodeProcess(m_process.hProcess, &code);
        return code;
    }
    void Kill() const { TerminateProcess(m_process.hProcess, 9); }

private:
    PROCESS_INFORMATION m_process = {};
    bool m_started = false;
};

// Does nothing unless this process was started to play a part.
TEST(ChildProcess, PlaysItsPart) {
    wchar_t part[20] = {};
    if (GetEnvironmentVariableW(PartVariable, part, 20) == 0) {
        GTEST_SKIP() << "played by child processes only";
    }
    const std::wstring name(part);
    std::_Exit(name == L"count" ? CountUp() : name == L"leave" ? LockAndLeave() : LockAndWait());
}

TEST_F(VolatileMutexes, TwoProcessesLoseNoUpdate) {
    CRegistryKey key(Location, true);
    ASSERT_TRUE(key.WriteDword(L"n", 0U));
    {
        const Child first(L"count");
        const Child second(L"count");
        EXPECT_EQ(first.Wait(), 0U);
        EXPECT_EQ(second.Wait(), 0U);
    }
    std::uint32_t value = 0;
    EXPECT_TRUE(key.ReadDword(L"n", value));
    EXPECT_EQ(value, 2U * Increments);
}

// The mutex of a holder that ended is abandoned: the lock fails, but the mutex is held.
void ExpectAbandoned(CRegistryKey& key) {
    test::BalancedCalls calls;
    EXPECT_FALSE(key.LockVolatile());
    EXPECT_EQ(calls.Calls().back(), "WaitForSingleObject(m1, ffffffff)");
    EXPECT_FALSE(key.LockVolatile());
    EXPECT_TRUE(key.UnlockVolatile());
    EXPECT_TRUE(key.LockVolatile());
    EXPECT_TRUE(key.UnlockVolatile());
}

TEST_F(VolatileMutexes, AHolderThatLeavesAbandonsTheMutex) {
    // Kept open, so that the mutex outlives its holder.
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, CurrentUserRuntimeMutex);
    CRegistryKey key(Location, true);
    const Child holder(L"leave");
    EXPECT_EQ(holder.Wait(), 42U);
    ExpectAbandoned(key);
    CloseHandle(mutex);
}

TEST_F(VolatileMutexes, AHolderThatIsKilledAbandonsTheMutex) {
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, CurrentUserRuntimeMutex);
    const HANDLE locked = CreateEventW(nullptr, TRUE, FALSE, L"KORTestLocked");
    CRegistryKey key(Location, true);
    const Child holder(L"wait");
    ASSERT_EQ(WaitForSingleObject(locked, 60000), DWORD{WAIT_OBJECT_0});
    holder.Kill();
    EXPECT_EQ(holder.Wait(), 9U);
    ExpectAbandoned(key);
    CloseHandle(locked);
    CloseHandle(mutex);
}

} // namespace
