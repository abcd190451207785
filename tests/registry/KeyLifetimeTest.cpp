// Opening, reopening and closing: the calls in their order, and what is left after each failure.
#include "tests/registry/RegistryTest.h"
#include "tests/support/RegistryCalls.h"

namespace {

using test::MachineKey;
using test::TestSubKey;
using test::UserKey;

using Lines = std::vector<std::string>;

class KeyLifetime : public test::RegistryTest {
protected:
    void SetUp() override {
        RegistryTest::SetUp();
        test::SetRaw(HKEY_CURRENT_USER, TestSubKey, L"number", test::Dword(5));
        test::SetRaw(HKEY_LOCAL_MACHINE, TestSubKey, L"number", test::Dword(6));
    }
};

bool IsReadable(CRegistryKey& key) {
    std::uint32_t value = 0;
    return key.ReadDword(L"number", value) && value != 0;
}

TEST_F(KeyLifetime, ANewKeyIsClosed) {
    test::RegistryCalls calls;
    {
        CRegistryKey key;
        EXPECT_FALSE(key.IsOpen());
        EXPECT_FALSE(key.CloseIfOpen());
        EXPECT_FALSE(key.FlushCreated());
        EXPECT_FALSE(key.ValueExists(L"number"));
    }
    EXPECT_TRUE(calls.Calls().empty());
    CRegistryKey key;
    EXPECT_FALSE(key.Close());
    EXPECT_FALSE(key.Close(true));
    EXPECT_FALSE(key.Flush());
    EXPECT_FALSE(key.ReopenForWrite(false));
    EXPECT_FALSE(key.ReopenForWrite(true));
    EXPECT_FALSE(key.OpenResolved(false, false, false));
    EXPECT_FALSE(key.OpenResolved(true, false, true));
}

TEST_F(KeyLifetime, ANewKeyIsNotVolatile) {
    test::RegistryCalls calls;
    CRegistryKey key;
    EXPECT_FALSE(key.OpenResolved(true, false, true));
    EXPECT_EQ(calls.Calls(), Lines{"RegCreateKeyExW(null, , 0, -, 0, 20019, -, disposition)"});
}

TEST_F(KeyLifetime, OpeningForTheCurrentUserTakesThePerUserRoot) {
    test::BalancedCalls calls;
    {
        const CRegistryKey key(UserKey);
        EXPECT_TRUE(key.IsOpen());
        EXPECT_EQ(key.GetFullName(), UserKey);
    }
    EXPECT_EQ(calls.Calls(),
              (Lines{"RegOpenCurrentUser(f003f)", "RegOpenKeyExW(k1, Software\\KORTests, 0, 20019)",
                     "RegCloseKey(k2)", "RegCloseKey(k1)"}));
}

TEST_F(KeyLifetime, WithoutThePerUserRootThePredefinedOneServes) {
    test::BalancedCalls calls;
    calls.FailCall(1);
    {
        CRegistryKey key(UserKey);
        EXPECT_TRUE(key.IsOpen());
        EXPECT_EQ(key.GetFullName(), UserKey);
        EXPECT_TRUE(IsReadable(key));
    }
    EXPECT_EQ(calls.Calls()[1], "RegOpenKeyExW(HKCU, Software\\KORTests, 0, 20019)");
    EXPECT_EQ(calls.Calls().back(), "RegCloseKey(k1)");
}

TEST_F(KeyLifetime, ARootThatIsNoHandleIsNotTaken) {
    HOOK_IMPORT(openUser, RegOpenCurrentUser, [](REGSAM, PHKEY root) -> LSTATUS {
        *root = nullptr;
        return ERROR_SUCCESS;
    });
    CRegistryKey key(UserKey);
    EXPECT_TRUE(IsReadable(key));
}

TEST_F(KeyLifetime, CreatingAsksForReadAccessAndFlushesAtTheEnd) {
    test::BalancedCalls calls;
    {
        const CRegistryKey key(L"HKEY_CURRENT_USER\\Software\\KORTests\\new\\\\", true);
        EXPECT_TRUE(key.IsOpen());
    }
    EXPECT_EQ(calls.Calls(),
              (Lines{"RegOpenCurrentUser(f003f)",
                     "RegCreateKeyExW(k1, Software\\KORTests\\new, 0, -, 0, 20019, -, disposition)",
                     "RegFlushKey(k2)", "RegCloseKey(k2)", "RegCloseKey(k1)"}));
    EXPECT_FALSE(test::IsVolatileKey(HKEY_CURRENT_USER, L"Software\\KORTests\\new"));
}

TEST_F(KeyLifetime, FlushCreatedFlushesOnce) {
    CRegistryKey key(UserKey, true);
    test::RegistryCalls calls;
    EXPECT_TRUE(key.FlushCreated());
    EXPECT_TRUE(key.Flush());
    EXPECT_EQ(calls.CountOf("RegFlushKey"), 2);
    calls.Clear();
    key.Close();
    EXPECT_EQ(calls.Calls(), (Lines{"RegCloseKey(?)", "RegCloseKey(?)"})) << "Close never flushes";
}

TEST_F(KeyLifetime, AfterFlushCreatedTheEndFlushesNoMore) {
    for (const bool isRefused : {false, true}) {
        test::RegistryCalls calls;
        {
            CRegistryKey key(UserKey, true);
            calls.FailCall(isRefused ? 1 : 0);
            EXPECT_EQ(key.FlushCreated(), !isRefused);
            EXPECT_EQ(calls.FailedCall(), isRefused ? "RegFlushKey(k2)" : "");
            calls.Clear();
        }
        EXPECT_EQ(calls.Calls(), (Lines{"RegCloseKey(k2)", "RegCloseKey(k1)"})) << isRefused;
    }
}

TEST_F(KeyLifetime, ARefusedCreationMakesNoFlushDue) {
    test::BalancedCalls calls;
    {
        CRegistryKey key(UserKey);
        EXPECT_TRUE(key.Close(true));
        calls.FailCall(1);
        EXPECT_FALSE(key.OpenResolved(true, false, true));
        EXPECT_EQ(calls.FailedCall().find("RegCreateKeyExW("), 0U) << calls.FailedCall();
        EXPECT_TRUE(key.OpenResolved(false, false, true));
        EXPECT_TRUE(key.IsOpen());
    }
    EXPECT_EQ(calls.CountOf("RegFlushKey"), 0);
}

TEST_F(KeyLifetime, ClosingForgetsThatTheKeyWasCreated) {
    test::RegistryCalls calls;
    {
        CRegistryKey key(UserKey, true);
        EXPECT_TRUE(key.CloseIfOpen());
        EXPECT_EQ(key.GetFullName(), L"");
    }
    EXPECT_EQ(calls.CountOf("RegFlushKey"), 0);
}

TEST_F(KeyLifetime, AFailedOpeningGivesThePerUserRootBack) {
    test::BalancedCalls calls;
    {
        const CRegistryKey key(L"HKEY_CURRENT_USER\\Software\\KORTests\\missing");
        EXPECT_TRUE(test::IsReset(key));
        EXPECT_EQ(calls.Calls(), (Lines{"RegOpenCurrentUser(f003f)",
                                        "RegOpenKeyExW(k1, Software\\KORTests\\missing, 0, 20019)",
                                        "RegCloseKey(k1)"}));
    }
    EXPECT_EQ(calls.Calls().size(), 3U);
}

TEST_F(KeyLifetime, WhatAFailedOpeningLeavesBehindIsNoHandle) {
    HOOK_IMPORT(open, RegOpenKeyExW, [](HKEY, LPCWSTR, DWORD, REGSAM, PHKEY result) -> LSTATUS {
        *result = reinterpret_cast<HKEY>(0x5000);
        return ERROR_ACCESS_DENIED;
    });
    const CRegistryKey key(MachineKey);
    EXPECT_FALSE(key.IsOpen());
}

TEST_F(KeyLifetime, ResolvedOpeningRefusesAnOpenKey) {
    CRegistryKey key(MachineKey);
    test::RegistryCalls calls;
    EXPECT_FALSE(key.OpenResolved(false, true, false));
    EXPECT_TRUE(calls.Calls().empty());
    EXPECT_TRUE(IsReadable(key));
}

TEST_F(KeyLifetime, HandleOnlyCloseKeepsTheKeyForReopening) {
    test::BalancedCalls calls;
    CRegistryKey key(UserKey);
    calls.Clear();
    EXPECT_TRUE(key.Close(true));
    EXPECT_TRUE(key.IsOpen()) << "the closed handle stays in the object";
    EXPECT_EQ(key.GetFullName(), UserKey);
    EXPECT_TRUE(key.OpenResolved(false, true, true));
    EXPECT_EQ(calls.Calls(),
              (Lines{"RegCloseKey(k2)", "RegOpenKeyExW(k1, Software\\KORTests, 0, f003f)"}));
    EXPECT_TRUE(IsReadable(key));
}

TEST_F(KeyLifetime, KeptResolutionSurvivesAFailure) {
    CRegistryKey key(MachineKey);
    EXPECT_TRUE(key.Close(true));
    test::RegistryCalls calls;
    calls.FailCall(1);
    EXPECT_FALSE(key.OpenResolved(false, false, true));
    EXPECT_FALSE(key.IsOpen());
    EXPECT_EQ(key.GetFullName(), MachineKey);
    EXPECT_TRUE(key.OpenResolved(false, false, false));
    EXPECT_EQ(calls.Calls().size(), 2U);
}

TEST_F(KeyLifetime, ARefusedCreationLeavesTheFlushDue) {
    test::BalancedCalls calls;
    {
        CRegistryKey key(UserKey);
        EXPECT_TRUE(key.CreateSubKey(L"sub"));
        EXPECT_TRUE(key.Close(true));
        calls.FailCall(1);
        EXPECT_FALSE(key.OpenResolved(true, false, true));
        EXPECT_EQ(calls.FailedCall().find("RegCreateKeyExW("), 0U) << calls.FailedCall();
        EXPECT_TRUE(key.OpenResolved(false, false, true));
        EXPECT_TRUE(IsReadable(key));
        calls.Clear();
    }
    EXPECT_EQ(calls.CountOf("RegFlushKey"), 1);
}

TEST_F(KeyLifetime, ResetForgetsWithoutClosing) {
    CRegistryKey key(MachineKey);
    test::RegistryCalls calls;
    EXPECT_TRUE(key.Close(true));
    key.Reset();
    EXPECT_TRUE(test::IsReset(key));
    EXPECT_EQ(calls.Calls(), Lines{"RegCloseKey(?)"});
}

TEST_F(KeyLifetime, ARefusedCloseStillClosesTheRoot) {
    test::BalancedCalls calls;
    {
        CRegistryKey key(UserKey);
        calls.Clear();
        calls.FailCall(1);
        EXPECT_FALSE(key.Close());
        EXPECT_EQ(calls.Calls(), (Lines{"RegCloseKey(k2)", "RegCloseKey(k1)"}));
        EXPECT_FALSE(key.IsOpen());
    }
    CRegistryKey key(UserKey);
    calls.FailCall(2);
    EXPECT_FALSE(key.Close()) << "the root's close counts too";
    EXPECT_FALSE(key.IsOpen());
}

TEST_F(KeyLifetime, ReopeningForWritingAsksForFullAccess) {
    test::BalancedCalls calls;
    CRegistryKey key(UserKey);
    calls.Clear();
    EXPECT_TRUE(key.ReopenForWrite(true));
    EXPECT_TRUE(key.ReopenForWrite(false));
    EXPECT_EQ(calls.Calls(),
              (Lines{"RegCloseKey(k2)", "RegOpenKeyExW(k1, Software\\KORTests, 0, f003f)",
                     "RegCloseKey(k3)", "RegOpenKeyExW(k1, Software\\KORTests, 0, 20019)"}));
    EXPECT_TRUE(IsReadable(key));
}

TEST_F(KeyLifetime, RefusedWriteAccessLeavesTheKeyReadable) {
    test::BalancedCalls calls;
    CRegistryKey key(UserKey);
    calls.Clear();
    calls.FailCall(2);
    EXPECT_FALSE(key.ReopenForWrite(true));
    EXPECT_EQ(calls.Calls(),
              (Lines{"RegCloseKey(k2)", "RegOpenKeyExW(k1, Software\\KORTests, 0, f003f)",
                     "RegCloseKey(k1)", "RegOpenCurrentUser(f003f)",
                     "RegOpenKeyExW(k3, Software\\KORTests, 0, 20019)"}));
    EXPECT_TRUE(IsReadable(key));
    EXPECT_EQ(key.GetFullName(), UserKey);
}

TEST_F(KeyLifetime, RefusedWriteAccessDoesWithoutThePerUserRoot) {
    test::BalancedCalls calls;
    {
        CRegistryKey key(UserKey);
        calls.Clear();
        calls.FailCall(2);
        {
            HOOK_IMPORT(openUser, RegOpenCurrentUser, [&](auto... all) -> LSTATUS {
                calls.FailCall(1);
                return openUser.Original(all...);
            });
            EXPECT_FALSE(key.ReopenForWrite(true));
        }
        EXPECT_EQ(calls.Calls(),
                  (Lines{"RegCloseKey(k2)", "RegOpenKeyExW(k1, Software\\KORTests, 0, f003f)",
                         "RegCloseKey(k1)", "RegOpenCurrentUser(f003f)",
                         "RegOpenKeyExW(HKCU, Software\\KORTests, 0, 20019)"}));
        EXPECT_TRUE(IsReadable(key));
        EXPECT_EQ(key.GetFullName(), UserKey);
    }
    EXPECT_EQ(calls.Calls().back(), "RegCloseKey(k3)") << "there is no root to be closed";
}

// The system refuses for real: a key whose security lets everybody read and nobody write.
TEST_F(KeyLifetime, AKeyThatMayOnlyBeReadStaysReadable) {
    // Owner and group of the process, "D:(A;;KR;;;WD)" in binary form.
    SID_IDENTIFIER_AUTHORITY world = SECURITY_WORLD_SID_AUTHORITY;
    PSID everybody = nullptr;
    ASSERT_TRUE(
        AllocateAndInitializeSid(&world, 1, SECURITY_WORLD_RID, 0, 0, 0, 0, 0, 0, 0, &everybody));
    BYTE acl[256];
    ASSERT_TRUE(InitializeAcl(reinterpret_cast<ACL*>(acl), sizeof acl, ACL_REVISION));
    ASSERT_TRUE(
        AddAccessAllowedAce(reinterpret_cast<ACL*>(acl), ACL_REVISION, KEY_READ, everybody));
    SECURITY_DESCRIPTOR security;
    ASSERT_TRUE(InitializeSecurityDescriptor(&security, SECURITY_DESCRIPTOR_REVISION));
    ASSERT_TRUE(SetSecurityDescriptorDacl(&security, TRUE, reinterpret_cast<ACL*>(acl), FALSE));
    const std::wstring subKey = L"Software\\KORTests\\readonly";
    test::SetRaw(HKEY_LOCAL_MACHINE, subKey, L"number", test::Dword(9));
    HKEY raw = nullptr;
    ASSERT_EQ(ERROR_SUCCESS,
              RegOpenKeyExW(HKEY_LOCAL_MACHINE, subKey.c_str(), 0, KEY_ALL_ACCESS, &raw));
    ASSERT_EQ(ERROR_SUCCESS, RegSetKeySecurity(raw, DACL_SECURITY_INFORMATION, &security));
    RegCloseKey(raw);
    FreeSid(everybody);

    CRegistryKey::SetAllowWritesAnywhere();
    CRegistryKey key(L"HKEY_LOCAL_MACHINE\\Software\\KORTests\\readonly");
    ASSERT_TRUE(key.IsOpen());
    EXPECT_FALSE(key.ReopenForWrite(true));
    EXPECT_TRUE(IsReadable(key));
    EXPECT_FALSE(key.WriteDword(L"number", 1U));
    EXPECT_FALSE(key.DeleteValue(L"number"));
    EXPECT_TRUE(IsReadable(key));
    EXPECT_EQ(test::GetRaw(HKEY_LOCAL_MACHINE, subKey, L"number"), test::Dword(9));
}

TEST_F(KeyLifetime, AKeyThatCannotBeReopenedAtAllIsReset) {
    test::BalancedCalls calls;
    CRegistryKey key(UserKey);
    HOOK_IMPORT(open, RegOpenKeyExW, test::Refused);
    EXPECT_FALSE(key.ReopenForWrite(true));
    EXPECT_TRUE(test::IsReset(key));
}

TEST_F(KeyLifetime, ReopeningForReadingKeepsTheResolutionOnFailure) {
    test::BalancedCalls calls;
    CRegistryKey key(UserKey);
    calls.FailCall(2);
    EXPECT_FALSE(key.ReopenForWrite(false));
    EXPECT_FALSE(key.IsOpen());
    EXPECT_EQ(key.GetFullName(), UserKey);
    EXPECT_TRUE(key.OpenResolved(false, false, false));
    EXPECT_TRUE(IsReadable(key));
}

TEST_F(KeyLifetime, ARefusedCloseEndsTheReopening) {
    test::BalancedCalls calls;
    CRegistryKey key(UserKey);
    calls.Clear();
    calls.FailCall(1);
    EXPECT_FALSE(key.ReopenForWrite(true));
    EXPECT_EQ(calls.Calls(), Lines{"RegCloseKey(k2)"});
    EXPECT_TRUE(IsReadable(key));
}

// The view reaches every call that opens, creates or deletes a key.
TEST_F(KeyLifetime, ViewBitsAreAddedToTheAccess) {
    class View : public CRegistryKey {
    public:
        View() { m_extraAccess = KEY_WOW64_64KEY; }
    };
    View key;
    test::RegistryCalls calls;
    EXPECT_TRUE(key.Open(MachineKey, true));
    EXPECT_TRUE(key.ReopenForWrite(true));
    EXPECT_TRUE(key.CreateSubKey(L"sub"));
    EXPECT_TRUE(key.SubKeyExists(L"sub"));
    EXPECT_TRUE(key.CopyTree(L"HKEY_LOCAL_MACHINE\\Software\\KORTests\\copy",
                             L"HKEY_LOCAL_MACHINE\\Software\\KORTests\\copy"));
    EXPECT_TRUE(key.DeleteSubKey(L"copy\\sub"));
    EXPECT_TRUE(key.OpenCurrentUserRuntime(L"volatile\\x", true)) << "stamped by a companion";
    for (const std::string& call : calls.Calls()) {
        const bool opens = call.find("RegOpenKeyExW") == 0 || call.find("RegCreateKeyExW") == 0;
        EXPECT_TRUE(!opens || call.find(" 20119") != std::string::npos ||
                    call.find(" f013f") != std::string::npos)
            << call;
        EXPECT_TRUE(call.find("RegDeleteKeyExW") != 0 ||
                    call.find(", 100, 0)") != std::string::npos)
            << call;
    }
    EXPECT_EQ(calls.CountOf("RegDeleteKeyExW"), 1);
}

} // namespace
