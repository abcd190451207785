// The tables of roots, row by row.
#include "registry/RootTables.h"

#include <gtest/gtest.h>

#include <string>

using namespace kor;

namespace {

struct Expected {
    std::uint32_t id;
    const wchar_t* name;
    HKEY plainRoot;
    const wchar_t* plainPrefix;
    HKEY rtxRoot;
    const wchar_t* rtxPrefix;
    std::int32_t volatileClass;
    std::uint32_t stampRoot;
};

const Expected ExpectedRoots[] = {
    {1, L"M_KOR_HKEY_LOCAL_MACHINE_RUNTIME", HKEY_LOCAL_MACHINE,
     L"Software\\Vantrel\\Vantrel Imaging Library\\Runtime\\", HKEY_LOCAL_MACHINE,
     L"Software\\Vantrel\\Vantrel Imaging Library\\RTX\\Vantrel Imaging Library\\Runtime\\", 1, 1},
    {2, L"M_KOR_HKEY_CURRENT_USER_RUNTIME", HKEY_CURRENT_USER,
     L"Software\\Vantrel\\Vantrel Imaging Library\\Runtime\\", HKEY_LOCAL_MACHINE,
     L"Software\\Vantrel\\Vantrel Imaging Library\\RTXUser\\Vantrel Imaging Library\\Runtime\\", 2,
     2},
    {3, L"M_KOR_HKEY_LOCAL_MACHINE_DEVELOPMENT", HKEY_LOCAL_MACHINE,
     L"Software\\Vantrel\\Vantrel Imaging Library\\Development\\", HKEY_LOCAL_MACHINE,
     L"Software\\Vantrel\\Vantrel Imaging Library\\RTX\\Vantrel Imaging Library\\Development\\", 3,
     3},
    {4, L"M_KOR_HKEY_CURRENT_USER_DEVELOPMENT", HKEY_CURRENT_USER,
     L"Software\\Vantrel\\Vantrel Imaging Library\\Development\\", HKEY_LOCAL_MACHINE,
     L"Software\\Vantrel\\Vantrel Imaging Library\\RTXUser\\Vantrel Imaging Library\\Development\\",
     4, 4},
    {5, L"M_KOR_HKEY_LOCAL_MACHINE_IMAGING_BOARD", HKEY_LOCAL_MACHINE,
     L"Software\\Vantrel\\Imaging Board\\", HKEY_LOCAL_MACHINE,
     L"Software\\Vantrel\\Vantrel Imaging Library\\RTX\\Imaging Board\\", 5, 5},
    {6, nullptr, HKEY_CURRENT_USER, L"Software\\Vantrel\\Imaging Board\\", HKEY_LOCAL_MACHINE,
     L"Software\\Vantrel\\Vantrel Imaging Library\\RTXUser\\Imaging Board\\", 0, 5},
    {7, L"M_KOR_HKEY_COMMON_TOOLS_FOLDER", HKEY_LOCAL_MACHINE,
     L"Software\\Wow6432Node\\Vantrel\\Vantrel Imaging Tools\\", HKEY_LOCAL_MACHINE,
     L"Software\\Wow6432Node\\Vantrel\\Vantrel Imaging Library\\RTX\\Vantrel Imaging Tools\\", 3,
     7},
    {8, L"M_KOR_HKEY_LOCAL_MACHINE_ROOT", HKEY_LOCAL_MACHINE,
     L"Software\\Vantrel\\Vantrel Imaging Library\\", HKEY_LOCAL_MACHINE,
     L"Software\\Vantrel\\Vantrel Imaging Library\\RTX\\Vantrel Imaging Library\\", 7, 8},
};

std::wstring LowerCase(std::wstring text) {
    for (wchar_t& c : text) {
        c = static_cast<wchar_t>(c >= L'A' && c <= L'Z' ? c + 32 : c);
    }
    return text;
}

TEST(SymbolicRoots, HaveTheirPlacesInBothLayouts) {
    for (const Expected& expected : ExpectedRoots) {
        SCOPED_TRACE(expected.id);
        const auto id = static_cast<SymbolicRootId>(expected.id);
        const SymbolicRoot* const root = FindSymbolicRoot(id);
        ASSERT_NE(root, nullptr);
        EXPECT_EQ(HandleOf(root->In(false).Hive), expected.plainRoot);
        EXPECT_STREQ(root->In(false).Prefix, expected.plainPrefix);
        EXPECT_EQ(HandleOf(root->In(true).Hive), expected.rtxRoot);
        EXPECT_STREQ(root->In(true).Prefix, expected.rtxPrefix);
        EXPECT_EQ(VolatileClassOf(id), expected.volatileClass);
        EXPECT_EQ(VolatileKeyRootOf(id), static_cast<SymbolicRootId>(expected.stampRoot));
        if (expected.name == nullptr) {
            EXPECT_EQ(root->Name, nullptr);
        } else {
            EXPECT_STREQ(root->Name, expected.name);
            EXPECT_EQ(FindSymbolicRoot(expected.name), root);
            EXPECT_EQ(FindSymbolicRoot(LowerCase(expected.name).c_str()), root);
        }
    }
}

TEST(SymbolicRoots, OtherIdsAndNamesAreNone) {
    for (const std::uint32_t id : {0U, 9U, 100U, 0xFFFFFFFFU}) {
        EXPECT_EQ(FindSymbolicRoot(static_cast<SymbolicRootId>(id)), nullptr);
        EXPECT_EQ(VolatileClassOf(static_cast<SymbolicRootId>(id)), 0);
        EXPECT_EQ(VolatileKeyRootOf(static_cast<SymbolicRootId>(id)), SymbolicRootId::None);
    }
    EXPECT_EQ(FindSymbolicRoot(L""), nullptr);
    EXPECT_EQ(FindSymbolicRoot(L"M_KOR_HKEY_CURRENT_USER_IMAGING_BOARD"), nullptr);
    EXPECT_EQ(FindSymbolicRoot(L"M_KOR_HKEY_LOCAL_MACHINE_RUNTIME2"), nullptr);
    EXPECT_EQ(FindSymbolicRoot(L"HKEY_LOCAL_MACHINE"), nullptr);
}

struct ExpectedHive {
    const wchar_t* name;
    HKEY handle;
};

const ExpectedHive ExpectedHives[] = {
    {L"HKEY_CLASSES_ROOT", HKEY_CLASSES_ROOT},         {L"HKEY_CURRENT_USER", HKEY_CURRENT_USER},
    {L"HKEY_LOCAL_MACHINE", HKEY_LOCAL_MACHINE},       {L"HKEY_USERS", HKEY_USERS},
    {L"HKEY_CURRENT_CONFIG", HKEY_CURRENT_CONFIG},     {L"HKEY_DYN_DATA", HKEY_DYN_DATA},
    {L"HKEY_PERFORMANCE_DATA", HKEY_PERFORMANCE_DATA},
};

TEST(RealRoots, SelectThePredefinedHandles) {
    for (const ExpectedHive& expected : ExpectedHives) {
        const RealRoot* const root = FindRealRoot(expected.name);
        ASSERT_NE(root, nullptr) << expected.name;
        EXPECT_EQ(HandleOf(root->Hive), expected.handle);
        EXPECT_EQ(FindRealRoot(LowerCase(expected.name).c_str()), root);
        EXPECT_EQ(FindRealRoot(expected.handle), root);
    }
    EXPECT_EQ(FindRealRoot(L"HKLM"), nullptr);
    EXPECT_EQ(FindRealRoot(L""), nullptr);
    EXPECT_EQ(FindRealRoot(static_cast<HKEY>(nullptr)), nullptr);
}

} // namespace
