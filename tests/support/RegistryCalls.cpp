// Hooks the layer's system calls.
#include "tests/support/RegistryCalls.h"

#include <algorithm>
#include <cstdint>
#include <sstream>
#include <utility>

namespace test {

namespace {

constexpr std::pair<std::uint32_t, const char*> RootNames[] = {
    {0x80000000U, "HKCR"}, {0x80000001U, "HKCU"}, {0x80000002U, "HKLM"}, {0x80000003U, "HKU"},
    {0x80000004U, "HKPD"}, {0x80000005U, "HKCC"}, {0x80000006U, "HKDD"},
};

std::string Narrow(const wchar_t* text) {
    std::string narrow;
    for (; text != nullptr && *text != L'\0'; ++text) {
        narrow += *text < 128 ? static_cast<char>(*text) : '?';
    }
    return narrow;
}

std::string Hex(std::uint64_t number) {
    std::ostringstream out;
    out << std::hex << number;
    return out.str();
}

// What an optional argument is: given or not.
std::string Given(const void* pointer, const char* name) {
    return pointer != nullptr ? name : "-";
}

std::string Size(const DWORD* size) {
    return size != nullptr ? std::to_string(*size) : "-";
}

// A program that does not use one of the functions imports it all the same, so that it can be
// hooked.
template <typename... Functions>
void KeepImports(Functions... functions) {
    const void* volatile kept = nullptr;
    ((kept = reinterpret_cast<void*>(functions)), ...);
    static_cast<void>(kept);
}

template <typename... Arguments>
std::string Line(const char* function, const Arguments&... arguments) {
    std::string line = std::string(function) + "(";
    const char* separator = "";
    ((line += separator, line += arguments, separator = ", "), ...);
    return line + ")";
}

} // namespace

RegistryCalls::RegistryCalls()
    : m_openCurrentUser("RegOpenCurrentUser",
                        [this](REGSAM access, PHKEY result) -> LSTATUS {
                            if (Enter(Line("RegOpenCurrentUser", Hex(access)))) {
                                return m_failure;
                            }
                            const LSTATUS status = m_openCurrentUser.Original(access, result);
                            Opened(status == ERROR_SUCCESS ? *result : nullptr, 'k');
                            return status;
                        }),
      m_create("RegCreateKeyExW",
               [this](HKEY key, LPCWSTR subKey, DWORD reserved, LPWSTR keyClass, DWORD options,
                      REGSAM access, LPSECURITY_ATTRIBUTES security, PHKEY result,
                      LPDWORD disposition) -> LSTATUS {
                   if (Enter(Line("RegCreateKeyExW", NameOf(key), Narrow(subKey),
                                  std::to_string(reserved), Given(keyClass, "class"),
                                  std::to_string(options), Hex(access), Given(security, "security"),
                                  Given(disposition, "disposition")))) {
                       return m_failure;
                   }
                   const LSTATUS status =
                       m_create.Original(key, subKey, reserved, keyClass, options, access, security,
                                         result, disposition);
                   Opened(status == ERROR_SUCCESS ? *result : nullptr, 'k');
                   return status;
               }),
      m_open(
          "RegOpenKeyExW",
          [this](HKEY key, LPCWSTR subKey, DWORD options, REGSAM access, PHKEY result) -> LSTATUS {
              if (Enter(Line("RegOpenKeyExW", NameOf(key), Narrow(subKey), std::to_string(options),
                             Hex(access)))) {
                  return m_failure;
              }
              const LSTATUS status = m_open.Original(key, subKey, options, access, result);
              Opened(status == ERROR_SUCCESS ? *result : nullptr, 'k');
              return status;
          }),
      m_close("RegCloseKey",
              [this](HKEY key) -> LSTATUS {
                  LSTATUS status = m_failure;
                  const bool closed = Close(key, "RegCloseKey", [&] {
                      status = m_close.Original(key);
                      return status == ERROR_SUCCESS;
                  });
                  return closed ? ERROR_SUCCESS : status;
              }),
      m_flush("RegFlushKey",
              [this](HKEY key) -> LSTATUS {
                  return Enter(Line("RegFlushKey", NameOf(key))) ? m_failure
                                                                 : m_flush.Original(key);
              }),
      m_query("RegQueryValueExW",
              [this](HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data,
                     LPDWORD size) -> LSTATUS {
                  return Enter(Line("RegQueryValueExW", NameOf(key), Narrow(name),
                                    Given(reserved, "reserved"), Given(type, "type"),
                                    Given(data, "data"), Size(size)))
                             ? m_failure
                             : m_query.Original(key, name, reserved, type, data, size);
              }),
      m_info("RegQueryInfoKeyW",
             [this](HKEY key, LPWSTR keyClass, LPDWORD classLength, LPDWORD reserved,
                    LPDWORD subKeys, LPDWORD longestSubKey, LPDWORD longestClass, LPDWORD values,
                    LPDWORD longestName, LPDWORD longestValue, LPDWORD security,
                    PFILETIME time) -> LSTATUS {
                 return Enter(Line("RegQueryInfoKeyW", NameOf(key), Given(subKeys, "subkeys"),
                                   Given(values, "values")))
                            ? m_failure
                            : m_info.Original(key, keyClass, classLength, reserved, subKeys,
                                              longestSubKey, longestClass, values, longestName,
                                              longestValue, security, time);
             }),
      m_enumKey("RegEnumKeyExW",
                [this](HKEY key, DWORD index, LPWSTR name, LPDWORD length, LPDWORD reserved,
                       LPWSTR keyClass, LPDWORD classLength, PFILETIME time) -> LSTATUS {
                    return Enter(Line("RegEnumKeyExW", NameOf(key), std::to_string(index),
                                      Size(length), Given(keyClass, "class"), Given(time, "time")))
                               ? m_failure
                               : m_enumKey.Original(key, index, name, length, reserved, keyClass,
                                                    classLength, time);
                }),
      m_enumValue("RegEnumValueW",
                  [this](HKEY key, DWORD index, LPWSTR name, LPDWORD length, LPDWORD reserved,
                         LPDWORD type, LPBYTE data, LPDWORD size) -> LSTATUS {
                      return Enter(Line("RegEnumValueW", NameOf(key), std::to_string(index),
                                        Size(length), Given(type, "type"), Given(data, "data")))
                                 ? m_failure
                                 : m_enumValue.Original(key, index, name, length, reserved, type,
                                                        data, size);
                  }),
      m_set("RegSetValueExW",
            [this](HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data,
                   DWORD size) -> LSTATUS {
                return Enter(Line("RegSetValueExW", NameOf(key), Narrow(name),
                                  std::to_string(reserved), std::to_string(type),
                                  std::to_string(size)))
                           ? m_failure
                           : m_set.Original(key, name, reserved, type, data, size);
            }),
      m_deleteValue("RegDeleteValueW",
                    [this](HKEY key, LPCWSTR name) -> LSTATUS {
                        return Enter(Line("RegDeleteValueW", NameOf(key), Narrow(name)))
                                   ? m_failure
                                   : m_deleteValue.Original(key, name);
                    }),
      m_deleteKey("RegDeleteKeyExW",
                  [this](HKEY key, LPCWSTR subKey, REGSAM view, DWORD reserved) -> LSTATUS {
                      return Enter(Line("RegDeleteKeyExW", NameOf(key), Narrow(subKey), Hex(view),
                                        std::to_string(reserved)))
                                 ? m_failure
                                 : m_deleteKey.Original(key, subKey, view, reserved);
                  }),
      m_openMutex(
          "OpenMutexW",
          [this](DWORD access, WINBOOL inherit, LPCWSTR name) -> HANDLE {
              if (Enter(Line("OpenMutexW", Hex(access), std::to_string(inherit), Narrow(name)))) {
                  return nullptr;
              }
              const HANDLE mutex = m_openMutex.Original(access, inherit, name);
              Opened(mutex, 'm');
              return mutex;
          }),
      m_createMutex("CreateMutexW",
                    [this](LPSECURITY_ATTRIBUTES security, WINBOOL owned, LPCWSTR name) -> HANDLE {
                        if (Enter(Line("CreateMutexW", Given(security, "security"),
                                       std::to_string(owned), Narrow(name)))) {
                            return nullptr;
                        }
                        const HANDLE mutex = m_createMutex.Original(security, owned, name);
                        Opened(mutex, 'm');
                        return mutex;
                    }),
      m_wait("WaitForSingleObject",
             [this](HANDLE handle, DWORD time) -> DWORD {
                 // GoogleTest waits for the end of this thread in one of its own.
                 if (GetCurrentThreadId() != m_thread) {
                     return m_wait.Original(handle, time);
                 }
                 return Enter(Line("WaitForSingleObject", NameOf(handle), Hex(time)))
                            ? DWORD{WAIT_FAILED}
                            : m_wait.Original(handle, time);
             }),
      m_release("ReleaseMutex",
                [this](HANDLE handle) -> WINBOOL {
                    return Enter(Line("ReleaseMutex", NameOf(handle))) ? FALSE
                                                                       : m_release.Original(handle);
                }),
      m_closeHandle("CloseHandle",
                    [this](HANDLE handle) -> WINBOOL {
                        return Close(handle, "CloseHandle",
                                     [&] { return m_closeHandle.Original(handle) != FALSE; })
                                   ? TRUE
                                   : FALSE;
                    }),
      m_module("GetModuleFileNameW", [this](HMODULE module, LPWSTR path, DWORD size) -> DWORD {
          return Enter(Line("GetModuleFileNameW", Given(module, "module"), std::to_string(size)))
                     ? 0
                     : m_module.Original(module, path, size);
      }) {
    KeepImports(&RegOpenCurrentUser, &RegCreateKeyExW, &RegOpenKeyExW, &RegCloseKey, &RegFlushKey,
                &RegQueryValueExW, &RegQueryInfoKeyW, &RegEnumKeyExW, &RegEnumValueW,
                &RegSetValueExW, &RegDeleteValueW, &RegDeleteKeyExW, &OpenMutexW, &CreateMutexW,
                &WaitForSingleObject, &ReleaseMutex, &CloseHandle, &GetModuleFileNameW);
}

RegistryCalls::~RegistryCalls() {
    for (const auto& [handle, state] : m_handles) {
        if (state.isOpen && state.wasRefused) {
            if (state.name[0] == 'm') {
                m_closeHandle.Original(const_cast<void*>(handle));
            } else {
                m_close.Original(static_cast<HKEY>(const_cast<void*>(handle)));
            }
        }
    }
}

void RegistryCalls::FailCall(int n, LSTATUS code) {
    m_untilFailure = n;
    m_failure = code;
    m_failedCall.clear();
}

int RegistryCalls::CountOf(const std::string& function) const {
    return static_cast<int>(
        std::count_if(m_calls.begin(), m_calls.end(), [&](const std::string& call) {
            return call.compare(0, function.size() + 1, function + "(") == 0;
        }));
}

std::string RegistryCalls::HandleFaults() const {
    std::string faults;
    for (const std::string& fault : m_faults) {
        faults += fault + "; ";
    }
    for (const auto& [handle, state] : m_handles) {
        if (state.isOpen && !state.wasRefused) {
            faults += state.name + " was left open; ";
        }
    }
    return faults;
}

bool RegistryCalls::Enter(const std::string& call) {
    m_calls.push_back(call);
    if (m_untilFailure > 0 && --m_untilFailure == 0) {
        m_failedCall = call;
        return true;
    }
    return false;
}

std::string RegistryCalls::NameOf(const void* handle) const {
    if (handle == nullptr) {
        return "null";
    }
    for (const auto& [root, name] : RootNames) {
        if (reinterpret_cast<std::uintptr_t>(handle) ==
            static_cast<std::uintptr_t>(
                static_cast<std::intptr_t>(static_cast<std::int32_t>(root)))) {
            return name;
        }
    }
    const auto known = m_handles.find(handle);
    return known != m_handles.end() ? known->second.name : "?";
}

void RegistryCalls::Opened(void* handle, char kind) {
    if (handle != nullptr) {
        int& number = kind == 'k' ? m_keys : m_mutexes;
        m_handles[handle] = {kind + std::to_string(++number), true, false};
    }
}

template <typename Original>
bool RegistryCalls::Close(void* handle, const std::string& function, Original original) {
    const bool fails = Enter(Line(function.c_str(), NameOf(handle)));
    const auto known = m_handles.find(handle);
    if (known != m_handles.end()) {
        HandleState& state = known->second;
        if (!state.isOpen) {
            m_faults.push_back(state.name + " was closed twice");
        }
        state.wasRefused = state.wasRefused || fails;
        state.isOpen = fails;
    }
    return !fails && original();
}

} // namespace test
