// Where a relative path leads.
#include "tests/registry/RegistryTest.h"
#include "tests/support/RegistryCalls.h"

namespace {

constexpr wchar_t Start[] = L"HKEY_CURRENT_USER\\Software\\KORTests\\a\\b";

class RelativeMoves : public test::RegistryTest {
protected:
    void SetUp() override {
        RegistryTest::SetUp();
        test::MakeKey(HKEY_CURRENT_USER, L"Software\\KORTests\\a\\b\\c\\d");
        test::MakeKey(HKEY_CURRENT_USER, L"Software\\KORTests\\a\\e");
        test::MakeKey(HKEY_CURRENT_USER, L"Software\\KORTests\\a\\b\\..f");
        test::MakeKey(HKEY_CURRENT_USER, L"Software\\KORTests\\a\\b\\x\\..\\y");
    }
};

struct MoveRow {
    const wchar_t* path;
    const wchar_t* end; // below HKEY_CURRENT_USER; null: the move fails
};

constexpr MoveRow Moves[] = {
    {L"c", L"\\Software\\KORTests\\a\\b\\c"},
    {L"c\\d", L"\\Software\\KORTests\\a\\b\\c\\d"},
    {L"c\\d\\", L"\\Software\\KORTests\\a\\b\\c\\d"},
    {L"..", L"\\Software\\KORTests\\a"},
    {L"..\\", L"\\Software\\KORTests\\a"},
    {L"..\\e", L"\\Software\\KORTests\\a\\e"},
    {L"..\\..", L"\\Software\\KORTests"},
    {L"..\\..\\a\\e", L"\\Software\\KORTests\\a\\e"},
    {L"..\\..\\..\\..", L""},
    {L"\\", L""},
    {L"\\Software", L"\\Software"},
    {L"\\\\Software", L"\\Software"},
    {L"..\\\\Software", L"\\Software"},
    // Further on ".." is the name of a key.
    {L"x\\..\\y", L"\\Software\\KORTests\\a\\b\\x\\..\\y"},
    {L"c\\..\\c", nullptr},
    {L"...", nullptr},
    {L"..c", nullptr},
    // Only ".." alone goes up, so this is not the "e" one level above.
    {L"..e", nullptr},
    {L"..f", L"\\Software\\KORTests\\a\\b\\..f"},
    {L".", nullptr},
    {L"", nullptr},
    {L"missing", nullptr},
    {L"\\missing", nullptr},
    {L"..\\missing", nullptr},
    {L"..\\..\\..\\..\\..", nullptr},
    {L"\\..", nullptr},
};

TEST_F(RelativeMoves, FollowThePathFromItsLeft) {
    for (const MoveRow& row : Moves) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(row.path)));
        test::BalancedCalls calls;
        CRegistryKey key(Start);
        ASSERT_TRUE(key.IsOpen());
        const bool moved = row.end != nullptr;
        EXPECT_EQ(key.OpenRelative(row.path), moved);
        EXPECT_EQ(key.IsOpen(), moved);
        EXPECT_EQ(key.GetFullName(),
                  moved ? CKORString(L"HKEY_CURRENT_USER") + row.end : CKORString(Start));
    }
}

TEST_F(RelativeMoves, CloseAndOpenForReadingOnly) {
    test::RegistryCalls calls;
    CRegistryKey key(Start);
    calls.Clear();
    EXPECT_TRUE(key.OpenRelative(L"c"));
    EXPECT_EQ(calls.Calls(),
              (std::vector<std::string>{
                  "RegCloseKey(k2)", "RegOpenKeyExW(k1, Software\\KORTests\\a\\b\\c, 0, 20019)"}));
}

// The object stays where it was and can be moved on from there.
TEST_F(RelativeMoves, GoOnAfterAFailure) {
    CRegistryKey key(Start);
    EXPECT_FALSE(key.OpenRelative(L"missing"));
    EXPECT_FALSE(key.IsOpen());
    EXPECT_EQ(key.GetFullName(), Start);
    EXPECT_TRUE(key.OpenRelative(L".."));
    EXPECT_EQ(key.GetFullName(), L"HKEY_CURRENT_USER\\Software\\KORTests\\a");
    EXPECT_TRUE(key.SubKeyExists(L"b"));
}

TEST_F(RelativeMoves, UpwardsFromTheRootFails) {
    CRegistryKey key(L"HKEY_LOCAL_MACHINE");
    EXPECT_FALSE(key.OpenRelative(L".."));
    EXPECT_EQ(key.GetFullName(), L"HKEY_LOCAL_MACHINE");
    EXPECT_TRUE(key.OpenRelative(L"Software"));
    EXPECT_EQ(key.GetFullName(), L"HKEY_LOCAL_MACHINE\\Software");
}

TEST_F(RelativeMoves, LeaveTheKeyBeforeItsRoot) {
    test::RegistryCalls calls;
    CRegistryKey key(L"HKEY_CURRENT_USER");
    calls.Clear();
    EXPECT_FALSE(key.OpenRelative(L".."));
    EXPECT_EQ(calls.Calls(), (std::vector<std::string>{"RegCloseKey(k2)", "RegCloseKey(k1)"}));
}

TEST_F(RelativeMoves, LeadFromAKeyWithANameOfOneCharacter) {
    test::MakeKey(HKEY_CURRENT_USER, L"k\\c");
    {
        CRegistryKey key(L"HKEY_CURRENT_USER\\k");
        EXPECT_TRUE(key.OpenRelative(L"c"));
        EXPECT_EQ(key.GetFullName(), L"HKEY_CURRENT_USER\\k\\c");
    }
    test::DeleteKey(HKEY_CURRENT_USER, L"k");
}

TEST_F(RelativeMoves, AResetKeyGoesNowhere) {
    CRegistryKey key;
    EXPECT_FALSE(key.OpenRelative(L"Software"));
    EXPECT_FALSE(key.OpenRelative(L".."));
    EXPECT_EQ(key.GetFullName(), L"");
}

} // namespace
