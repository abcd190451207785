// Counts and lists of names.
#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "tests/registry/RegistryTest.h"
#include "tests/support/GuardedMemory.h"
#include "tests/support/RegistryCalls.h"

namespace {

using test::MachineKey;
using test::TestSubKey;

using Names = std::vector<std::wstring>;

class Enumeration : public test::MachineKeyTest {
protected:
    CTable1D<CKORString> m_names;
};

TEST_F(Enumeration, ListsSubKeysAndValues) {
    Names expected;
    for (int i = 0; i < 37; ++i) {
        const std::wstring number = std::to_wstring(100 + i);
        test::MakeKey(HKEY_LOCAL_MACHINE, TestSubKey + (L"\\key" + number));
        Set(L"value" + number, test::Dword(1));
        expected.push_back(number);
    }
    CRegistryKey key(MachineKey);
    const auto listed = [&](const wchar_t* prefix) {
        Names names;
        for (const std::wstring& name : expected) {
            names.push_back(prefix + name);
        }
        return names;
    };
    EXPECT_TRUE(key.EnumSubKeyNames(m_names));
    EXPECT_EQ(test::Sorted(m_names), listed(L"key"));
    EXPECT_EQ(m_names.Capacity(), 37);
    EXPECT_TRUE(key.EnumValueNames(m_names));
    EXPECT_EQ(test::Sorted(m_names), listed(L"value"));
    EXPECT_EQ(m_names.Capacity(), 37);
    EXPECT_EQ(key.GetSubKeyCount(), 37U);
    EXPECT_EQ(key.GetValueCount(), 37U);
}

TEST_F(Enumeration, VisitsTheSameNamesUntilTheVisitorHasEnough) {
    for (const wchar_t* const name : {L"a", L"b", L"c"}) {
        test::MakeKey(HKEY_LOCAL_MACHINE, TestSubKey + (L"\\key" + std::wstring(name)));
        Set(name, test::Dword(1));
    }
    CRegistryKey key(MachineKey);
    Names visited;
    const auto visitAll = [&](const wchar_t* name) {
        visited.emplace_back(name);
        return true;
    };
    EXPECT_TRUE(key.VisitSubKeyNames(visitAll));
    EXPECT_TRUE(key.VisitValueNames(visitAll));
    std::sort(visited.begin(), visited.end());
    EXPECT_EQ(visited, (Names{L"a", L"b", L"c", L"keya", L"keyb", L"keyc"}));

    int visits = 0;
    const auto enough = [&](const wchar_t* /*name*/) { return ++visits != 2; };
    EXPECT_TRUE(key.VisitValueNames(enough));
    EXPECT_EQ(visits, 2);

    test::RegistryCalls calls;
    calls.FailCall(1);
    EXPECT_FALSE(key.VisitValueNames(visitAll));
    EXPECT_EQ(visited.size(), 6U);
    key.Close();
    EXPECT_FALSE(key.VisitSubKeyNames(visitAll));
    EXPECT_EQ(visited.size(), 6U);
}

// Copying a visitor that holds more than a pointer or two takes memory.
TEST_F(Enumeration, VisitorsAreNotCopied) {
    test::MakeKey(HKEY_LOCAL_MACHINE, L"Software\\KORTests\\sub");
    Set(L"value", test::Dword(1));
    const CRegistryKey key(MachineKey);
    int visits = 0;
    const std::array<int, 16> steps = {1};
    const CRegistryKey::NameVisitor visit = [&visits, steps](const wchar_t* /*name*/) {
        visits += steps[0];
        return true;
    };
    const test::AllocationFailure failure(1);
    EXPECT_TRUE(key.VisitValueNames(visit));
    EXPECT_TRUE(key.VisitSubKeyNames(visit));
    EXPECT_FALSE(failure.Happened());
    EXPECT_EQ(visits, 2);
}

TEST_F(Enumeration, AnEmptyVisitorIsRefused) {
    const CRegistryKey::NameVisitor nobody;
    const CRegistryKey key(MachineKey);
    EXPECT_FALSE(key.VisitValueNames(nobody));
    EXPECT_FALSE(key.VisitSubKeyNames(nobody));
    test::MakeKey(HKEY_LOCAL_MACHINE, L"Software\\KORTests\\sub");
    Set(L"value", test::Dword(1));
    EXPECT_FALSE(key.VisitValueNames(nobody));
    EXPECT_FALSE(key.VisitSubKeyNames(nobody));
}

TEST_F(Enumeration, AnEmptyKeyEmptiesTheList) {
    CRegistryKey key(MachineKey);
    m_names.Add(L"left from before");
    EXPECT_TRUE(key.EnumSubKeyNames(m_names));
    EXPECT_EQ(m_names.Count(), 0);
    m_names.Add(L"left from before");
    EXPECT_TRUE(key.EnumValueNames(m_names));
    EXPECT_EQ(m_names.Count(), 0);
    EXPECT_EQ(key.GetSubKeyCount(), 0U);
    EXPECT_EQ(key.GetValueCount(), 0U);
}

TEST_F(Enumeration, AClosedKeyEmptiesTheListToo) {
    const CRegistryKey key;
    m_names.Add(L"left from before");
    EXPECT_FALSE(key.EnumSubKeyNames(m_names));
    EXPECT_EQ(m_names.Count(), 0);
    m_names.Add(L"left from before");
    EXPECT_FALSE(key.EnumValueNames(m_names));
    EXPECT_EQ(m_names.Count(), 0);
    EXPECT_EQ(key.GetSubKeyCount(), 0U);
    EXPECT_EQ(key.GetValueCount(), 0U);
    EXPECT_FALSE(key.SubKeyExists(L"Software"));
}

TEST_F(Enumeration, FetchesNamesOnly) {
    test::MakeKey(HKEY_LOCAL_MACHINE, L"Software\\KORTests\\a");
    Set(L"b", test::Dword(1));
    test::RegistryCalls calls;
    CRegistryKey key(MachineKey);
    calls.Clear();
    EXPECT_TRUE(key.EnumSubKeyNames(m_names));
    EXPECT_TRUE(key.EnumValueNames(m_names));
    EXPECT_EQ(calls.Calls(), (std::vector<std::string>{
                                 "RegEnumKeyExW(k1, 0, 1024, -, -)",
                                 "RegEnumKeyExW(k1, 1, 1024, -, -)",
                                 "RegEnumValueW(k1, 0, 1024, -, -)",
                                 "RegEnumValueW(k1, 1, 1024, -, -)",
                             }));
}

TEST_F(Enumeration, AFailureKeepsTheNamesFoundBefore) {
    for (const wchar_t* name : {L"a", L"b", L"c"}) {
        test::MakeKey(HKEY_LOCAL_MACHINE, TestSubKey + (L"\\" + std::wstring(name)));
        Set(name, test::Dword(1));
    }
    CRegistryKey key(MachineKey);
    test::RegistryCalls calls;
    calls.FailCall(3);
    EXPECT_FALSE(key.EnumSubKeyNames(m_names));
    EXPECT_EQ(m_names.Count(), 2);
    calls.FailCall(2);
    EXPECT_FALSE(key.EnumValueNames(m_names));
    EXPECT_EQ(m_names.Count(), 1);
    calls.FailCall(1);
    EXPECT_FALSE(key.EnumValueNames(m_names));
    EXPECT_EQ(m_names.Count(), 0);
    calls.FailCall(1);
    EXPECT_EQ(key.GetSubKeyCount(), 0U);
    calls.FailCall(1);
    EXPECT_EQ(key.GetValueCount(), 0U);
}

// A name that does not fit adds what the buffer holds, here a part of the name without its end.
TEST_F(Enumeration, NamesThatDoNotFitAreKeptAsTheyLieInTheBuffer) {
    CRegistryKey key(MachineKey);
    int calls = 0;
    HOOK_IMPORT(enumKey, RegEnumKeyExW,
                [&](HKEY, DWORD, LPWSTR name, LPDWORD length, auto...) -> LSTATUS {
                    EXPECT_EQ(*length, 1024U);
                    *length = 7;
                    if (calls++ == 0) {
                        std::fill_n(name, 1024, L'x');
                        return ERROR_MORE_DATA;
                    }
                    return calls == 2 ? LSTATUS{ERROR_MORE_DATA} : LSTATUS{ERROR_NO_MORE_ITEMS};
                });
    EXPECT_TRUE(key.EnumSubKeyNames(m_names));
    ASSERT_EQ(m_names.Count(), 2);
    EXPECT_EQ(m_names[0].Text(), std::wstring(1024, L'x'));
    EXPECT_EQ(m_names[1], m_names[0].Text());
}

TEST_F(Enumeration, ALongValueNameDoesNotEndTheWalk) {
    Set(std::wstring(2000, L'n'), test::Dword(1));
    Set(L"a", test::Dword(1));
    Set(L"z", test::Dword(1));
    CRegistryKey key(MachineKey);
    EXPECT_TRUE(key.EnumValueNames(m_names));
    EXPECT_EQ(m_names.Count(), 3);
}

TEST_F(Enumeration, SubKeysExistWhenTheyCanBeOpened) {
    test::MakeKey(HKEY_LOCAL_MACHINE, L"Software\\KORTests\\a\\b");
    test::BalancedCalls calls;
    CRegistryKey key(MachineKey);
    calls.Clear();
    EXPECT_TRUE(key.SubKeyExists(L"a"));
    EXPECT_EQ(calls.Calls(),
              (std::vector<std::string>{"RegOpenKeyExW(k1, a, 0, 20019)", "RegCloseKey(k2)"}));
    EXPECT_TRUE(key.SubKeyExists(L"a\\b"));
    EXPECT_FALSE(key.SubKeyExists(L"c"));
    calls.FailCall(1);
    EXPECT_FALSE(key.SubKeyExists(L"a"));
}

} // namespace
