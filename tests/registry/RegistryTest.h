// What the tests of the registry layer work in.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

#include "registry/CRegistryKey.h"
#include "tests/support/Printing.h"
#include "tests/support/RawRegistry.h"

namespace test {

// The key that tests work in.
inline constexpr wchar_t TestSubKey[] = L"Software\\KORTests";
inline constexpr wchar_t UserKey[] = L"HKEY_CURRENT_USER\\Software\\KORTests";
inline constexpr wchar_t MachineKey[] = L"HKEY_LOCAL_MACHINE\\Software\\KORTests";

std::vector<std::wstring> Sorted(const CTable1D<CKORString>& names);

// Removes the library's keys before and after each test.
class RegistryTest : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;
};

// The same, with the machine's test key made.
class MachineKeyTest : public RegistryTest {
protected:
    void SetUp() override;

    static void Set(const std::wstring& name, const RawValue& value) {
        SetRaw(HKEY_LOCAL_MACHINE, TestSubKey, name, value);
    }
};

// The same, with writes allowed everywhere.
class WritableTest : public RegistryTest {
protected:
    void SetUp() override;
};

// An object that is closed and knows no key.
testing::AssertionResult IsReset(const CRegistryKey& key);

inline const std::wstring Vantrel = L"Software\\Vantrel";
inline const std::wstring Library = Vantrel + L"\\Vantrel Imaging Library";
inline const std::wstring Runtime = Library + L"\\Runtime";

} // namespace test
