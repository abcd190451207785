// The names that paths stand for, whether or not the key exists.
#include <gtest/gtest.h>
#include <windows.h>

#include "registry/CRegistryKey.h"
#include "tests/support/TestInstallation.h"

using namespace kor;

namespace {

struct NameCase {
    const wchar_t* path;
    bool rtxLayout;
    const wchar_t* name;
};

TEST(ResolvedName, IsTheRealForm) {
    const test::TestInstallation nothing;
    const NameCase cases[] = {
        {L"M_KOR_HKEY_LOCAL_MACHINE_RUNTIME\\install", false,
         L"HKEY_LOCAL_MACHINE\\Software\\Vantrel\\Vantrel Imaging Library\\Runtime\\install"},
        {L"m_kor_hkey_current_user_runtime", false,
         L"HKEY_CURRENT_USER\\Software\\Vantrel\\Vantrel Imaging Library\\Runtime"},
        {L"m_kor_hkey_current_user_runtime\\a", true,
         L"HKEY_LOCAL_MACHINE\\Software\\Vantrel\\Vantrel Imaging Library\\RTXUser\\"
         L"Vantrel Imaging Library\\Runtime\\a"},
        {L"HKEY_LOCAL_MACHINE\\Software\\x\\\\", false, L"HKEY_LOCAL_MACHINE\\Software\\x"},
        {L"hkey_users", false, L"HKEY_USERS"},
        {L"HKEY_USERS\\", false, L"HKEY_USERS"},
        {L"HKLM\\Software", false, L""},
        {L"\\Software", false, L""},
        {L"", false, L""},
    };
    for (const NameCase& c : cases) {
        EXPECT_STREQ(ResolvedName(c.path, c.rtxLayout).Text(), c.name);
    }
}

TEST(ResolvedName, IsWhatAnOpenedKeySays) {
    const test::TestInstallation nothing;
    for (const wchar_t* const path :
         {L"M_KOR_HKEY_CURRENT_USER_RUNTIME\\A b\\c\\", L"M_KOR_HKEY_COMMON_TOOLS_FOLDER\\x",
          L"M_KOR_HKEY_LOCAL_MACHINE_ROOT", L"HKEY_CURRENT_USER\\Software\\Vantrel\\q",
          L"HKEY_LOCAL_MACHINE\\Software"}) {
        const CRegistryKey key(path, true);
        ASSERT_TRUE(key.IsOpen());
        EXPECT_STREQ(key.GetFullName().Text(), ResolvedName(path, false).Text());
    }
}

} // namespace
