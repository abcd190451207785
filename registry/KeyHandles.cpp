// One system call for each operation on a bare handle.
#include "registry/KeyHandles.h"

namespace kor {

bool CloseKeyHandle(HKEY handle) {
    return RegCloseKey(handle) == ERROR_SUCCESS;
}

bool FlushKeyHandle(HKEY handle) {
    return RegFlushKey(handle) == ERROR_SUCCESS;
}

bool ValueExists(HKEY handle, const CKORString& name) {
    DWORD size = 0;
    return RegQueryValueExW(handle, name.Text(), nullptr, nullptr, nullptr, &size) == ERROR_SUCCESS;
}

bool GetSubKeyCount(HKEY handle, std::uint64_t& count) {
    DWORD subKeys = 0;
    const LSTATUS result = RegQueryInfoKeyW(handle, nullptr, nullptr, nullptr, &subKeys, nullptr,
                                            nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    count = result == ERROR_SUCCESS ? subKeys : 0;
    return result == ERROR_SUCCESS;
}

bool GetValueCount(HKEY handle, std::uint64_t& count) {
    DWORD values = 0;
    const LSTATUS result = RegQueryInfoKeyW(handle, nullptr, nullptr, nullptr, nullptr, nullptr,
                                            nullptr, &values, nullptr, nullptr, nullptr, nullptr);
    count = result == ERROR_SUCCESS ? values : 0;
    return result == ERROR_SUCCESS;
}

} // namespace kor
