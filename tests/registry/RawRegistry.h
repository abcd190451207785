// The registry as the system's own calls see it, to prepare tests and to check what was written.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "registry/CRegistryKey.h"
#include "tests/support/Printing.h"

namespace test {

// The key that tests work in.
inline constexpr wchar_t TestSubKey[] = L"Software\\KORTests";
inline constexpr wchar_t UserKey[] = L"HKEY_CURRENT_USER\\Software\\KORTests";
inline constexpr wchar_t MachineKey[] = L"HKEY_LOCAL_MACHINE\\Software\\KORTests";

struct RawValue {
    DWORD type;
    std::vector<BYTE> data;

    bool operator==(const RawValue& other) const {
        return type == other.type && data == other.data;
    }
};

void PrintTo(const RawValue& value, std::ostream* out);

// A string's bytes, with its terminator; embedded nulls are kept.
std::vector<BYTE> Bytes(const std::wstring& text, bool terminated = true);
RawValue Text(DWORD type, const std::wstring& text);
RawValue Dword(std::uint32_t value);
RawValue Qword(std::uint64_t value);

void MakeKey(HKEY root, const std::wstring& subKey, bool isVolatile = false);
void SetRaw(HKEY root, const std::wstring& subKey, const std::wstring& name, const RawValue& value);
std::optional<RawValue> GetRaw(HKEY root, const std::wstring& subKey, const std::wstring& name);
bool KeyExists(HKEY root, const std::wstring& subKey);
// A volatile key refuses keys that are not.
bool IsVolatileKey(HKEY root, const std::wstring& subKey);
void DeleteKey(HKEY root, const std::wstring& subKey);

// Names in the order of comparison, each key before what is in it: "a", "a\b", "a\b:value".
std::vector<std::wstring> TreeOf(HKEY root, const std::wstring& subKey);

std::vector<std::wstring> Sorted(const CTable1D<CKORString>& names);

// Removes the library's keys before and after each test.
class RegistryTest : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;
};

inline const std::wstring Vantrel = L"Software\\Vantrel";
inline const std::wstring Library = Vantrel + L"\\Vantrel Imaging Library";
inline const std::wstring Runtime = Library + L"\\Runtime";

} // namespace test
