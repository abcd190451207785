// The registry by the system's calls alone.
#include "tests/support/RawRegistry.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>

namespace test {

namespace {

HKEY OpenRaw(HKEY root, const std::wstring& subKey, REGSAM access) {
    HKEY key = nullptr;
    return RegOpenKeyExW(root, subKey.c_str(), 0, access, &key) == ERROR_SUCCESS ? key : nullptr;
}

void CollectTree(HKEY key, const std::wstring& prefix, std::vector<std::wstring>& tree) {
    std::vector<wchar_t> name(16400);
    for (DWORD i = 0;; ++i) {
        auto length = static_cast<DWORD>(name.size());
        if (RegEnumValueW(key, i, name.data(), &length, nullptr, nullptr, nullptr, nullptr) !=
            ERROR_SUCCESS) {
            break;
        }
        tree.push_back(prefix + L":" + name.data());
    }
    for (DWORD i = 0;; ++i) {
        auto length = static_cast<DWORD>(name.size());
        if (RegEnumKeyExW(key, i, name.data(), &length, nullptr, nullptr, nullptr, nullptr) !=
            ERROR_SUCCESS) {
            break;
        }
        const std::wstring path = prefix.empty() ? name.data() : prefix + L"\\" + name.data();
        tree.push_back(path);
        if (const HKEY child = OpenRaw(key, name.data(), KEY_READ)) {
            CollectTree(child, path, tree);
            RegCloseKey(child);
        }
    }
}

} // namespace

void PrintTo(const RawValue& value, std::ostream* out) {
    *out << "type " << value.type << " " << testing::PrintToString(value.data);
}

std::vector<BYTE> Bytes(const std::wstring& text, bool terminated) {
    const auto* const start = reinterpret_cast<const BYTE*>(text.c_str());
    return {start, start + (text.size() + (terminated ? 1 : 0)) * sizeof(wchar_t)};
}

RawValue Text(DWORD type, const std::wstring& text) {
    return {type, Bytes(text)};
}

RawValue Dword(std::uint32_t value) {
    const auto* const start = reinterpret_cast<const BYTE*>(&value);
    return {REG_DWORD, {start, start + sizeof value}};
}

RawValue Qword(std::uint64_t value) {
    const auto* const start = reinterpret_cast<const BYTE*>(&value);
    return {REG_QWORD, {start, start + sizeof value}};
}

void MakeKey(HKEY root, const std::wstring& subKey, bool isVolatile) {
    HKEY key = nullptr;
    ASSERT_EQ(ERROR_SUCCESS,
              RegCreateKeyExW(root, subKey.c_str(), 0, nullptr,
                              isVolatile ? REG_OPTION_VOLATILE : REG_OPTION_NON_VOLATILE,
                              KEY_ALL_ACCESS, nullptr, &key, nullptr));
    RegCloseKey(key);
}

void SetRaw(HKEY root, const std::wstring& subKey, const std::wstring& name,
            const RawValue& value) {
    HKEY key = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExW(root, subKey.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS,
                                             nullptr, &key, nullptr));
    // The system looks for a terminator behind a string that has none.
    std::vector<BYTE> data(value.data);
    data.resize(data.size() + 2 * sizeof(wchar_t), 0xff);
    EXPECT_EQ(ERROR_SUCCESS, RegSetValueExW(key, name.c_str(), 0, value.type, data.data(),
                                            static_cast<DWORD>(value.data.size())));
    RegCloseKey(key);
}

std::optional<RawValue> GetRaw(HKEY root, const std::wstring& subKey, const std::wstring& name) {
    const HKEY key = OpenRaw(root, subKey, KEY_READ);
    if (key == nullptr) {
        return std::nullopt;
    }
    DWORD size = 0;
    RawValue value{};
    LSTATUS result = RegQueryValueExW(key, name.c_str(), nullptr, nullptr, nullptr, &size);
    if (result == ERROR_SUCCESS) {
        // Wine ends a string of one byte behind a buffer of one byte.
        value.data.resize(size + 2 * sizeof(wchar_t));
        result =
            RegQueryValueExW(key, name.c_str(), nullptr, &value.type, value.data.data(), &size);
        value.data.resize(size);
    }
    RegCloseKey(key);
    return result == ERROR_SUCCESS ? std::optional<RawValue>(value) : std::nullopt;
}

bool KeyExists(HKEY root, const std::wstring& subKey) {
    const HKEY key = OpenRaw(root, subKey, KEY_READ);
    if (key != nullptr) {
        RegCloseKey(key);
    }
    return key != nullptr;
}

bool IsVolatileKey(HKEY root, const std::wstring& subKey) {
    const HKEY key = OpenRaw(root, subKey, KEY_ALL_ACCESS);
    EXPECT_NE(nullptr, key);
    HKEY child = nullptr;
    const LSTATUS result = RegCreateKeyExW(key, L"KORVolatileProbe", 0, nullptr, 0, KEY_ALL_ACCESS,
                                           nullptr, &child, nullptr);
    if (result == ERROR_SUCCESS) {
        RegCloseKey(child);
        RegDeleteKeyW(key, L"KORVolatileProbe");
    }
    RegCloseKey(key);
    return result == ERROR_CHILD_MUST_BE_VOLATILE;
}

void DeleteKey(HKEY root, const std::wstring& subKey) {
    RegDeleteTreeW(root, subKey.c_str());
}

std::vector<std::wstring> TreeOf(HKEY root, const std::wstring& subKey) {
    std::vector<std::wstring> tree;
    if (const HKEY key = OpenRaw(root, subKey, KEY_READ)) {
        CollectTree(key, L"", tree);
        RegCloseKey(key);
    }
    std::sort(tree.begin(), tree.end());
    return tree;
}

} // namespace test
