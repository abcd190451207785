// From a textual path to the open key: what the system is asked for, and what the object says then.
#include <algorithm>
#include <memory>

#include "tests/registry/RegistryTest.h"
#include "tests/support/RegistryCalls.h"

namespace {

using test::Runtime;
using test::UserKey;

using Lines = std::vector<std::string>;

class PathResolution : public test::RegistryTest {};

struct PathRow {
    const wchar_t* path;
    const char* opened; // the arguments of the one RegOpenKeyExW
    const wchar_t* fullName;
};

constexpr PathRow Paths[] = {
    {L"M_KOR_HKEY_LOCAL_MACHINE_RUNTIME\\install",
     "HKLM, Software\\Vantrel\\Vantrel Imaging Library\\Runtime\\install",
     L"HKEY_LOCAL_MACHINE\\Software\\Vantrel\\Vantrel Imaging Library\\Runtime\\install"},
    {L"m_kor_hkey_local_machine_runtime",
     "HKLM, Software\\Vantrel\\Vantrel Imaging Library\\Runtime",
     L"HKEY_LOCAL_MACHINE\\Software\\Vantrel\\Vantrel Imaging Library\\Runtime"},
    {L"M_KOR_HKEY_LOCAL_MACHINE_RUNTIME\\",
     "HKLM, Software\\Vantrel\\Vantrel Imaging Library\\Runtime",
     L"HKEY_LOCAL_MACHINE\\Software\\Vantrel\\Vantrel Imaging Library\\Runtime"},
    {L"M_KOR_HKEY_CURRENT_USER_RUNTIME\\a\\b\\\\",
     "k1, Software\\Vantrel\\Vantrel Imaging Library\\Runtime\\a\\b",
     L"HKEY_CURRENT_USER\\Software\\Vantrel\\Vantrel Imaging Library\\Runtime\\a\\b"},
    {L"M_KOR_HKEY_LOCAL_MACHINE_DEVELOPMENT\\x",
     "HKLM, Software\\Vantrel\\Vantrel Imaging Library\\Development\\x",
     L"HKEY_LOCAL_MACHINE\\Software\\Vantrel\\Vantrel Imaging Library\\Development\\x"},
    {L"M_KOR_HKEY_CURRENT_USER_DEVELOPMENT\\x",
     "k1, Software\\Vantrel\\Vantrel Imaging Library\\Development\\x",
     L"HKEY_CURRENT_USER\\Software\\Vantrel\\Vantrel Imaging Library\\Development\\x"},
    {L"M_KOR_HKEY_LOCAL_MACHINE_IMAGING_BOARD\\x", "HKLM, Software\\Vantrel\\Imaging Board\\x",
     L"HKEY_LOCAL_MACHINE\\Software\\Vantrel\\Imaging Board\\x"},
    {L"M_KOR_HKEY_COMMON_TOOLS_FOLDER\\x",
     "HKLM, Software\\Wow6432Node\\Vantrel\\Vantrel Imaging Tools\\x",
     L"HKEY_LOCAL_MACHINE\\Software\\Wow6432Node\\Vantrel\\Vantrel Imaging Tools\\x"},
    {L"M_KOR_HKEY_LOCAL_MACHINE_ROOT\\x", "HKLM, Software\\Vantrel\\Vantrel Imaging Library\\x",
     L"HKEY_LOCAL_MACHINE\\Software\\Vantrel\\Vantrel Imaging Library\\x"},
    {L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantrel\\Vantrel Imaging Library",
     "HKLM, SOFTWARE\\Vantrel\\Vantrel Imaging Library",
     L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantrel\\Vantrel Imaging Library"},
    // Only the first backslash splits, the others belong to the rest.
    {L"HKEY_LOCAL_MACHINE\\\\\\Software", "HKLM, \\\\Software",
     L"HKEY_LOCAL_MACHINE\\\\\\Software"},
    {L"M_KOR_HKEY_LOCAL_MACHINE_ROOT\\\\\\x",
     "HKLM, Software\\Vantrel\\Vantrel Imaging Library\\\\\\x",
     L"HKEY_LOCAL_MACHINE\\Software\\Vantrel\\Vantrel Imaging Library\\\\\\x"},
    {L"hkey_users", "HKU, ", L"HKEY_USERS"},
    // No volatile location is below this root; a key of this name is opened like any other.
    {L"HKEY_USERS\\x\\volatile", "HKU, x\\volatile", L"HKEY_USERS\\x\\volatile"},
    {L"HKEY_LOCAL_MACHINE\\Software/a", "HKLM, Software/a", L"HKEY_LOCAL_MACHINE\\Software/a"},
    {L"HKEY_CLASSES_ROOT\\KORTests", "HKCR, KORTests", L"HKEY_CLASSES_ROOT\\KORTests"},
    {L"HKEY_CURRENT_CONFIG\\KORTests", "HKCC, KORTests", L"HKEY_CURRENT_CONFIG\\KORTests"},
    {L"HKEY_DYN_DATA\\KORTests", "HKDD, KORTests", L"HKEY_DYN_DATA\\KORTests"},
    {L"HKEY_PERFORMANCE_DATA\\KORTests", "HKPD, KORTests", L"HKEY_PERFORMANCE_DATA\\KORTests"},
};

// The open that the object made last, made to succeed whether the key exists or not.
struct OpenResult {
    std::string arguments;
    bool isOpen;
    CKORString fullName;
};

OpenResult OpenAnyhow(CRegistryKey& key, const CKORString& path) {
    test::RegistryCalls calls;
    std::string arguments;
    HOOK_IMPORT(open, RegOpenKeyExW, [&](HKEY root, LPCWSTR subKey, auto... rest) {
        open.Original(root, subKey, rest...);
        arguments = calls.Calls().back();
        return open.Original(HKEY_LOCAL_MACHINE, L"Software", rest...);
    });
    const bool isOpen = key.Open(path, false);
    OpenResult opened{arguments, isOpen, key.GetFullName()};
    key.Close();
    return opened;
}

TEST_F(PathResolution, EveryRootOpensItsKey) {
    for (const PathRow& row : Paths) {
        CRegistryKey key;
        const OpenResult opened = OpenAnyhow(key, row.path);
        EXPECT_EQ(opened.arguments, "RegOpenKeyExW(" + std::string(row.opened) + ", 0, 20019)");
        EXPECT_TRUE(opened.isOpen);
        EXPECT_EQ(opened.fullName, row.fullName);
    }
}

struct IdRow {
    std::uint32_t id;
    bool rtx;
    const char* opened;
};

constexpr IdRow Ids[] = {
    {1, false, "HKLM, Software\\Vantrel\\Vantrel Imaging Library\\Runtime\\s"},
    {1, true,
     "HKLM, Software\\Vantrel\\Vantrel Imaging Library\\RTX\\Vantrel Imaging Library\\Runtime\\s"},
    {2, false, "k1, Software\\Vantrel\\Vantrel Imaging Library\\Runtime\\s"},
    {2, true,
     "HKLM, Software\\Vantrel\\Vantrel Imaging Library\\RTXUser\\Vantrel Imaging "
     "Library\\Runtime\\s"},
    {6, false, "k1, Software\\Vantrel\\Imaging Board\\s"},
    {6, true, "HKLM, Software\\Vantrel\\Vantrel Imaging Library\\RTXUser\\Imaging Board\\s"},
    {7, true,
     "HKLM, Software\\Wow6432Node\\Vantrel\\Vantrel Imaging Library\\RTX\\Vantrel Imaging "
     "Tools\\s"},
    {8, false, "HKLM, Software\\Vantrel\\Vantrel Imaging Library\\s"},
    {0, false, "null, s"},
    {9, false, "null, s"},
    {9, true, "null, s"},
};

TEST_F(PathResolution, IdsOpenTheirKeysInBothLayouts) {
    for (const IdRow& row : Ids) {
        CRegistryKey::SetRtxMode(row.rtx);
        CRegistryKey key;
        test::RegistryCalls calls;
        EXPECT_FALSE(key.OpenSymbolic(static_cast<SymbolicRootId>(row.id), L"s", false));
        const std::string expected = "RegOpenKeyExW(" + std::string(row.opened) + ", 0, 20019)";
        EXPECT_EQ(calls.CountOf("RegOpenKeyExW"), 1);
        EXPECT_NE(std::find(calls.Calls().begin(), calls.Calls().end(), expected),
                  calls.Calls().end())
            << expected << " in " << testing::PrintToString(calls.Calls());
        EXPECT_TRUE(test::IsReset(key));
    }
}

struct UnknownIdRow {
    std::uint32_t id;
    const wchar_t* subPath;
    bool create;
    Lines calls;
};

TEST_F(PathResolution, IdsThatNameNoRootGetNowhere) {
    const UnknownIdRow rows[] = {
        {9, L"s", true, {"RegCreateKeyExW(null, s, 0, -, 0, 20019, -, disposition)"}},
        // A volatile location of a root that does not exist: the root's own key cannot be opened.
        {99, L"volatile", true, {"RegCreateKeyExW(null, , 0, -, 0, 20019, -, disposition)"}},
        {99, L"volatile\\x", false, {"RegOpenKeyExW(null, , 0, 20019)"}},
        {99, L"x\\volatile", false, {}},
        // Without an id, a root's name is missing too: volatile locations are not looked for.
        {0, L"x\\volatile", true, {}},
        {0, L"x\\volatile", false, {"RegOpenKeyExW(null, x\\volatile, 0, 20019)"}},
        {0, L"volatile", false, {}},
    };
    for (const UnknownIdRow& row : rows) {
        SCOPED_TRACE(testing::Message() << row.id << " create " << row.create);
        CRegistryKey key;
        test::RegistryCalls calls;
        EXPECT_FALSE(
            key.OpenSymbolic(static_cast<SymbolicRootId>(row.id), row.subPath, row.create));
        EXPECT_EQ(calls.Calls(), row.calls);
        EXPECT_TRUE(test::IsReset(key));
    }
}

TEST_F(PathResolution, ARefusedStampingDoesNotKeepTheNextOneFromStamping) {
    CRegistryKey refused;
    EXPECT_FALSE(refused.OpenSymbolic(static_cast<SymbolicRootId>(99), L"volatile", true));
    CRegistryKey key;
    EXPECT_TRUE(key.OpenCurrentUserRuntime(L"volatile\\a", true));
    EXPECT_EQ(test::GetRaw(HKEY_CURRENT_USER, Runtime + L"\\volatile", L"PathCreator"),
              test::Text(REG_SZ, L"volatile\\a"));
}

TEST_F(PathResolution, ShortFormsOpenTheRuntimeRoots) {
    test::MakeKey(HKEY_LOCAL_MACHINE, Runtime + L"\\m");
    test::MakeKey(HKEY_CURRENT_USER, Runtime + L"\\u");
    CRegistryKey key;
    EXPECT_TRUE(key.OpenLocalMachineRuntime(L"m", false));
    EXPECT_FALSE(key.OpenLocalMachineRuntime(L"u", false));
    EXPECT_TRUE(key.OpenCurrentUserRuntime(L"u", false));
    EXPECT_FALSE(key.OpenCurrentUserRuntime(L"m", false));
    EXPECT_TRUE(key.OpenCurrentUserRuntime(L"made\\here", true));
    EXPECT_TRUE(test::KeyExists(HKEY_CURRENT_USER, Runtime + L"\\made\\here"));
}

TEST_F(PathResolution, IdsKeepTheLeadingBackslashesOfTheRest) {
    CRegistryKey key;
    test::RegistryCalls calls;
    EXPECT_FALSE(key.OpenSymbolic(SymbolicRootId::LocalMachineRoot, L"\\\\x\\", false));
    EXPECT_EQ(calls.Calls(), Lines{"RegOpenKeyExW(HKLM, Software\\Vantrel\\Vantrel Imaging "
                                   "Library\\\\\\x, 0, 20019)"});
}

// The layout is the object's own from its construction on.
TEST_F(PathResolution, LayoutIsTakenAtConstruction) {
    EXPECT_FALSE(CRegistryKey::RtxMode());
    CRegistryKey plain;
    CRegistryKey::SetRtxMode(true);
    EXPECT_TRUE(CRegistryKey::RtxMode());
    CRegistryKey rtx;
    CRegistryKey::SetRtxMode(false);

    EXPECT_EQ(OpenAnyhow(plain, L"M_KOR_HKEY_LOCAL_MACHINE_ROOT").fullName,
              L"HKEY_LOCAL_MACHINE\\Software\\Vantrel\\Vantrel Imaging Library");
    EXPECT_EQ(OpenAnyhow(rtx, L"M_KOR_HKEY_LOCAL_MACHINE_ROOT").fullName,
              L"HKEY_LOCAL_MACHINE\\Software\\Vantrel\\Vantrel Imaging Library\\RTX\\Vantrel "
              L"Imaging Library");
}

TEST_F(PathResolution, TheLayoutOfTheObjectTellsItsVolatileLocations) {
    constexpr wchar_t PlainLocation[] =
        L"HKEY_LOCAL_MACHINE\\Software\\Vantrel\\Vantrel Imaging Library\\Runtime\\volatile\\x";
    constexpr wchar_t RtxLocation[] =
        L"HKEY_LOCAL_MACHINE\\Software\\Vantrel\\Vantrel Imaging Library\\RTX\\Vantrel Imaging "
        L"Library\\Runtime\\volatile\\x";
    CRegistryKey plain;
    CRegistryKey::SetRtxMode(true);
    CRegistryKey rtx;
    for (const bool mode : {false, true}) {
        CRegistryKey::SetRtxMode(mode);
        test::RegistryCalls calls;
        EXPECT_FALSE(plain.Open(RtxLocation, true));
        EXPECT_FALSE(rtx.Open(PlainLocation, true));
        EXPECT_TRUE(calls.Calls().empty()) << testing::PrintToString(calls.Calls());
        EXPECT_TRUE(plain.Open(PlainLocation, true));
        EXPECT_TRUE(rtx.Open(RtxLocation, true));
        EXPECT_TRUE(plain.CloseIfOpen());
        EXPECT_TRUE(rtx.CloseIfOpen());
    }
}

void ExpectAnOpenKeyIsReset(const wchar_t* refusedPath) {
    CRegistryKey key(L"HKEY_LOCAL_MACHINE\\Software");
    ASSERT_TRUE(key.IsOpen());
    test::RegistryCalls calls;
    EXPECT_FALSE(key.Open(refusedPath, true));
    EXPECT_EQ(calls.Calls(), Lines{"RegCloseKey(?)"});
    EXPECT_TRUE(test::IsReset(key));
}

TEST_F(PathResolution, WrongRootsLeaveTheKeyReset) {
    for (const wchar_t* path : {L"HKLM\\SOFTWARE", L"", L"\\", L"\\Software", L"HKEY_LOCAL_MACHIN",
                                L"HKEY_LOCAL_MACHINE/Software", L"Software"}) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(path)));
        ExpectAnOpenKeyIsReset(path);
    }
}

