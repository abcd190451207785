// Volatile data over a restart of the system. wine/in-prefix.py runs this program twice in
// one prefix and restarts the registry server in between; the stage says which half is played.
#include "tests/registry/RegistryTest.h"

namespace {

constexpr wchar_t Location[] = L"M_KOR_HKEY_CURRENT_USER_RUNTIME\\volatile\\x";

std::wstring Stage() {
    wchar_t stage[10] = {};
    GetEnvironmentVariableW(L"KOR_TEST_STAGE", stage, 10);
    return stage;
}

// Without a known stage both halves would be skipped, and the restart passed without a test.
TEST(Restart, HasAStage) {
    const std::wstring stage = Stage();
    EXPECT_TRUE(stage == L"before" || stage == L"after") << testing::PrintToString(stage);
}

TEST(Restart, BeforeIt) {
    if (Stage() != L"before") {
        GTEST_SKIP();
    }
    test::SetRaw(HKEY_CURRENT_USER, test::Runtime + L"\\lasting", L"v", test::Dword(1));
    CRegistryKey key(Location, true);
    ASSERT_TRUE(key.WriteDword(L"first", 1U));
    EXPECT_EQ(test::GetRaw(HKEY_CURRENT_USER, test::Runtime + L"\\volatile", L"ValueCreator"),
              test::Text(REG_SZ, L"first"));
}

TEST(Restart, AfterIt) {
    if (Stage() != L"after") {
        GTEST_SKIP();
    }
    EXPECT_EQ(test::TreeOf(HKEY_CURRENT_USER, test::Runtime),
              (std::vector<std::wstring>{L"lasting", L"lasting:v"}));
    // The next opening stamps anew.
    CRegistryKey key(L"M_KOR_HKEY_CURRENT_USER_RUNTIME\\volatile\\again", true);
    ASSERT_TRUE(key.WriteDword(L"second", 1U));
    EXPECT_EQ(test::GetRaw(HKEY_CURRENT_USER, test::Runtime + L"\\volatile", L"PathCreator"),
              test::Text(REG_SZ, L"volatile\\again"));
    EXPECT_EQ(test::GetRaw(HKEY_CURRENT_USER, test::Runtime + L"\\volatile", L"ValueCreator"),
              test::Text(REG_SZ, L"second"));
}

} // namespace
