// Records the system calls that the registry layer makes, makes one of them fail, and keeps account
// of every handle that they open.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <map>
#include <string>
#include <vector>

#include "tests/support/ImportHook.h"

namespace test {

// Works from its construction to its destruction; keep that short. Handles are named in the order
// in which they were opened: "k1", "k2" for keys, "m1" for a mutex.
class RegistryCalls {
public:
    RegistryCalls();
    RegistryCalls(const RegistryCalls&) = delete;
    RegistryCalls& operator=(const RegistryCalls&) = delete;
    // Closes what a refused close left open.
    ~RegistryCalls();

    // Makes the n-th call from now on, from 1, fail without being made.
    void FailCall(int n, LSTATUS code = ERROR_ACCESS_DENIED);
    // The call that failed, empty while none has.
    const std::string& FailedCall() const { return m_failedCall; }

    void Clear() { m_calls.clear(); }
    const std::vector<std::string>& Calls() const { return m_calls; }
    // How often a function was called.
    int CountOf(const std::string& function) const;

    // Empty when each handle that was opened was closed just once (a refused close counts when
    // nothing closed the handle after it); otherwise what is wrong.
    std::string HandleFaults() const;

private:
    struct HandleState {
        std::string name;
        bool isOpen;
        bool wasRefused;
    };

    // Records the call; true when it is to fail.
    bool Enter(const std::string& call);
    std::string NameOf(const void* handle) const;
    void Opened(void* handle, char kind);
    template <typename Original>
    bool Close(void* handle, const std::string& function, Original original);

    std::vector<std::string> m_calls;
    std::map<const void*, HandleState> m_handles;
    std::vector<std::string> m_faults;
    std::string m_failedCall;
    LSTATUS m_failure = 0;
    int m_untilFailure = 0;
    int m_keys = 0;
    int m_mutexes = 0;
    const DWORD m_thread = GetCurrentThreadId();

    ImportHook<struct CurrentUserTag, decltype(&RegOpenCurrentUser)> m_openCurrentUser;
    ImportHook<struct CreateTag, decltype(&RegCreateKeyExW)> m_create;
    ImportHook<struct OpenTag, decltype(&RegOpenKeyExW)> m_open;
    ImportHook<struct CloseTag, decltype(&RegCloseKey)> m_close;
    ImportHook<struct FlushTag, decltype(&RegFlushKey)> m_flush;
    ImportHook<struct QueryTag, decltype(&RegQueryValueExW)> m_query;
    ImportHook<struct InfoTag, decltype(&RegQueryInfoKeyW)> m_info;
    ImportHook<struct EnumKeyTag, decltype(&RegEnumKeyExW)> m_enumKey;
    ImportHook<struct EnumValueTag, decltype(&RegEnumValueW)> m_enumValue;
    ImportHook<struct SetTag, decltype(&RegSetValueExW)> m_set;
    ImportHook<struct DeleteValueTag, decltype(&RegDeleteValueW)> m_deleteValue;
    ImportHook<struct DeleteKeyTag, decltype(&RegDeleteKeyExW)> m_deleteKey;
    ImportHook<struct OpenMutexTag, decltype(&OpenMutexW)> m_openMutex;
    ImportHook<struct CreateMutexTag, decltype(&CreateMutexW)> m_createMutex;
    ImportHook<struct WaitTag, decltype(&WaitForSingleObject)> m_wait;
    ImportHook<struct ReleaseTag, decltype(&ReleaseMutex)> m_release;
    ImportHook<struct CloseHandleTag, decltype(&CloseHandle)> m_closeHandle;
    ImportHook<struct ModuleTag, decltype(&GetModuleFileNameW)> m_module;
};

// The same, and at its end each handle must have been closed just once.
class BalancedCalls : public RegistryCalls {
public:
    BalancedCalls() = default;
    BalancedCalls(const BalancedCalls&) = delete;
    BalancedCalls& operator=(const BalancedCalls&) = delete;
    ~BalancedCalls() { EXPECT_EQ(HandleFaults(), ""); }
};

} // namespace test