TEST_F(PathResolution, RefusedVolatilePathsOpenNothing) {
    test::MakeKey(HKEY_CURRENT_USER, Runtime + L"\\a\\volatile");
    CRegistryKey key;
    test::RegistryCalls calls;
    EXPECT_FALSE(key.Open(L"M_KOR_HKEY_CURRENT_USER_RUNTIME\\a\\volatile", false));
    EXPECT_FALSE(key.Open(L"M_KOR_HKEY_CURRENT_USER_RUNTIME\\NonVolatile", true));
    EXPECT_FALSE(key.Open(L"HKEY_USERS\\x\\volatile", true));
    EXPECT_FALSE(key.Open(L"HKEY_LOCAL_MACHINE\\volatile", false));
    EXPECT_FALSE(key.Open(L"HKLM\\volatile\\x", false));
    EXPECT_TRUE(calls.Calls().empty()) << testing::PrintToString(calls.Calls());
    EXPECT_EQ(key.GetFullName(), L"");
}

TEST_F(PathResolution, RefusedVolatilePathsLeaveAnOpenKeyClosedAndReset) {
    for (const wchar_t* path :
         {L"M_KOR_HKEY_CURRENT_USER_RUNTIME\\a\\volatile", L"HKEY_LOCAL_MACHINE\\volatile"}) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(path)));
        ExpectAnOpenKeyIsReset(path);
    }
}

