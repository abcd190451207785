// Writing and deleting values: the protocol's calls in their order, and what each way out leaves.
#include "tests/registry/RegistryTest.h"
#include "tests/support/RegistryCalls.h"

namespace {

using test::MachineKey;
using test::TestSubKey;
using test::UserKey;

using Lines = std::vector<std::string>;

class Writes : public test::RegistryTest {
protected:
    void SetUp() override {
        RegistryTest::SetUp();
        test::MakeKey(HKEY_CURRENT_USER, TestSubKey);
        test::MakeKey(HKEY_LOCAL_MACHINE, TestSubKey);
    }

    static std::optional<test::RawValue> User(const wchar_t* name) {
        return test::GetRaw(HKEY_CURRENT_USER, TestSubKey, name);
    }
    static std::optional<test::RawValue> Machine(const wchar_t* name) {
        return test::GetRaw(HKEY_LOCAL_MACHINE, TestSubKey, name);
    }
};

TEST_F(Writes, EachFormStoresItsType) {
    CRegistryKey key(UserKey);
    EXPECT_TRUE(key.WriteDword(L"u32", std::uint32_t{0xfffffff0}));
    EXPECT_EQ(User(L"u32"), test::Dword(0xfffffff0));
    EXPECT_TRUE(key.WriteDword(L"i32", std::int32_t{-2}));
    EXPECT_EQ(User(L"i32"), test::Dword(0xfffffffe));
    EXPECT_TRUE(key.WriteDword(L"u64", std::uint64_t{0x100000005}));
    EXPECT_EQ(User(L"u64"), test::Dword(5));
    EXPECT_TRUE(key.WriteDword(L"i64", std::int64_t{-0x100000003}));
    EXPECT_EQ(User(L"i64"), test::Dword(0xfffffffd));
    EXPECT_TRUE(key.WriteDword(L"system", DWORD{0xfffffff1}));
    EXPECT_EQ(User(L"system"), test::Dword(0xfffffff1));
    EXPECT_TRUE(key.WriteDword(L"system", LONG{-4}));
    EXPECT_EQ(User(L"system"), test::Dword(0xfffffffc));
    EXPECT_TRUE(key.WriteQword(L"uq", std::uint64_t{0x8000000000000001}));
    EXPECT_EQ(User(L"uq"), test::Qword(0x8000000000000001));
    EXPECT_TRUE(key.WriteQword(L"iq", std::int64_t{-1}));
    EXPECT_EQ(User(L"iq"), test::Qword(0xffffffffffffffff));
    EXPECT_TRUE(key.WriteString(L"s", L"text"));
    EXPECT_EQ(User(L"s"), test::Text(REG_SZ, L"text"));
    EXPECT_TRUE(key.WriteString(L"empty", L""));
    EXPECT_EQ(User(L"empty"), test::Text(REG_SZ, L""));
    EXPECT_TRUE(key.WriteExpandString(L"x", L"%TEMP%\\a"));
    EXPECT_EQ(User(L"x"), test::Text(REG_EXPAND_SZ, L"%TEMP%\\a"));
    const BYTE bytes[] = {0, 1, 2};
    EXPECT_TRUE(key.WriteBinary(L"b", bytes, sizeof bytes));
    EXPECT_EQ(User(L"b"), (test::RawValue{REG_BINARY, {0, 1, 2}}));
    EXPECT_TRUE(key.WriteBinary(L"b", nullptr, 0));
    EXPECT_EQ(User(L"b"), (test::RawValue{REG_BINARY, {}}));
    CKORString withoutStorage;
    withoutStorage.SetSize(0, false);
    EXPECT_TRUE(key.WriteString(L"nothing", withoutStorage));
    EXPECT_EQ(User(L"nothing"), test::Text(REG_SZ, L""));
    EXPECT_TRUE(key.IsOpen());
}

TEST_F(Writes, WriteValueTakesTheTypesThatCanBeWritten) {
    CRegistryKey key(UserKey);
    const BYTE data[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    constexpr DWORD RegistryTypes[] = {REG_DWORD, REG_SZ, REG_BINARY, REG_QWORD, REG_EXPAND_SZ};
    for (std::uint32_t type = 1; type <= 5; ++type) {
        EXPECT_TRUE(key.WriteValue(L"v", static_cast<RegValueType>(type), data, sizeof data));
        const auto value = User(L"v");
        ASSERT_TRUE(value.has_value());
        EXPECT_EQ(value->type, RegistryTypes[type - 1]);
        EXPECT_TRUE(std::equal(data, data + sizeof data, value->data.begin()));
    }
    test::RegistryCalls calls;
    for (const std::uint32_t type : {0U, 6U, 7U, 11U, 0xffffffffU}) {
        EXPECT_FALSE(key.WriteValue(L"w", static_cast<RegValueType>(type), data, sizeof data));
    }
    EXPECT_FALSE(key.WriteBinary(L"w", data, 0x100000000U)) << "more than a value can have";
    EXPECT_TRUE(calls.Calls().empty());
}

TEST_F(Writes, FollowTheProtocol) {
    test::BalancedCalls calls;
    {
        CRegistryKey key(UserKey);
        calls.Clear();
        EXPECT_TRUE(key.WriteString(L"name", L"abc"));
        EXPECT_EQ(calls.Calls(),
                  (Lines{"RegCloseKey(k2)", "RegOpenKeyExW(k1, Software\\KORTests, 0, f003f)",
                         "RegSetValueExW(k3, name, 0, 1, 8)", "RegCloseKey(k3)",
                         "RegOpenKeyExW(k1, Software\\KORTests, 0, 20019)"}));
        calls.Clear();
        EXPECT_TRUE(key.DeleteValue(L"name"));
        EXPECT_EQ(calls.Calls(),
                  (Lines{"RegCloseKey(k4)", "RegOpenKeyExW(k1, Software\\KORTests, 0, f003f)",
                         "RegDeleteValueW(k5, name)", "RegCloseKey(k5)",
                         "RegOpenKeyExW(k1, Software\\KORTests, 0, 20019)"}));
        calls.Clear();
    }
    EXPECT_EQ(calls.Calls(), (Lines{"RegFlushKey(k6)", "RegCloseKey(k6)", "RegCloseKey(k1)"}));
}

// The key is left open for reading, whatever became of the change.
TEST_F(Writes, AFailedChangeIsFollowedByTheReopeningForReading) {
    struct {
        bool (*change)(CRegistryKey& key);
        const char* call;
    } const rows[] = {
        {[](CRegistryKey& key) { return key.WriteDword(L"n", 1U); },
         "RegSetValueExW(k3, n, 0, 4, 4)"},
        {[](CRegistryKey& key) { return key.DeleteValue(L"n"); }, "RegDeleteValueW(k3, n)"},
        {[](CRegistryKey& key) { return key.CreateSubKey(L"n"); },
         "RegCreateKeyExW(k3, n, 0, -, 0, 20019, -, -)"},
    };
    for (const auto& row : rows) {
        test::BalancedCalls calls;
        CRegistryKey key(UserKey);
        calls.Clear();
        calls.FailCall(3);
        EXPECT_FALSE(row.change(key));
        EXPECT_EQ(
            calls.Calls(),
            (Lines{"RegCloseKey(k2)", "RegOpenKeyExW(k1, Software\\KORTests, 0, f003f)", row.call,
                   "RegCloseKey(k3)", "RegOpenKeyExW(k1, Software\\KORTests, 0, 20019)"}));
        EXPECT_TRUE(key.IsOpen());
    }
}

// Whether the object saw a change shows at its end: it flushes.
TEST_F(Writes, OnlySuccessfulChangesAreFlushed) {
    const auto flushes = [](const std::function<void(CRegistryKey&)>& change) {
        test::RegistryCalls calls;
        {
            CRegistryKey key(UserKey);
            change(key);
        }
        return calls.CountOf("RegFlushKey");
    };
    EXPECT_EQ(flushes([](CRegistryKey&) {}), 0);
    EXPECT_EQ(flushes([](CRegistryKey& key) { EXPECT_FALSE(key.DeleteValue(L"missing")); }), 0);
    EXPECT_EQ(flushes([](CRegistryKey& key) { EXPECT_FALSE(key.DeleteSubKey(L"missing")); }), 0);
    EXPECT_EQ(flushes([](CRegistryKey& key) {
                  HOOK_IMPORT(set, RegSetValueExW, test::Refused);
                  EXPECT_FALSE(key.WriteDword(L"n", 1U));
              }),
              0);
    EXPECT_EQ(flushes([](CRegistryKey& key) { EXPECT_TRUE(key.WriteDword(L"n", 1U)); }), 1);
    EXPECT_EQ(flushes([](CRegistryKey& key) { EXPECT_TRUE(key.DeleteValue(L"n")); }), 1);
    EXPECT_EQ(flushes([](CRegistryKey& key) { EXPECT_TRUE(key.CreateSubKey(L"s")); }), 1);
    EXPECT_EQ(flushes([](CRegistryKey& key) { EXPECT_TRUE(key.DeleteSubKey(L"s")); }), 1);
}

// A change that fails does not take back what was changed before it.
TEST_F(Writes, AFailureDoesNotTakeBackTheNeedToFlush) {
    const std::function<bool(CRegistryKey&)> failures[] = {
        [](CRegistryKey& key) { return key.DeleteValue(L"missing"); },
        [](CRegistryKey& key) { return key.CreateSubKey(L"\\a"); },
        [](CRegistryKey& key) {
            HOOK_IMPORT(deleteKey, RegDeleteKeyExW, test::Refused);
            return key.DeleteSubKey(L"made");
        },
        [](CRegistryKey& key) {
            HOOK_IMPORT(set, RegSetValueExW, test::Refused);
            return key.WriteDword(L"n", 1U);
        },
    };
    for (const auto& fails : failures) {
        test::RegistryCalls calls;
        {
            CRegistryKey key(UserKey);
            EXPECT_TRUE(key.CreateSubKey(L"made"));
            EXPECT_FALSE(fails(key));
        }
        EXPECT_EQ(calls.CountOf("RegFlushKey"), 1);
    }
}

struct RuleRow {
    bool rtx;
    bool anywhere;
    const wchar_t* path;
    bool allowed;
};

constexpr RuleRow Rules[] = {
    {false, false, L"HKEY_CURRENT_USER\\Software\\KORTests", true},
    {false, false, L"HKEY_LOCAL_MACHINE\\Software\\KORTests", false},
    {false, true, L"HKEY_LOCAL_MACHINE\\Software\\KORTests", true},
    {true, false, L"HKEY_LOCAL_MACHINE\\Software\\KORTests", true},
    // A root that was opened per user is writable in both layouts.
    {true, false, L"HKEY_CURRENT_USER\\Software\\KORTests", true},
    {false, false, L"HKEY_CLASSES_ROOT\\KORTests", false},
    {true, false, L"HKEY_CLASSES_ROOT\\KORTests", false},
    {false, true, L"HKEY_CLASSES_ROOT\\KORTests", true},
};

TEST_F(Writes, OnlyWritableRootsAreWritten) {
    test::MakeKey(HKEY_CLASSES_ROOT, L"KORTests");
    for (const RuleRow& row : Rules) {
        SCOPED_TRACE(testing::Message() << testing::PrintToString(std::wstring(row.path)) << " rtx "
                                        << row.rtx << " anywhere " << row.anywhere);
        CRegistryKey::SetRtxMode(row.rtx);
        CRegistryKey key(row.path);
        ASSERT_TRUE(key.IsOpen());
        if (row.anywhere) {
            CRegistryKey::SetAllowWritesAnywhere();
        }
        EXPECT_EQ(CRegistryKey::AllowWritesAnywhere(), row.anywhere);
        test::RegistryCalls calls;
        EXPECT_EQ(key.WriteDword(L"n", 1U), row.allowed);
        EXPECT_EQ(key.WriteString(L"s", L"x"), row.allowed);
        EXPECT_EQ(calls.CountOf("RegSetValueExW"), row.allowed ? 2 : 0);
        EXPECT_EQ(calls.Calls().empty(), !row.allowed);
        EXPECT_TRUE(key.IsOpen());
        CRegistryKey::ClearAllowWritesAnywhere();
        EXPECT_FALSE(CRegistryKey::AllowWritesAnywhere());
    }
    test::DeleteKey(HKEY_CLASSES_ROOT, L"KORTests");
}

// Without the per-user root the predefined one decides by the layout.
TEST_F(Writes, ThePredefinedUserRootIsWritableInThePlainLayoutOnly) {
    HOOK_IMPORT(openUser, RegOpenCurrentUser, test::Refused);
    CRegistryKey plain(UserKey);
    EXPECT_TRUE(plain.WriteDword(L"plain", 1U));
    CRegistryKey::SetRtxMode(true);
    CRegistryKey rtx(UserKey);
    EXPECT_FALSE(rtx.WriteDword(L"rtx", 1U));
    EXPECT_FALSE(User(L"rtx").has_value());
}

// Intended: what deletes and creates keys, and what deletes values, ignores the rule.
TEST_F(Writes, DeletingIgnoresTheWritableRootRule) {
    test::SetRaw(HKEY_LOCAL_MACHINE, TestSubKey, L"n", test::Dword(1));
    CRegistryKey key(MachineKey);
    EXPECT_FALSE(key.WriteDword(L"n", 2U));
    EXPECT_EQ(Machine(L"n"), test::Dword(1));
    EXPECT_TRUE(key.DeleteValue(L"n"));
    EXPECT_FALSE(Machine(L"n").has_value());
    EXPECT_FALSE(key.DeleteValue(L"n"));
    EXPECT_TRUE(key.CreateSubKey(L"sub"));
    EXPECT_TRUE(key.DeleteTree(L"sub"));
    EXPECT_TRUE(key.DeleteSubKey(L"sub"));
    EXPECT_TRUE(key.IsOpen());
}

TEST_F(Writes, AClosedKeyChangesNothing) {
    CRegistryKey key;
    CRegistryKey::SetAllowWritesAnywhere();
    test::RegistryCalls calls;
    EXPECT_FALSE(key.WriteDword(L"n", 1U));
    EXPECT_FALSE(key.WriteQword(L"n", std::uint64_t{1}));
    EXPECT_FALSE(key.WriteString(L"n", L""));
    EXPECT_FALSE(key.WriteExpandString(L"n", L""));
    EXPECT_FALSE(key.WriteBinary(L"n", nullptr, 0));
    EXPECT_FALSE(key.DeleteValue(L"n"));
    EXPECT_FALSE(key.CreateSubKey(L"n"));
    EXPECT_FALSE(key.DeleteSubKey(L"n"));
    EXPECT_FALSE(key.DeleteSubKey(L"n\\m"));
    EXPECT_FALSE(key.DeleteTree(L"n"));
    EXPECT_FALSE(key.CopyValues(UserKey));
    EXPECT_FALSE(key.CopyTree(UserKey, UserKey));
    EXPECT_FALSE(key.CopyTree(UserKey, L"")) << "not even the exclusion of everything counts";
    EXPECT_TRUE(calls.Calls().empty());
}

} // namespace
