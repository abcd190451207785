// The mutexes that programs take around reading and writing volatile data.
#include "registry/CRegistryKey.h"

namespace {

struct MutexName {
    std::int32_t VolatileClass;
    const wchar_t* Name;
};

// Without a namespace: docs/quirks.md.
constexpr MutexName MutexNames[] = {
    {1, L"KOR_LOCAL_MACHINE_RUNTIME_VOLATILE_MUTEX"},
    {2, L"KOR_CURRENT_USER_RUNTIME_VOLATILE_MUTEX"},
    {3, L"KOR_LOCAL_MACHINE_DEVELOPMENT_VOLATILE_MUTEX"},
    {4, L"KOR_CURRENT_USER_DEVELOPMENT_VOLATILE_MUTEX"},
};

const wchar_t* MutexNameOf(std::int32_t volatileClass) {
    for (const MutexName& row : MutexNames) {
        if (row.VolatileClass == volatileClass) {
            return row.Name;
        }
    }
    return nullptr;
}

} // namespace

bool CRegistryKey::LockVolatile() {
    if (m_handle == nullptr || VolatileMutex != nullptr) {
        return false;
    }
    const wchar_t* const name = MutexNameOf(VolatileClass);
    if (name == nullptr) {
        return false;
    }
    VolatileMutex = OpenMutexW(SYNCHRONIZE, TRUE, name);
    if (VolatileMutex == nullptr) {
        VolatileMutex = CreateMutexW(nullptr, FALSE, name);
    }
    // An abandoned mutex is a failure that leaves it held: docs/quirks.md.
    return VolatileMutex != nullptr &&
           WaitForSingleObject(VolatileMutex, INFINITE) == WAIT_OBJECT_0;
}

bool CRegistryKey::UnlockVolatile() {
    return m_handle != nullptr && VolatileMutex != nullptr && ReleaseVolatileMutex();
}

bool CRegistryKey::ReleaseVolatileMutex() {
    const bool released = ReleaseMutex(VolatileMutex) != FALSE;
    const bool closed = CloseHandle(VolatileMutex) != FALSE;
    VolatileMutex = nullptr;
    return released && closed;
}
