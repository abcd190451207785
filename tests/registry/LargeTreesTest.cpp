// Trees that are large, and trees that are deep.
#include "tests/registry/RegistryTest.h"
#include "tests/support/GuardedMemory.h"

namespace {

constexpr wchar_t Source[] = L"HKEY_CURRENT_USER\\Software\\KORTests\\source";
constexpr wchar_t Copy[] = L"HKEY_CURRENT_USER\\Software\\KORTests\\copy";

class LargeTrees : public test::RegistryTest {
    const test::PlainMemory m_plain;
};

void MakeBelow(HKEY parent, const std::wstring& name, int children, int levels) {
    HKEY key = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExW(parent, name.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS,
                                             nullptr, &key, nullptr));
    for (const wchar_t* value : {L"a", L"b", L"c"}) {
        const test::RawValue text = test::Text(REG_SZ, name + value);
        RegSetValueExW(key, value, 0, text.type, text.data.data(),
                       static_cast<DWORD>(text.data.size()));
    }
    for (int i = 0; levels > 0 && i < children; ++i) {
        MakeBelow(key, L"k" + std::to_wstring(i), children, levels - 1);
    }
    RegCloseKey(key);
}

std::vector<std::wstring> Names(HKEY key, decltype(&RegEnumValueW) enumerate) {
    std::vector<std::wstring> names;
    wchar_t name[300];
    DWORD length = 300;
    while (enumerate(key, static_cast<DWORD>(names.size()), name, &length, nullptr, nullptr,
                     nullptr, nullptr) == ERROR_SUCCESS) {
        names.emplace_back(name);
        length = 300;
    }
    return names;
}

// RegEnumKeyExW in the form of RegEnumValueW.
LSTATUS WINAPI EnumKey(HKEY key, DWORD index, LPWSTR name, LPDWORD length, LPDWORD, LPDWORD, LPBYTE,
                       LPDWORD) {
    return RegEnumKeyExW(key, index, name, length, nullptr, nullptr, nullptr, nullptr);
}

// The number of keys in two equal trees; 0 when they differ.
int CountEqualKeys(const std::wstring& left, const std::wstring& right) {
    HKEY leftKey = nullptr;
    HKEY rightKey = nullptr;
    RegOpenKeyExW(HKEY_CURRENT_USER, left.c_str(), 0, KEY_READ, &leftKey);
    RegOpenKeyExW(HKEY_CURRENT_USER, right.c_str(), 0, KEY_READ, &rightKey);
    const auto values = Names(leftKey, RegEnumValueW);
    const auto subKeys = Names(leftKey, EnumKey);
    bool areEqual = leftKey != nullptr && rightKey != nullptr &&
                    Names(rightKey, RegEnumValueW) == values && Names(rightKey, EnumKey) == subKeys;
    for (const std::wstring& value : values) {
        areEqual =
            areEqual && test::GetRaw(leftKey, L"", value) == test::GetRaw(rightKey, L"", value);
    }
    RegCloseKey(leftKey);
    RegCloseKey(rightKey);
    int count = 1;
    for (const std::wstring& subKey : subKeys) {
        const std::wstring name = L'\\' + subKey;
        const int below = areEqual ? CountEqualKeys(left + name, right + name) : 0;
        areEqual = below > 0;
        count += below;
    }
    return areEqual ? count : 0;
}

TEST_F(LargeTrees, TenThousandKeysAreCopiedAndDeleted) {
    HKEY parent = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExW(HKEY_CURRENT_USER, L"Software\\KORTests", 0, nullptr,
                                             0, KEY_ALL_ACCESS, nullptr, &parent, nullptr));
    MakeBelow(parent, L"source", 10, 4); // 11,111 keys
    RegCloseKey(parent);
    CRegistryKey key(Source);
    EXPECT_TRUE(key.CopyTree(Copy, Copy));
    EXPECT_EQ(key.GetFullName(), Source);
    EXPECT_EQ(CountEqualKeys(L"Software\\KORTests\\source", L"Software\\KORTests\\copy"), 11111);
    EXPECT_EQ(test::GetRaw(HKEY_CURRENT_USER, L"Software\\KORTests\\copy\\k9\\k8\\k7\\k6", L"c"),
              test::Text(REG_SZ, L"k6c"));

    ASSERT_TRUE(key.Open(L"HKEY_CURRENT_USER\\Software\\KORTests", false));
    EXPECT_TRUE(key.DeleteSubKey(L"source"));
    EXPECT_TRUE(key.DeleteTree(L"copy"));
    EXPECT_EQ(test::TreeOf(HKEY_CURRENT_USER, L"Software\\KORTests"),
              std::vector<std::wstring>{L"copy"});
}

// Windows nests keys up to 512 levels; Wine goes on until a path is too long for one call.
TEST_F(LargeTrees, DeepTreesAreCopiedAndDeleted) {
    std::wstring path = L"Software\\KORTests\\source";
    std::wstring bottom;
    int depth = 0;
    for (; depth < 1000; ++depth) {
        const std::wstring deeper = path + bottom + L"\\d";
        HKEY key = nullptr;
        if (RegCreateKeyExW(HKEY_CURRENT_USER, deeper.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS,
                            nullptr, &key, nullptr) != ERROR_SUCCESS) {
            break;
        }
        RegCloseKey(key);
        bottom += L"\\d";
    }
    std::printf("%d levels\n", depth);
    ASSERT_GE(depth, 500);
    test::SetRaw(HKEY_CURRENT_USER, path + bottom, L"v", test::Dword(7));

    CRegistryKey key(Source);
    ASSERT_TRUE(key.IsOpen());
    EXPECT_TRUE(key.CopyTree(Copy, Copy));
    EXPECT_EQ(key.GetFullName(), Source);
    EXPECT_EQ(test::GetRaw(HKEY_CURRENT_USER, L"Software\\KORTests\\copy" + bottom, L"v"),
              test::Dword(7));
    ASSERT_TRUE(key.Open(L"HKEY_CURRENT_USER\\Software\\KORTests", false));
    EXPECT_TRUE(key.DeleteSubKey(L"source"));
    EXPECT_TRUE(key.DeleteSubKey(L"copy"));
    EXPECT_EQ(key.GetSubKeyCount(), 0U);
}

} // namespace
