// A tree of the current user's, a key object at its top, and a subkey that has no name.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "tests/registry/RegistryTest.h"
#include "tests/support/ImportHook.h"

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

// While it lives, each key has one subkey, whose name does not fit and is not given.
class NamelessSubKey {
public:
    // How many lists were begun.
    int Walks() const { return m_walks; }

private:
    // A walk that follows the empty name comes by again and again; it ends here and is seen.
    static constexpr int MostWalks = 100;

    int m_walks = 0;
    ImportHook<struct NamelessTag, decltype(&RegEnumKeyExW)> m_enumKey{
        "RegEnumKeyExW", [this](HKEY, DWORD index, auto...) -> LSTATUS {
            m_walks += index == 0 ? 1 : 0;
            return index == 0 && m_walks <= MostWalks ? ERROR_MORE_DATA : ERROR_NO_MORE_ITEMS;
        }};
};

} // namespace test
