// The stamp with the first value's name, which is due from the stamping until a value is written:
// what it survives, what drops it, and what refused calls make of it.
#include <climits>
#include <utility>

#include "tests/registry/RegistryTest.h"
#include "tests/support/GuardedMemory.h"
#include "tests/support/RegistryCalls.h"

namespace {

using test::Library;
using test::Runtime;
using Names = std::vector<std::wstring>;

const std::wstring VolatileKey = Runtime + L"\\volatile";

class DueStamp : public test::WritableTest {
protected:
    static std::optional<test::RawValue> Stamp(HKEY hive, const std::wstring& volatileKey) {
        return test::GetRaw(hive, volatileKey, L"ValueCreator");
    }
};

// Refuses the openings of a key, by the path that the system is given, the first n of them.
class RefusedOpening {
public:
    static constexpr REGSAM AnyAccess = 0;

    RefusedOpening(const std::wstring& subKey, REGSAM access, int n = INT_MAX)
        : m_subKey(subKey), m_access(access), m_left(n) {}

    int Refused() const { return m_refused; }

private:
    bool IsMeant(const wchar_t* subKey, REGSAM access) const {
        return m_subKey == subKey && (m_access == AnyAccess || m_access == access);
    }

    std::wstring m_subKey;
    REGSAM m_access;
    int m_left;
    int m_refused = 0;
    test::ImportHook<struct RefusedOpeningTag, decltype(&RegOpenKeyExW)> m_open{
        "RegOpenKeyExW",
        [this](HKEY root, LPCWSTR subKey, DWORD options, REGSAM access, auto... rest) -> LSTATUS {
            if (m_refused < m_left && IsMeant(subKey, access)) {
                ++m_refused;
                return ERROR_ACCESS_DENIED;
            }
            return m_open.Original(root, subKey, options, access, rest...);
        }};
};

TEST_F(DueStamp, ItIsWrittenAfterTheValue) {
    CRegistryKey key;
    ASSERT_TRUE(key.OpenLocalMachineRuntime(L"volatile", true));
    test::RegistryCalls calls;
    EXPECT_TRUE(key.WriteDword(L"v", 1U));
    std::vector<std::string> functions;
    for (const std::string& call : calls.Calls()) {
        functions.push_back(call.substr(0, call.find('(')));
    }
    EXPECT_EQ(functions, (std::vector<std::string>{"RegCloseKey", "RegOpenKeyExW", "RegSetValueExW",
                                                   "RegCloseKey", "RegOpenKeyExW", "RegCloseKey",
                                                   "RegOpenKeyExW", "RegSetValueExW", "RegCloseKey",
                                                   "RegOpenKeyExW", "RegCloseKey"}));
    EXPECT_EQ(calls.Calls()[7].substr(calls.Calls()[7].find(',')), ", ValueCreator, 0, 1, 4)");
}

TEST_F(DueStamp, AnotherLocationOfTheRootKeepsIt) {
    CRegistryKey key;
    ASSERT_TRUE(key.OpenCurrentUserRuntime(L"volatile\\x", true));
    ASSERT_TRUE(key.OpenCurrentUserRuntime(L"volatile\\y", true));
    EXPECT_TRUE(key.WriteDword(L"first", 1U));
    EXPECT_TRUE(test::GetRaw(HKEY_CURRENT_USER, VolatileKey + L"\\y", L"first"));
    EXPECT_EQ(Stamp(HKEY_CURRENT_USER, VolatileKey), test::Text(REG_SZ, L"first"));
    EXPECT_EQ(test::GetRaw(HKEY_CURRENT_USER, VolatileKey, L"PathCreator"),
              test::Text(REG_SZ, L"volatile\\x"));
}

// The tools' folder shares the class, so a value there is the one that is waited for.
TEST_F(DueStamp, AnotherRootOfTheClassKeepsIt) {
    const std::wstring development = Library + L"\\Development\\volatile";
    const std::wstring tools = L"Software\\Wow6432Node\\Vantrel\\Vantrel Imaging Tools";
    test::MakeKey(HKEY_LOCAL_MACHINE, tools);
    test::MakeKey(HKEY_LOCAL_MACHINE, tools + L"\\volatile", true);
    CRegistryKey key;
    ASSERT_TRUE(key.OpenSymbolic(SymbolicRootId::LocalMachineDevelopment, L"volatile\\x", true));
    ASSERT_TRUE(key.OpenSymbolic(SymbolicRootId::CommonToolsFolder, L"volatile\\y", true));
    EXPECT_TRUE(key.WriteDword(L"first", 1U));
    EXPECT_EQ(Stamp(HKEY_LOCAL_MACHINE, development), test::Text(REG_SZ, L"first"));
    EXPECT_EQ(test::TreeOf(HKEY_LOCAL_MACHINE, tools + L"\\volatile"), (Names{L"y", L"y:first"}));
}

TEST_F(DueStamp, AnotherClassDropsIt) {
    const std::pair<SymbolicRootId, HKEY> roots[] = {
        {SymbolicRootId::LocalMachineRuntime, HKEY_LOCAL_MACHINE},
        {SymbolicRootId::CurrentUserRuntime, HKEY_CURRENT_USER},
    };
    for (const auto& [id, hive] : roots) {
        CRegistryKey key;
        ASSERT_TRUE(key.OpenSymbolic(id, L"volatile\\x", true));
        ASSERT_TRUE(key.Open(L"HKEY_CURRENT_USER\\Software\\KORTests", true));
        EXPECT_TRUE(key.WriteDword(L"elsewhere", 1U));
        ASSERT_TRUE(key.OpenSymbolic(id, L"volatile\\x", false));
        EXPECT_TRUE(key.WriteDword(L"late", 1U));
        EXPECT_FALSE(Stamp(hive, VolatileKey));
    }
}

// Also a location of another class; the companion stays, and can still receive stamps.
TEST_F(DueStamp, AnotherVolatileClassDropsItToo) {
    const std::wstring development = Library + L"\\Development\\volatile";
    CRegistryKey key;
    ASSERT_TRUE(key.OpenCurrentUserRuntime(L"volatile\\x", true));
    test::MakeKey(HKEY_CURRENT_USER, Library + L"\\Development");
    test::MakeKey(HKEY_CURRENT_USER, development, true);
    ASSERT_TRUE(key.OpenSymbolic(SymbolicRootId::CurrentUserDevelopment, L"volatile\\y", true));
    EXPECT_TRUE(key.WriteDword(L"elsewhere", 1U));
    EXPECT_FALSE(Stamp(HKEY_CURRENT_USER, VolatileKey));
    EXPECT_FALSE(Stamp(HKEY_CURRENT_USER, development));

    test::MakeKey(HKEY_LOCAL_MACHINE, Runtime);
    EXPECT_FALSE(key.OpenLocalMachineRuntime(L"volatile\\z", false));
    EXPECT_EQ(test::GetRaw(HKEY_CURRENT_USER, VolatileKey, L"PathCreator"),
              test::Text(REG_SZ, L"volatile\\z"));
}

// The user's imaging board has no class: its stamping takes the place of the one before, and no
// value is waited for any more.
TEST_F(DueStamp, TheImagingBoardOfTheUserDropsIt) {
    const std::wstring board = test::Vantrel + L"\\Imaging Board\\volatile";
    CRegistryKey key;
    ASSERT_TRUE(key.OpenCurrentUserRuntime(L"volatile\\x", true));
    ASSERT_TRUE(key.OpenSymbolic(SymbolicRootId::CurrentUserImagingBoard, L"volatile\\y", true));
    EXPECT_TRUE(test::GetRaw(HKEY_LOCAL_MACHINE, board, L"PathCreator"));
    ASSERT_TRUE(key.OpenCurrentUserRuntime(L"volatile\\x", true));
    EXPECT_TRUE(key.WriteDword(L"late", 1U));
    EXPECT_FALSE(Stamp(HKEY_CURRENT_USER, VolatileKey));
    EXPECT_FALSE(Stamp(HKEY_LOCAL_MACHINE, board));
    EXPECT_FALSE(Stamp(HKEY_CURRENT_USER, board));
}

TEST_F(DueStamp, AFailedWriteLeavesItDue) {
    CRegistryKey key;
    ASSERT_TRUE(key.OpenCurrentUserRuntime(L"volatile", true));
    {
        HOOK_IMPORT(set, RegSetValueExW, test::Refused);
        EXPECT_FALSE(key.WriteDword(L"failed", 1U));
    }
    EXPECT_TRUE(key.WriteString(L"written", L"x"));
    EXPECT_EQ(Stamp(HKEY_CURRENT_USER, VolatileKey), test::Text(REG_SZ, L"written"));
}

// The value is written, but the write failed: it does not count as the first one.
TEST_F(DueStamp, AKeyThatCannotBeReadAgainLeavesItDue) {
    CRegistryKey key;
    ASSERT_TRUE(key.OpenCurrentUserRuntime(L"volatile\\x", true));
    {
        const RefusedOpening refused(VolatileKey + L"\\x", KEY_READ, 1);
        EXPECT_FALSE(key.WriteDword(L"first", 1U));
        EXPECT_EQ(refused.Refused(), 1);
    }
    EXPECT_FALSE(key.IsOpen());
    EXPECT_EQ(test::GetRaw(HKEY_CURRENT_USER, VolatileKey + L"\\x", L"first"), test::Dword(1));
    EXPECT_FALSE(Stamp(HKEY_CURRENT_USER, VolatileKey));
    EXPECT_TRUE(key.OpenResolved(false, false, true));
    EXPECT_TRUE(key.WriteDword(L"second", 2U));
    EXPECT_EQ(Stamp(HKEY_CURRENT_USER, VolatileKey), test::Text(REG_SZ, L"second"));
}

// The companion is closed when its key can be opened neither to write nor to read: it is there, but
// no stamps reach it, also not those of a later opening.
TEST_F(DueStamp, ACompanionThatCannotBeOpenedAgainStampsNothing) {
    CRegistryKey key;
    {
        const RefusedOpening refused(VolatileKey, RefusedOpening::AnyAccess);
        EXPECT_TRUE(key.OpenCurrentUserRuntime(L"volatile\\x", true));
        EXPECT_EQ(refused.Refused(), 2) << "to write and to read; closed, it is not tried again";
    }
    EXPECT_EQ(test::TreeOf(HKEY_CURRENT_USER, VolatileKey), Names{L"x"});
    EXPECT_TRUE(key.WriteDword(L"first", 1U));
    EXPECT_EQ(test::TreeOf(HKEY_CURRENT_USER, VolatileKey), (Names{L"x", L"x:first"}));

    test::MakeKey(HKEY_LOCAL_MACHINE, Runtime);
    test::RegistryCalls calls;
    EXPECT_FALSE(key.OpenLocalMachineRuntime(L"volatile\\y", false));
    EXPECT_FALSE(key.IsOpen());
    EXPECT_EQ(calls.CountOf("RegOpenKeyExW"), 2) << "the root and the key \"volatile\", no more";
    EXPECT_EQ(calls.CountOf("GetModuleFileNameW"), 0);
}

TEST_F(DueStamp, ACompanionThatIsClosedStays) {
    CRegistryKey key;
    {
        const RefusedOpening refused(VolatileKey, RefusedOpening::AnyAccess);
        ASSERT_TRUE(key.OpenCurrentUserRuntime(L"volatile\\x", true));
    }
    const CKORString name(L"first");
    const std::int64_t blocks = test::LiveBlocks();
    EXPECT_TRUE(key.WriteDword(name, 1U));
    EXPECT_EQ(test::LiveBlocks(), blocks);
}

TEST_F(DueStamp, ACompanionThatMayNotBeWrittenOnceStampsTheRest) {
    CRegistryKey key;
    {
        const RefusedOpening refused(VolatileKey, KEY_ALL_ACCESS, 1);
        EXPECT_TRUE(key.OpenCurrentUserRuntime(L"volatile\\x", true));
        EXPECT_EQ(refused.Refused(), 1);
    }
    EXPECT_EQ(test::TreeOf(HKEY_CURRENT_USER, VolatileKey),
              (Names{L":PathCreator", L":Process Name", L"x"}));
    EXPECT_TRUE(key.WriteDword(L"first", 1U));
    EXPECT_EQ(Stamp(HKEY_CURRENT_USER, VolatileKey), test::Text(REG_SZ, L"first"));
}

// Looked for with a plain opening, so it counts as missing.
TEST_F(DueStamp, AVolatileKeyThatCannotBeOpenedIsStampedAnew) {
    {
        CRegistryKey key;
        ASSERT_TRUE(key.OpenCurrentUserRuntime(L"volatile\\x", true));
        EXPECT_TRUE(key.WriteDword(L"first", 1U));
    }
    test::SetRaw(HKEY_CURRENT_USER, VolatileKey, L"Creation Time", test::Dword(12345));
    CRegistryKey key;
    {
        const RefusedOpening refused(L"volatile", KEY_READ);
        EXPECT_FALSE(key.OpenCurrentUserRuntime(L"volatile\\x", false));
        EXPECT_EQ(key.GetFullName(), L"");
        EXPECT_EQ(test::GetRaw(HKEY_CURRENT_USER, VolatileKey, L"Creation Time"),
                  test::Dword(12345));
        EXPECT_TRUE(key.OpenCurrentUserRuntime(L"volatile\\y", true));
        EXPECT_EQ(refused.Refused(), 2);
    }
    EXPECT_FALSE(test::GetRaw(HKEY_CURRENT_USER, VolatileKey, L"Creation Time") ==
                 test::Dword(12345));
    EXPECT_EQ(test::GetRaw(HKEY_CURRENT_USER, VolatileKey, L"PathCreator"),
              test::Text(REG_SZ, L"volatile\\y"));
    EXPECT_TRUE(key.WriteDword(L"second", 1U));
    EXPECT_EQ(Stamp(HKEY_CURRENT_USER, VolatileKey), test::Text(REG_SZ, L"second"));
    EXPECT_TRUE(key.OpenCurrentUserRuntime(L"volatile\\x", false)) << "no longer refused";
}

} // namespace
