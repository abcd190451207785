// A tree of the current user's, and a key object at its top.
#pragma once

#include <string>
#include <vector>

#include "tests/registry/RawRegistry.h"

namespace test {

class TreeTest : public RegistryTest {
protected:
    void SetUp() override {
        RegistryTest::SetUp();
        MakeKey(HKEY_CURRENT_USER, TestSubKey);
        ASSERT_TRUE(m_key.Open(UserKey, false));
    }

    static void Set(const std::wstring& path, const std::wstring& name) {
        SetRaw(HKEY_CURRENT_USER, TestSubKey + (L"\\" + path), name, Dword(1));
    }
    static void Make(const std::wstring& path) {
        MakeKey(HKEY_CURRENT_USER, TestSubKey + (L"\\" + path));
    }
    static std::vector<std::wstring> Below() { return TreeOf(HKEY_CURRENT_USER, TestSubKey); }

    void ExpectAtStart() {
        EXPECT_TRUE(m_key.IsOpen());
        EXPECT_EQ(m_key.GetFullName(), UserKey);
        EXPECT_TRUE(m_key.EnumSubKeyNames(m_names));
    }

    CRegistryKey m_key;
    CTable1D<CKORString> m_names;
};

} // namespace test
