#include "tests/registry/RawRegistry.h"
#include "tests/registry/RegistryCalls.h"

namespace {

using Lines = std::vector<std::string>;
using Tree = std::vector<std::wstring>;

constexpr wchar_t TestKey[] = L"HKEY_CURRENT_USER\\Software\\KORTests";
constexpr wchar_t TestSubKey[] = L"Software\\KORTests";

class TreeOperations : public test::RegistryTest {
protected:
    void SetUp() override {
        RegistryTest::SetUp();
        test::MakeKey(HKEY_CURRENT_USER, TestSubKey);
        ASSERT_TRUE(m_key.Open(TestKey, false));
    }

    static void Set(const std::wstring& path, const std::wstring& name) {
        test::SetRaw(HKEY_CURRENT_USER, TestSubKey + (L"\\" + path), name, test::Dword(1));
    }
    static void Make(const std::wstring& path) {
        test::MakeKey(HKEY_CURRENT_USER, TestSubKey + (L"\\" + path));
    }
    static Tree Below() { return test::TreeOf(HKEY_CURRENT_USER, TestSubKey); }

    void ExpectAtStart() {
        EXPECT_TRUE(m_key.IsOpen());
        EXPECT_EQ(m_key.GetFullName(), TestKey);
        EXPECT_TRUE(m_key.EnumSubKeyNames(m_names));
    }

