// The registry as the system's own calls see it, to prepare tests and to check what was written.
#pragma once

#include <windows.h>

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace test {

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

} // namespace test
