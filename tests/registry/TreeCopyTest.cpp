// Copying values and trees.
#include "tests/registry/TreeTest.h"
#include "tests/support/RegistryCalls.h"

namespace {

using Tree = std::vector<std::wstring>;

using TreeCopy = test::TreeTest;

constexpr wchar_t Source[] = L"HKEY_CURRENT_USER\\Software\\KORTests\\s";
constexpr wchar_t Copy[] = L"HKEY_CURRENT_USER\\Software\\KORTests\\copy";

Tree BelowCopy() {
    return test::TreeOf(HKEY_CURRENT_USER, L"Software\\KORTests\\copy");
}

struct CopyRow {
    const wchar_t* name;
    test::RawValue source;
    std::optional<test::RawValue> copy;
};

TEST_F(TreeCopy, CopiesValuesByTheirType) {
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
        test::SetRaw(HKEY_CURRENT_USER, test::TestSubKey, row.name, row.source);
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
TEST_F(TreeCopy, SixtyFourBitValuesCopyTheNumberLeftBehind) {
    test::SetRaw(HKEY_CURRENT_USER, test::TestSubKey, L"a", test::Qword(7));
    test::SetRaw(HKEY_CURRENT_USER, test::TestSubKey, L"b", {REG_QWORD, {0xfe, 0xff, 0xff, 0xff}});
    test::SetRaw(HKEY_CURRENT_USER, test::TestSubKey, L"c", test::Dword(3));
    test::SetRaw(HKEY_CURRENT_USER, test::TestSubKey, L"d", test::Qword(8));
    ASSERT_TRUE(m_key.EnumValueNames(m_names));
    EXPECT_TRUE(m_key.CopyValues(Copy));
    std::uint32_t number = 0;
    for (const CKORString& name : m_names) {
        number = name == L"b" ? 0xfffffffe : number;
        const std::uint32_t expected = name == L"c" ? 3 : number;
        EXPECT_EQ(test::GetRaw(HKEY_CURRENT_USER, L"Software\\KORTests\\copy", name.Text()),
                  test::Dword(expected));
    }
}

TEST_F(TreeCopy, AValueThatCannotBeReadIsLeftOut) {
    const std::wstring source = L"Software\\KORTests\\s";
    const test::RawValue bytes = {REG_BINARY, {1, 2, 3}};
    test::SetRaw(HKEY_CURRENT_USER, source, L"a", bytes);
    test::SetRaw(HKEY_CURRENT_USER, source, L"b", bytes);
    test::SetRaw(HKEY_CURRENT_USER, source, L"c", test::Text(REG_SZ, L"c"));
    test::SetRaw(HKEY_CURRENT_USER, source, L"d", test::Text(REG_EXPAND_SZ, L"d"));
    test::SetRaw(HKEY_CURRENT_USER, source, L"e", test::Text(REG_SZ, L"e"));
    CRegistryKey key(Source);
    {
        HOOK_IMPORT(query, RegQueryValueExW,
                    [&](HKEY opened, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data,
                        LPDWORD size) -> LSTATUS {
                        const bool isRefused = data != nullptr && std::wstring(L"bcd").find(name) !=
                                                                      std::wstring::npos;
                        return isRefused ? LSTATUS{ERROR_ACCESS_DENIED}
                                         : query.Original(opened, name, reserved, type, data, size);
                    });
        EXPECT_TRUE(key.CopyValues(Copy));
    }
    EXPECT_EQ(BelowCopy(), (Tree{L":a", L":e"}));
}

// The same rule makes such branches impossible anywhere but in a volatile location.
TEST_F(TreeCopy, BranchesThatNameVolatileAreLeftOut) {
    Set(L"s\\a", L"v");
    Set(L"s\\a\\Nonvolatile\\below", L"v");
    Set(L"s\\volatile", L"v");
    CRegistryKey source(Source);
    EXPECT_TRUE(source.CopyTree(Copy, L"HKEY_USERS"));
    EXPECT_EQ(BelowCopy(), (Tree{L"a", L"a:v"}));
    EXPECT_TRUE(source.CopyTree(L"M_KOR_HKEY_CURRENT_USER_RUNTIME\\volatile\\copy", L"HKEY_USERS"));
    EXPECT_EQ(test::TreeOf(HKEY_CURRENT_USER, test::Runtime + L"\\volatile\\copy"),
              (Tree{L"a", L"a:v", L"a\\Nonvolatile", L"a\\Nonvolatile\\below",
                    L"a\\Nonvolatile\\below:v", L"volatile", L"volatile:v"}));
}

TEST_F(TreeCopy, CopiesFollowTheDestinationsRule) {
    Set(L"s", L"n");
    CRegistryKey source(Source);
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

TEST_F(TreeCopy, ABadDestinationIsAFailure) {
    EXPECT_FALSE(m_key.CopyValues(L"HKCU\\Software\\KORTests\\copy"));
    EXPECT_FALSE(m_key.CopyValues(L""));
    EXPECT_FALSE(m_key.CopyTree(L"nowhere", L"nowhere"));
    EXPECT_TRUE(m_key.IsOpen());
}

// An ordinary key with this name may be opened but not made.
TEST_F(TreeCopy, ADestinationThatExistsIsNotCreated) {
    Set(L"s", L"n");
    CRegistryKey source(Source);
    const CKORString destination = CKORString(test::UserKey) + L"\\my volatile key";
    EXPECT_FALSE(source.CopyValues(destination));
    EXPECT_EQ(Below(), (Tree{L"s", L"s:n"}));
    Make(L"my volatile key");
    EXPECT_TRUE(source.CopyValues(destination));
    EXPECT_EQ(Below(), (Tree{L"my volatile key", L"my volatile key:n", L"s", L"s:n"}));
}

TEST_F(TreeCopy, AnEnumerationThatFailsIsAFailureOfTheCopy) {
    Set(L"s", L"n");
    CRegistryKey source(Source);
    {
        HOOK_IMPORT(enumValue, RegEnumValueW, test::Refused);
        EXPECT_FALSE(source.CopyValues(Copy));
        EXPECT_FALSE(source.CopyTree(Copy, L"HKEY_USERS"));
    }
    EXPECT_EQ(Below(), (Tree{L"copy", L"s", L"s:n"}));
    EXPECT_TRUE(source.IsOpen());
}

TEST_F(TreeCopy, AListOfValuesThatBreaksOffCopiesNone) {
    Set(L"s", L"m");
    Set(L"s", L"n");
    CRegistryKey source(Source);
    {
        HOOK_IMPORT(enumValue, RegEnumValueW, [&](HKEY key, DWORD index, auto... rest) {
            return index == 1 ? LSTATUS{ERROR_ACCESS_DENIED}
                              : enumValue.Original(key, index, rest...);
        });
        EXPECT_FALSE(source.CopyValues(Copy));
    }
    EXPECT_EQ(Below(), (Tree{L"copy", L"s", L"s:m", L"s:n"}));
    EXPECT_TRUE(source.IsOpen());
}

TEST_F(TreeCopy, AListOfSubKeysThatBreaksOffIsCopiedAsFarAsItGoes) {
    Set(L"s\\a", L"v");
    Set(L"s\\b", L"v");
    CRegistryKey source(Source);
    ASSERT_TRUE(source.EnumSubKeyNames(m_names));
    {
        HOOK_IMPORT(enumKey, RegEnumKeyExW, [&](HKEY key, DWORD index, auto... rest) {
            return index == 1 ? LSTATUS{ERROR_ACCESS_DENIED}
                              : enumKey.Original(key, index, rest...);
        });
        EXPECT_TRUE(source.CopyTree(Copy, L"HKEY_USERS"));
    }
    const std::wstring first = m_names[0].Text();
    EXPECT_EQ(BelowCopy(), (Tree{first, first + L":v"}));
    EXPECT_TRUE(source.IsOpen());
    EXPECT_EQ(source.GetFullName(), Source);
}

// An empty name would lead to the same key again.
TEST_F(TreeCopy, ASubKeyWithoutANameIsLeftOut) {
    Set(L"s", L"v");
    Make(L"s\\a");
    CRegistryKey source(Source);
    {
        const test::NamelessSubKey nameless;
        EXPECT_TRUE(source.CopyTree(Copy, L"HKEY_USERS"));
        EXPECT_EQ(nameless.Walks(), 1);
    }
    EXPECT_EQ(Below(), (Tree{L"copy", L"copy:v", L"s", L"s:v", L"s\\a"}));
    EXPECT_TRUE(source.EnumSubKeyNames(m_names)) << "open";
    EXPECT_EQ(source.GetFullName(), Source);
}

TEST_F(TreeCopy, ADestinationMayEndInABackslash) {
    Set(L"s", L"v");
    Set(L"s\\a\\b", L"v");
    Set(L"s\\c", L"v");
    CRegistryKey source(Source);
    test::RegistryCalls calls;
    EXPECT_TRUE(source.CopyTree(L"HKEY_CURRENT_USER\\Software\\KORTests\\copy\\", L"HKEY_USERS"));
    for (const std::string& call : calls.Calls()) {
        EXPECT_EQ(call.find("\\\\"), std::string::npos) << call;
    }
    EXPECT_EQ(BelowCopy(), (Tree{L":v", L"a", L"a\\b", L"a\\b:v", L"c", L"c:v"}));
}

TEST_F(TreeCopy, CopiesTreesWithoutTheExclusion) {
    Set(L"a", L"v");
    Set(L"a\\b\\c", L"v");
    Make(L"Dest");
    const CKORString destination = CKORString(test::UserKey) + L"\\Dest";
    EXPECT_TRUE(m_key.CopyTree(destination, destination));
    EXPECT_EQ(Below(), (Tree{L"Dest", L"Dest\\a", L"Dest\\a:v", L"Dest\\a\\b", L"Dest\\a\\b\\c",
                             L"Dest\\a\\b\\c:v", L"a", L"a:v", L"a\\b", L"a\\b\\c", L"a\\b\\c:v"}));
    ExpectAtStart();
}

TEST_F(TreeCopy, ExclusionsAreBeginningsOfTheFullName) {
    Set(L"a", L"v");
    test::RegistryCalls calls;
    const CKORString destination = L"HKEY_CURRENT_USER\\Software\\KORTestsCopy";
    EXPECT_TRUE(m_key.CopyTree(destination, test::UserKey));
    EXPECT_TRUE(m_key.CopyTree(destination, L"HKEY_CURR"));
    EXPECT_TRUE(m_key.CopyTree(destination, L"")) << "every name begins with the empty text";
    EXPECT_TRUE(calls.Calls().empty());
    // Another case, or a longer text, excludes nothing.
    CRegistryKey source(L"HKEY_CURRENT_USER\\Software\\KORTests\\a");
    EXPECT_TRUE(source.CopyTree(Copy, L"HKEY_CURRENT_USER\\software\\KORTests"));
    EXPECT_TRUE(source.CopyTree(L"HKEY_CURRENT_USER\\Software\\KORTests\\copy2",
                                L"HKEY_CURRENT_USER\\Software\\KORTests\\ab"));
    EXPECT_TRUE(test::GetRaw(HKEY_CURRENT_USER, L"Software\\KORTests\\copy", L"v"));
    EXPECT_TRUE(test::GetRaw(HKEY_CURRENT_USER, L"Software\\KORTests\\copy2", L"v"));
    ExpectAtStart();
}

// Beneath the top key nothing counts, and the walk goes on with the next subkey.
TEST_F(TreeCopy, CopyTreeGoesOnAfterASubKeyThatCannotBeEntered) {
    Set(L"s\\a", L"v");
    Set(L"s\\b", L"v");
    Set(L"s\\c", L"v");
    CRegistryKey source(Source);
    {
        HOOK_IMPORT(open, RegOpenKeyExW, [&](HKEY root, LPCWSTR subKey, auto... rest) {
            return std::wstring(subKey) == L"Software\\KORTests\\s\\b"
                       ? LSTATUS{ERROR_ACCESS_DENIED}
                       : open.Original(root, subKey, rest...);
        });
        EXPECT_TRUE(source.CopyTree(Copy, L"HKEY_USERS"));
    }
    EXPECT_TRUE(source.IsOpen());
    EXPECT_EQ(source.GetFullName(), Source);
    EXPECT_EQ(BelowCopy(), (Tree{L"a", L"a:v", L"c", L"c:v"}));
}

TEST_F(TreeCopy, CopyTreeGoesOnAfterAKeyWhoseCopyCannotBeMade) {
    Set(L"s\\a", L"v");
    Set(L"s\\b", L"v");
    Set(L"s\\b\\below", L"v");
    Set(L"s\\c", L"v");
    CRegistryKey source(Source);
    {
        HOOK_IMPORT(create, RegCreateKeyExW, [&](HKEY root, LPCWSTR subKey, auto... rest) {
            return std::wstring(subKey) == L"Software\\KORTests\\copy\\b"
                       ? LSTATUS{ERROR_ACCESS_DENIED}
                       : create.Original(root, subKey, rest...);
        });
        EXPECT_TRUE(source.CopyTree(Copy, L"HKEY_USERS"));
    }
    EXPECT_EQ(source.GetFullName(), Source);
    EXPECT_EQ(BelowCopy(), (Tree{L"a", L"a:v", L"c", L"c:v"}));
}

TEST_F(TreeCopy, TheRealTimeLayoutGoesWithTheTemporaryKeys) {
    CRegistryKey::SetRtxMode(true);
    test::SetRaw(HKEY_CURRENT_USER, L"Software\\KORTests\\s", L"n", test::Dword(4));
    CRegistryKey source(Source);
    CRegistryKey::SetRtxMode(false);
    EXPECT_TRUE(source.CopyValues(L"M_KOR_HKEY_CURRENT_USER_RUNTIME\\copy"));
    EXPECT_EQ(test::GetRaw(HKEY_LOCAL_MACHINE,
                           test::Library + L"\\RTXUser\\Vantrel Imaging Library\\Runtime\\copy",
                           L"n"),
              test::Dword(4));
}

} // namespace