// First nothing of it is there, then the root's key, then its "volatile" without the key that is
// asked for.
TEST_F(PathResolution, AMissingVolatileKeyBelowARealRootLeavesTheKeyReset) {
    for (const std::wstring& present : {test::Library, Runtime, Runtime + L"\\volatile"}) {
        SCOPED_TRACE(testing::PrintToString(present));
        test::MakeKey(HKEY_CURRENT_USER, present);
        test::BalancedCalls calls;
        CRegistryKey key;
        EXPECT_FALSE(key.Open(L"HKEY_CURRENT_USER\\Software\\Vantrel\\Vantrel Imaging "
                              L"Library\\Runtime\\volatile\\x",
                              false));
        EXPECT_TRUE(test::IsReset(key));
    }
}

TEST_F(PathResolution, OtherVolatileKeysAreReadAsOrdinaryOnes) {
    test::MakeKey(HKEY_CURRENT_USER, L"Software\\KORTests\\my volatile key");
    CRegistryKey key;
    EXPECT_TRUE(key.Open(L"HKEY_CURRENT_USER\\Software\\KORTests\\my volatile key", false));
    EXPECT_FALSE(key.LockVolatile());
    EXPECT_FALSE(key.Open(L"HKEY_CURRENT_USER\\Software\\KORTests\\my volatile key", true));
}

