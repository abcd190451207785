// Sets variables and debug settings, and takes them away again.
#include "tests/env/SettingsSandbox.h"

#include <gtest/gtest.h>

#include "tests/support/RawRegistry.h"

namespace test {

namespace {

constexpr const wchar_t* Variables[] = {L"TEMP", L"TRACEFOLDER", L"KOR_PATH", L"KOR_PATH64"};

std::wstring KeyOf(const std::wstring& subKey) {
    return L"Software\\Vantrel\\Vantrel Imaging Library\\Runtime\\Settings\\Debug" + subKey;
}

std::optional<std::wstring> VariableOf(const wchar_t* name) {
    const DWORD size = GetEnvironmentVariableW(name, nullptr, 0);
    if (size == 0) {
        return std::nullopt;
    }
    std::wstring text(size, L'\0');
    text.resize(GetEnvironmentVariableW(name, text.data(), size));
    return text;
}

} // namespace

SettingsSandbox::SettingsSandbox() {
    for (const wchar_t* const name : Variables) {
        m_variables.emplace_back(name, VariableOf(name));
        SetEnvironmentVariableW(name, nullptr);
    }
    Clear();
}

SettingsSandbox::~SettingsSandbox() {
    for (const auto& [name, text] : m_variables) {
        SetEnvironmentVariableW(name, text ? text->c_str() : nullptr);
    }
    Clear();
}

void SettingsSandbox::Clear() {
    for (const HKEY hive : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
        const LSTATUS status = RegDeleteTreeW(hive, KeyOf(L"").c_str());
        EXPECT_TRUE(status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND) << status;
    }
}

void SettingsSandbox::SetIn(HKEY hive, const std::wstring& subKey, const wchar_t* name,
                            const std::wstring& text, DWORD type) {
    // A second terminator ends a multi-string.
    SetRaw(hive, KeyOf(subKey), name, Text(type, type == REG_MULTI_SZ ? text + L'\0' : text));
}

void SettingsSandbox::SetUser(const wchar_t* name, const std::optional<std::wstring>& text,
                              DWORD type) {
    if (text) {
        SetIn(HKEY_CURRENT_USER, L"", name, *text, type);
    }
}

void SettingsSandbox::SetMachine(const wchar_t* name, const std::optional<std::wstring>& text) {
    if (text) {
        SetIn(HKEY_LOCAL_MACHINE, L"", name, *text);
    }
}

void SettingsSandbox::SetUserNumber(const wchar_t* name, DWORD number) {
    SetRaw(HKEY_CURRENT_USER, KeyOf(L""), name, Dword(number));
}

} // namespace test
