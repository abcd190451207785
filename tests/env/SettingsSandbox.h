// The registry keys and the environment variables of the folder settings, emptied for a test.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace test {

// Everything is empty while it is constructed; afterwards the variables are as they were and the
// keys are empty.
class SettingsSandbox {
public:
    SettingsSandbox();
    SettingsSandbox(const SettingsSandbox&) = delete;
    SettingsSandbox& operator=(const SettingsSandbox&) = delete;
    ~SettingsSandbox();

    // Deletes the settings.
    static void Clear();

    // Stored in "Settings\Debug" plus the subkey, which begins with a backslash.
    static void SetIn(HKEY hive, const std::wstring& subKey, const wchar_t* name,
                      const std::wstring& text, DWORD type = REG_SZ);

    // Nothing is stored without a text.
    static void SetUser(const wchar_t* name, const std::optional<std::wstring>& text,
                        DWORD type = REG_SZ);
    static void SetMachine(const wchar_t* name, const std::optional<std::wstring>& text);
    static void SetUserNumber(const wchar_t* name, DWORD number);

private:
    std::vector<std::pair<const wchar_t*, std::optional<std::wstring>>> m_variables;
};

} // namespace test