TEST_F(PathResolution, OpeningAgainClosesFirst) {
    test::MakeKey(HKEY_CURRENT_USER, Runtime);
    test::BalancedCalls calls;
    {
        CRegistryKey key(L"M_KOR_HKEY_CURRENT_USER_RUNTIME");
        EXPECT_TRUE(key.IsOpen());
        EXPECT_TRUE(key.Open(L"HKEY_LOCAL_MACHINE\\Software", false));
        EXPECT_TRUE(key.OpenSymbolic(SymbolicRootId::CurrentUserRuntime, L"", false));
    }
    const std::string runtime = "Software\\Vantrel\\Vantrel Imaging Library\\Runtime";
    EXPECT_EQ(calls.Calls(), (Lines{
                                 "RegOpenCurrentUser(f003f)",
                                 "RegOpenKeyExW(k1, " + runtime + ", 0, 20019)",
                                 "RegCloseKey(k2)",
                                 "RegCloseKey(k1)",
                                 "RegOpenKeyExW(HKLM, Software, 0, 20019)",
                                 "RegCloseKey(k3)",
                                 "RegOpenCurrentUser(f003f)",
                                 "RegOpenKeyExW(k4, " + runtime + ", 0, 20019)",
                                 "RegCloseKey(k5)",
                                 "RegCloseKey(k4)",
                             }));
}