    CRegistryKey m_key;
    CTable1D<CKORString> m_names;
};

TEST_F(TreeOperations, CreatesSubKeys) {
    test::RegistryCalls calls;
    CRegistryKey key(TestKey);
    calls.Clear();
    EXPECT_TRUE(key.CreateSubKey(L"a\\\\"));
    EXPECT_EQ(calls.Calls(),
              (Lines{"RegCloseKey(k2)", "RegOpenKeyExW(k1, Software\\KORTests, 0, f003f)",
                     "RegCreateKeyExW(k3, a, 0, -, 0, 20019, -, -)", "RegCloseKey(k4)",
                     "RegCloseKey(k3)", "RegOpenKeyExW(k1, Software\\KORTests, 0, 20019)"}));
    EXPECT_TRUE(key.CreateSubKey(L"b\\c"));
    EXPECT_TRUE(key.CreateSubKey(L"a"));
    EXPECT_FALSE(key.CreateSubKey(L"\\a")) << "the system takes no leading backslash";
    EXPECT_EQ(Below(), (Tree{L"a", L"b", L"b\\c"}));
    EXPECT_TRUE(key.IsOpen());
    key.Close();
    EXPECT_EQ(calls.HandleFaults(), "");
}

TEST_F(TreeOperations, DeleteTreeLeavesTheEmptySubKey) {
    Set(L"t", L"v");
    Set(L"t", L"w");
    Set(L"t\\a", L"v");
    Set(L"t\\a\\b", L"v");
    Make(L"t\\c");
    Make(L"other");
    EXPECT_TRUE(m_key.DeleteTree(L"t"));
    EXPECT_EQ(Below(), (Tree{L"other", L"t"}));
    ExpectAtStart();
}

TEST_F(TreeOperations, DeleteTreeMakesItsCallsInOrder) {
    Set(L"t", L"v");
    Make(L"t\\a");
    test::RegistryCalls calls;
    CRegistryKey key(TestKey);
    calls.Clear();
    EXPECT_TRUE(key.DeleteTree(L"t"));
    const std::string start = "k1, Software\\KORTests";
    EXPECT_EQ(calls.Calls(), (Lines{
                                 "RegCloseKey(k2)",
                                 "RegOpenKeyExW(" + start + "\\t, 0, 20019)",
                                 "RegEnumValueW(k3, 0, 1024, -, -)",
                                 "RegEnumValueW(k3, 1, 1024, -, -)",
                                 "RegCloseKey(k3)",
                                 "RegOpenKeyExW(" + start + "\\t, 0, f003f)",
                                 "RegDeleteValueW(k4, v)",
                                 "RegCloseKey(k4)",
                                 "RegOpenKeyExW(" + start + "\\t, 0, 20019)",
                                 "RegEnumKeyExW(k5, 0, 1024, -, -)",
                                 "RegEnumKeyExW(k5, 1, 1024, -, -)",
                                 "RegCloseKey(k5)",
                                 "RegOpenKeyExW(" + start + "\\t\\a, 0, 20019)",
                                 "RegEnumValueW(k6, 0, 1024, -, -)",
                                 "RegEnumKeyExW(k6, 0, 1024, -, -)",
                                 "RegCloseKey(k6)",
                                 "RegOpenKeyExW(" + start + "\\t, 0, 20019)",
                                 "RegDeleteKeyExW(k7, a, 0, 0)",
                                 "RegCloseKey(k7)",
                                 "RegOpenKeyExW(" + start + ", 0, 20019)",
                             }));
}

TEST_F(TreeOperations, DeleteTreeTakesRelativePaths) {
    Set(L"t\\u", L"v");
    Make(L"t\\u\\a");
    EXPECT_TRUE(m_key.DeleteTree(L"t\\u"));
    EXPECT_EQ(Below(), (Tree{L"t", L"t\\u"}));
    ExpectAtStart();
}

TEST_F(TreeOperations, DeleteTreeOfNothingFailsAndStays) {
    for (const wchar_t* path : {L"missing", L"", L"missing\\a", L"\\..", L"\\missing"}) {
        EXPECT_FALSE(m_key.DeleteTree(path));
        ExpectAtStart();
    }
}

// A key may bear the name of the way up. It must not lead out of the tree that is deleted.
TEST_F(TreeOperations, AKeyNamedLikeTheParentIsNoWayUp) {
    Set(L"keep", L"v");
    Set(L"t\\..", L"v");
    Make(L"t\\..\\x");
    Make(L"t\\..\\..");
    EXPECT_EQ(Below().size(), 7U);
    EXPECT_TRUE(m_key.CopyTree(CKORString(TestKey) + L"\\copy", CKORString(TestKey) + L"\\copy"));
    EXPECT_TRUE(m_key.DeleteTree(L"t"));
    EXPECT_EQ(Below(), (Tree{L"copy", L"copy\\keep", L"copy\\keep:v", L"copy\\t", L"copy\\t\\..",
                             L"copy\\t\\..:v", L"copy\\t\\..\\..", L"copy\\t\\..\\x", L"keep",
                             L"keep:v", L"t"}));
    ExpectAtStart();
}

TEST_F(TreeOperations, DeleteSubKeyTakesEverything) {
    Set(L"t\\a\\b", L"v");
    Make(L"other");
    EXPECT_TRUE(m_key.DeleteSubKey(L"t"));
    EXPECT_EQ(Below(), Tree{L"other"});
    ExpectAtStart();
    EXPECT_FALSE(m_key.DeleteSubKey(L"t"));
    ExpectAtStart();
    EXPECT_FALSE(m_key.DeleteSubKey(L""));
    ExpectAtStart();
}

TEST_F(TreeOperations, DeleteSubKeyGoesDownItsPath) {
    Set(L"t\\a\\b", L"v");
    Make(L"t\\a\\c");
    EXPECT_TRUE(m_key.DeleteSubKey(L"t\\a\\b"));
    EXPECT_EQ(Below(), (Tree{L"t", L"t\\a", L"t\\a\\c"}));
    ExpectAtStart();
    EXPECT_FALSE(m_key.DeleteSubKey(L"missing\\a"));
    EXPECT_FALSE(m_key.DeleteSubKey(L"t\\missing"));
    EXPECT_FALSE(m_key.DeleteSubKey(L"t\\a\\")) << "a path that ends in a backslash names nothing";
    EXPECT_EQ(Below(), (Tree{L"t", L"t\\a", L"t\\a\\c"}));
    ExpectAtStart();
}

TEST_F(TreeOperations, ALeadingBackslashDoesNotSplitThePath) {
    EXPECT_FALSE(m_key.DeleteSubKey(L"\\missing"));
    ExpectAtStart();
}

// The temporary key of a path with several components sees the object's own layout.
TEST_F(TreeOperations, DeleteSubKeyMakesItsCallsInOrder) {
    Make(L"t\\a");
    test::RegistryCalls calls;
    CRegistryKey key(TestKey);
    calls.Clear();
    EXPECT_TRUE(key.DeleteSubKey(L"t\\a"));
    EXPECT_EQ(
        calls.Calls(),
        (Lines{"RegOpenCurrentUser(f003f)", "RegOpenKeyExW(k3, Software\\KORTests\\t, 0, 20019)",
               "RegCloseKey(k4)", "RegOpenKeyExW(k3, Software\\KORTests\\t, 0, f003f)",
               "RegCloseKey(k5)", "RegOpenKeyExW(k3, Software\\KORTests\\t\\a, 0, 20019)",
               "RegEnumValueW(k6, 0, 1024, -, -)", "RegEnumKeyExW(k6, 0, 1024, -, -)",
               "RegCloseKey(k6)", "RegOpenKeyExW(k3, Software\\KORTests\\t, 0, 20019)",
               "RegDeleteKeyExW(k7, a, 0, 0)", "RegCloseKey(k7)",
               "RegOpenKeyExW(k3, Software\\KORTests\\t, 0, 20019)", "RegFlushKey(k8)",
               "RegCloseKey(k8)", "RegCloseKey(k3)"}));
}

TEST_F(TreeOperations, AFailureOnTheWayLeavesTheRest) {
    for (const wchar_t* name : {L"t\\a", L"t\\b\\x", L"t\\c"}) {
        Make(name);
    }
    HOOK_IMPORT(deleteKey, RegDeleteKeyExW,
                [&](HKEY key, LPCWSTR name, REGSAM view, DWORD reserved) -> LSTATUS {
                    return std::wstring(name) == L"x"
                               ? LSTATUS{ERROR_ACCESS_DENIED}
                               : deleteKey.Original(key, name, view, reserved);
                });
    EXPECT_FALSE(m_key.DeleteTree(L"t"));
    EXPECT_EQ(Below(), (Tree{L"t", L"t\\b", L"t\\b\\x", L"t\\c"}));
    ExpectAtStart();
    EXPECT_FALSE(m_key.DeleteSubKey(L"t"));
    ExpectAtStart();
}

TEST_F(TreeOperations, AValueThatStaysEndsTheDeletion) {
    Set(L"t", L"a");
    Set(L"t", L"b");
    Make(L"t\\sub");
    HOOK_IMPORT(deleteValue, RegDeleteValueW, [&](HKEY key, LPCWSTR name) -> LSTATUS {
        return std::wstring(name) == L"b" ? LSTATUS{ERROR_ACCESS_DENIED}
                                          : deleteValue.Original(key, name);
    });
    EXPECT_FALSE(m_key.DeleteTree(L"t"));
    EXPECT_EQ(Below(), (Tree{L"t", L"t:b", L"t\\sub"}));
    ExpectAtStart();
}

TEST_F(TreeOperations, ASubKeyThatCannotBeEnteredEndsTheDeletion) {
    Make(L"t\\a");
    Make(L"t\\b");
    HOOK_IMPORT(open, RegOpenKeyExW,
                [&](HKEY root, LPCWSTR subKey, DWORD options, REGSAM access, PHKEY result) {
                    const std::wstring path(subKey);
                    return path.size() > 4 && path.compare(path.size() - 4, 4, L"\\t\\a") == 0
                               ? LSTATUS{ERROR_ACCESS_DENIED}
                               : open.Original(root, subKey, options, access, result);
                });
    EXPECT_FALSE(m_key.DeleteTree(L"t"));
    EXPECT_EQ(Below(), (Tree{L"t", L"t\\a", L"t\\b"}));
    ExpectAtStart();
}

struct CopyRow {
    const wchar_t* name;
    test::RawValue source;
    std::optional<test::RawValue> copy;
};

TEST_F(TreeOperations, CopiesValuesByTheirType) {
    std::wstring longText(3000, L'l');
    const CopyRow rows[] = {
        {L"", test::Text(REG_SZ, L"default"), test::Text(REG_SZ, L"default")},
        {L"dword", test::Dword(0xfffffffe), test::Dword(0xfffffffe)},
        {L"string", test::Text(REG_SZ, longText), test::Text(REG_SZ, longText)},
        {L"cut", test::Text(REG_SZ, std::wstring(L"a\0b", 3)), test::Text(REG_SZ, L"a")},
        {L"binary", {REG_BINARY, {1, 2, 3}}, test::RawValue{REG_BINARY, {1, 2, 3}}},
        {L"no bytes", {REG_BINARY, {}}, test::RawValue{REG_BINARY, {}}},
        {L"qword", test::Qword(0x100000005), test::Dword(0)},
        {L"expand", test::Text(REG_EXPAND_SZ, L"%TEMP%"), test::Text(REG_SZ, L"%TEMP%")},
        {L"multi", test::Text(REG_MULTI_SZ, std::wstring(L"a\0", 2)), std::nullopt},
        {L"none", {REG_NONE, {1}}, std::nullopt},
        {L"strange", {0x1234, {1}}, std::nullopt},
        {L"long dword", {REG_DWORD, {1, 2, 3, 4, 5, 6, 7, 8}}, std::nullopt},
    };
    for (const CopyRow& row : rows) {
        test::SetRaw(HKEY_CURRENT_USER, TestSubKey, row.name, row.source);
    }
    EXPECT_TRUE(m_key.CopyValues(L"HKEY_CURRENT_USER\\Software\\KORTests\\new\\copy"));
    for (const CopyRow& row : rows) {
        EXPECT_EQ(test::GetRaw(HKEY_CURRENT_USER, L"Software\\KORTests\\new\\copy", row.name),
                  row.copy)
            << testing::PrintToString(std::wstring(row.name));
    }
    ExpectAtStart();
}

// The number for a 64-bit value is what the last one with 4 bytes left, here in the system's order.
TEST_F(TreeOperations, SixtyFourBitValuesCopyTheNumberLeftBehind) {
    test::SetRaw(HKEY_CURRENT_USER, TestSubKey, L"a", test::Qword(7));
    test::SetRaw(HKEY_CURRENT_USER, TestSubKey, L"b", {REG_QWORD, {0xfe, 0xff, 0xff, 0xff}});
    test::SetRaw(HKEY_CURRENT_USER, TestSubKey, L"c", test::Dword(3));
    test::SetRaw(HKEY_CURRENT_USER, TestSubKey, L"d", test::Qword(8));
    ASSERT_TRUE(m_key.EnumValueNames(m_names));
    EXPECT_TRUE(m_key.CopyValues(L"HKEY_CURRENT_USER\\Software\\KORTests\\copy"));
    std::uint32_t number = 0;
    for (const CKORString& name : m_names) {
        number = name == L"b" ? 0xfffffffe : number;
        const std::uint32_t expected = name == L"c" ? 3 : number;
        EXPECT_EQ(test::GetRaw(HKEY_CURRENT_USER, L"Software\\KORTests\\copy", name.Text()),
                  test::Dword(expected));
    }
}

TEST_F(TreeOperations, CopiesFollowTheDestinationsRule) {
    Set(L"s", L"n");
    CRegistryKey source(L"HKEY_CURRENT_USER\\Software\\KORTests\\s");
    EXPECT_TRUE(source.CopyValues(L"HKEY_LOCAL_MACHINE\\Software\\KORTests\\copy"))
        << "single copies do not count";
    EXPECT_TRUE(test::KeyExists(HKEY_LOCAL_MACHINE, L"Software\\KORTests\\copy"));
    EXPECT_FALSE(test::GetRaw(HKEY_LOCAL_MACHINE, L"Software\\KORTests\\copy", L"n").has_value());
    CRegistryKey::SetAllowWritesAnywhere();
    EXPECT_TRUE(source.CopyValues(L"HKEY_LOCAL_MACHINE\\Software\\KORTests\\copy"));
    EXPECT_TRUE(test::GetRaw(HKEY_LOCAL_MACHINE, L"Software\\KORTests\\copy", L"n").has_value());
    CRegistryKey::ClearAllowWritesAnywhere();

    // The other way round: reading needs no rule.
    test::SetRaw(HKEY_LOCAL_MACHINE, L"Software\\KORTests\\m", L"n", test::Dword(8));
    CRegistryKey machine(L"HKEY_LOCAL_MACHINE\\Software\\KORTests\\m");
    EXPECT_TRUE(machine.CopyValues(L"HKEY_CURRENT_USER\\Software\\KORTests\\fromMachine"));
    EXPECT_EQ(test::GetRaw(HKEY_CURRENT_USER, L"Software\\KORTests\\fromMachine", L"n"),
              test::Dword(8));
}

TEST_F(TreeOperations, ABadDestinationIsAFailure) {
    EXPECT_FALSE(m_key.CopyValues(L"HKCU\\Software\\KORTests\\copy"));
    EXPECT_FALSE(m_key.CopyValues(L""));
    EXPECT_FALSE(m_key.CopyTree(L"nowhere", L"nowhere"));
    EXPECT_TRUE(m_key.IsOpen());
}

TEST_F(TreeOperations, AnEnumerationThatFailsIsAFailureOfTheCopy) {
    Set(L"s", L"n");
    CRegistryKey source(L"HKEY_CURRENT_USER\\Software\\KORTests\\s");
    {
        HOOK_IMPORT(enumValue, RegEnumValueW,
                    [](HKEY, DWORD, LPWSTR, LPDWORD, LPDWORD, LPDWORD, LPBYTE, LPDWORD) -> LSTATUS {
                        return ERROR_ACCESS_DENIED;
                    });
        EXPECT_FALSE(source.CopyValues(L"HKEY_CURRENT_USER\\Software\\KORTests\\copy"));
        EXPECT_FALSE(
            source.CopyTree(L"HKEY_CURRENT_USER\\Software\\KORTests\\copy", L"HKEY_USERS"));
    }
    EXPECT_EQ(Below(), (Tree{L"copy", L"s", L"s:n"}));
    EXPECT_TRUE(source.IsOpen());
}

TEST_F(TreeOperations, CopiesTreesWithoutTheExclusion) {
    Set(L"a", L"v");
    Set(L"a\\b\\c", L"v");
    Make(L"Dest");
    const CKORString destination = CKORString(TestKey) + L"\\Dest";
    EXPECT_TRUE(m_key.CopyTree(destination, destination));
    EXPECT_EQ(Below(), (Tree{L"Dest", L"Dest\\a", L"Dest\\a:v", L"Dest\\a\\b", L"Dest\\a\\b\\c",
                             L"Dest\\a\\b\\c:v", L"a", L"a:v", L"a\\b", L"a\\b\\c", L"a\\b\\c:v"}));
    ExpectAtStart();
}

TEST_F(TreeOperations, ExclusionsAreBeginningsOfTheFullName) {
    Set(L"a", L"v");
    test::RegistryCalls calls;
    const CKORString destination = L"HKEY_CURRENT_USER\\Software\\KORTestsCopy";
    EXPECT_TRUE(m_key.CopyTree(destination, TestKey));
    EXPECT_TRUE(m_key.CopyTree(destination, L"HKEY_CURR"));
    EXPECT_TRUE(m_key.CopyTree(destination, L"")) << "every name begins with the empty text";
    EXPECT_TRUE(calls.Calls().empty());
    // Another case, or a longer text, excludes nothing.
    CRegistryKey source(L"HKEY_CURRENT_USER\\Software\\KORTests\\a");
    EXPECT_TRUE(source.CopyTree(L"HKEY_CURRENT_USER\\Software\\KORTests\\copy",
                                L"HKEY_CURRENT_USER\\software\\KORTests"));
    EXPECT_TRUE(source.CopyTree(L"HKEY_CURRENT_USER\\Software\\KORTests\\copy2",
                                L"HKEY_CURRENT_USER\\Software\\KORTests\\ab"));
    EXPECT_TRUE(test::GetRaw(HKEY_CURRENT_USER, L"Software\\KORTests\\copy", L"v"));
    EXPECT_TRUE(test::GetRaw(HKEY_CURRENT_USER, L"Software\\KORTests\\copy2", L"v"));
    ExpectAtStart();
}

// Beneath the top key nothing counts, and the walk goes on with the next subkey.
TEST_F(TreeOperations, CopyTreeGoesOnAfterASubKeyThatCannotBeEntered) {
    Set(L"s\\a", L"v");
    Set(L"s\\b", L"v");
    Set(L"s\\c", L"v");
    CRegistryKey source(L"HKEY_CURRENT_USER\\Software\\KORTests\\s");
    {
        HOOK_IMPORT(open, RegOpenKeyExW,
                    [&](HKEY root, LPCWSTR subKey, DWORD options, REGSAM access, PHKEY result) {
                        return std::wstring(subKey) == L"Software\\KORTests\\s\\b"
                                   ? LSTATUS{ERROR_ACCESS_DENIED}
                                   : open.Original(root, subKey, options, access, result);
                    });
        EXPECT_TRUE(source.CopyTree(L"HKEY_CURRENT_USER\\Software\\KORTests\\copy", L"HKEY_USERS"));
    }
    EXPECT_TRUE(source.IsOpen());
    EXPECT_EQ(source.GetFullName(), L"HKEY_CURRENT_USER\\Software\\KORTests\\s");
    EXPECT_EQ(test::TreeOf(HKEY_CURRENT_USER, L"Software\\KORTests\\copy"),
              (Tree{L"a", L"a:v", L"c", L"c:v"}));
}

TEST_F(TreeOperations, TheRealTimeLayoutGoesWithTheTemporaryKeys) {
    CRegistryKey::SetRtxMode(true);
    test::SetRaw(HKEY_CURRENT_USER, L"Software\\KORTests\\s", L"n", test::Dword(4));
    CRegistryKey source(L"HKEY_CURRENT_USER\\Software\\KORTests\\s");
    CRegistryKey::SetRtxMode(false);
    EXPECT_TRUE(source.CopyValues(L"M_KOR_HKEY_CURRENT_USER_RUNTIME\\copy"));
    EXPECT_EQ(test::GetRaw(HKEY_LOCAL_MACHINE,
                           test::Library + L"\\RTXUser\\Vantrel Imaging Library\\Runtime\\copy",
                           L"n"),
              test::Dword(4));
}

TEST_F(TreeOperations, ClearsTheCurrentUsersVolatileData) {
    CRegistryKey key;
    EXPECT_TRUE(key.ClearCurrentUserVolatile()) << "no runtime key, nothing to clear";
    EXPECT_FALSE(key.IsOpen());
    test::MakeKey(HKEY_CURRENT_USER, test::Runtime);
    EXPECT_FALSE(key.ClearCurrentUserVolatile()) << "a runtime key without the volatile one";
    EXPECT_EQ(key.GetFullName(), L"");
    test::SetRaw(HKEY_CURRENT_USER, test::Runtime + L"\\volatile\\a\\b", L"v", test::Dword(1));
    test::SetRaw(HKEY_CURRENT_USER, test::Runtime + L"\\other", L"v", test::Dword(1));
    test::RegistryCalls calls;
    EXPECT_TRUE(key.ClearCurrentUserVolatile());
    EXPECT_EQ(calls.Calls()[3],
              "RegOpenKeyExW(k1, Software\\Vantrel\\Vantrel Imaging Library\\Runtime\\Volatile, 0, "
              "20019)");
    EXPECT_EQ(calls.HandleFaults(), "");
    EXPECT_FALSE(key.IsOpen());
    EXPECT_EQ(key.GetFullName(), L"");
    EXPECT_EQ(test::TreeOf(HKEY_CURRENT_USER, test::Runtime),
              (Tree{L"other", L"other:v", L"volatile"}));
}

} // namespace