// An object that a failed move left closed, still knowing a volatile key and that it created it.
class OpeningAfterAFailedMove : public PathResolution {
protected:
    void SetUp() override {
        PathResolution::SetUp();
        // The location exists, so that there is no companion, which would flush as well.
        test::MakeKey(HKEY_CURRENT_USER, Runtime);
        test::MakeKey(HKEY_CURRENT_USER, Runtime + L"\\volatile", true);
        ASSERT_TRUE(m_key->OpenCurrentUserRuntime(L"volatile\\x", true));
        ASSERT_FALSE(m_key->OpenRelative(L"missing"));
        ASSERT_FALSE(m_key->IsOpen());
        ASSERT_EQ(m_key->GetFullName(), L"HKEY_CURRENT_USER\\Software\\Vantrel\\Vantrel Imaging "
                                        L"Library\\Runtime\\volatile\\x");
    }

    std::unique_ptr<CRegistryKey> m_key = std::make_unique<CRegistryKey>();
};

TEST_F(OpeningAfterAFailedMove, CreatesOrdinaryKeys) {
    {
        test::RegistryCalls calls;
        EXPECT_TRUE(m_key->Open(CKORString(UserKey) + L"\\new", true));
        EXPECT_EQ(calls.Calls(), (Lines{"RegOpenCurrentUser(f003f)",
                                        "RegCreateKeyExW(k1, Software\\KORTests\\new, 0, -, 0, "
                                        "20019, -, disposition)"}));
    }
    EXPECT_FALSE(m_key->LockVolatile());
    EXPECT_FALSE(test::IsVolatileKey(HKEY_CURRENT_USER, L"Software\\KORTests\\new"));
}

TEST_F(OpeningAfterAFailedMove, StartsFromNoRoot) {
    test::RegistryCalls calls;
    EXPECT_FALSE(m_key->OpenSymbolic(static_cast<SymbolicRootId>(9), L"s", false));
    EXPECT_EQ(calls.Calls(), Lines{"RegOpenKeyExW(null, s, 0, 20019)"});
    EXPECT_EQ(m_key->GetFullName(), L"");
}

TEST_F(OpeningAfterAFailedMove, ForgetsTheOldKeyAlsoWhenItIsRefused) {
    for (const wchar_t* path : {L"M_KOR_HKEY_CURRENT_USER_RUNTIME\\a\\volatile",
                                L"HKEY_LOCAL_MACHINE\\volatile", L"HKLM\\Software"}) {
        auto other = std::make_unique<CRegistryKey>();
        ASSERT_TRUE(other->OpenCurrentUserRuntime(L"volatile\\x", true));
        ASSERT_FALSE(other->OpenRelative(L"missing"));
        test::RegistryCalls calls;
        EXPECT_FALSE(other->Open(path, true));
        EXPECT_EQ(other->GetFullName(), L"");
        EXPECT_FALSE(other->OpenResolved(false, false, false)) << "there is no key to be opened";
        EXPECT_EQ(calls.Calls(), Lines{"RegOpenKeyExW(null, , 0, 20019)"});
        calls.Clear();
        other.reset();
        EXPECT_TRUE(calls.Calls().empty()) << "and none to be flushed";
    }
}

TEST_F(OpeningAfterAFailedMove, ForgetsThatTheOldKeyWasCreated) {
    test::MakeKey(HKEY_CURRENT_USER, test::TestSubKey);
    test::RegistryCalls calls;
    EXPECT_TRUE(m_key->Open(UserKey, false));
    m_key.reset();
    EXPECT_EQ(calls.CountOf("RegFlushKey"), 0);
    EXPECT_EQ(calls.CountOf("RegCloseKey"), 2);
}

TEST_F(OpeningAfterAFailedMove, ForgetsThatAlsoForASymbolicRoot) {
    test::RegistryCalls calls;
    EXPECT_TRUE(m_key->OpenCurrentUserRuntime(L"", false));
    m_key.reset();
    EXPECT_EQ(calls.CountOf("RegFlushKey"), 0);
    EXPECT_EQ(calls.CountOf("RegCloseKey"), 2);
}

TEST_F(PathResolution, FullNameOfAResetKeyIsEmpty) {
    const CRegistryKey key;
    EXPECT_EQ(key.GetFullName(), L"");
}

} // namespace
