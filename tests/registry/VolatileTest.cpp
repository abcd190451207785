// Volatile locations: which keys are stamped, with what, and when.
#include <algorithm>
#include <ctime>
#include <utility>

#include "tests/registry/RegistryTest.h"
#include "tests/support/GuardedMemory.h"
#include "tests/support/RegistryCalls.h"

namespace {

using test::Library;
using test::Runtime;

const std::wstring Tools = L"Software\\Wow6432Node\\Vantrel\\Vantrel Imaging Tools";

using Volatile = test::WritableTest;

struct RootRow {
    std::uint32_t id;
    const wchar_t* name; // null: by its id only
    HKEY hive;
    std::wstring base;
    std::wstring stampBase; // where the key "volatile" is made
    bool canLock;
};

const RootRow Roots[] = {
    {1, L"M_KOR_HKEY_LOCAL_MACHINE_RUNTIME", HKEY_LOCAL_MACHINE, Runtime, Runtime, true},
    {2, L"M_KOR_HKEY_CURRENT_USER_RUNTIME", HKEY_CURRENT_USER, Runtime, Runtime, true},
    {3, L"M_KOR_HKEY_LOCAL_MACHINE_DEVELOPMENT", HKEY_LOCAL_MACHINE, Library + L"\\Development",
     Library + L"\\Development", true},
    {4, L"M_KOR_HKEY_CURRENT_USER_DEVELOPMENT", HKEY_CURRENT_USER, Library + L"\\Development",
     Library + L"\\Development", true},
    {5, L"M_KOR_HKEY_LOCAL_MACHINE_IMAGING_BOARD", HKEY_LOCAL_MACHINE,
     test::Vantrel + L"\\Imaging Board", test::Vantrel + L"\\Imaging Board", false},
    {7, L"M_KOR_HKEY_COMMON_TOOLS_FOLDER", HKEY_LOCAL_MACHINE, Tools, Tools, true},
    {8, L"M_KOR_HKEY_LOCAL_MACHINE_ROOT", HKEY_LOCAL_MACHINE, Library, Library, false},
};

void ExpectStamps(HKEY hive, const std::wstring& volatileKey, const std::wstring& creatorPath) {
    const auto time = test::GetRaw(hive, volatileKey, L"Creation Time");
    ASSERT_TRUE(time.has_value());
    EXPECT_EQ(time->type, DWORD{REG_DWORD});
    ASSERT_EQ(time->data.size(), 4U);
    std::uint32_t seconds = 0;
    memcpy(&seconds, time->data.data(), sizeof seconds);
    const auto now = static_cast<std::uint32_t>(_time64(nullptr));
    EXPECT_LE(now - seconds, 60U);

    wchar_t module[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, module, MAX_PATH);
    EXPECT_EQ(test::GetRaw(hive, volatileKey, L"Process Name"),
              test::Text(REG_SZ, wcsrchr(module, L'\\') + 1));
    EXPECT_EQ(test::GetRaw(hive, volatileKey, L"PathCreator"), test::Text(REG_SZ, creatorPath));
}

TEST_F(Volatile, TheFirstOpeningOfEachRootStamps) {
    for (const RootRow& row : Roots) {
        SCOPED_TRACE(row.id);
        const std::wstring volatileKey = row.stampBase + L"\\volatile";
        {
            CRegistryKey key;
            ASSERT_TRUE(key.Open(CKORString(row.name) + L"\\Volatile\\a\\b", true));
            EXPECT_TRUE(test::IsVolatileKey(row.hive, volatileKey));
            EXPECT_TRUE(test::IsVolatileKey(row.hive, row.base + L"\\volatile\\a\\b"));
            ExpectStamps(row.hive, volatileKey, L"Volatile\\a\\b");
            EXPECT_FALSE(test::GetRaw(row.hive, volatileKey, L"ValueCreator").has_value());

            // Only the first value's name becomes a stamp, and only once it is written.
            EXPECT_FALSE(key.DeleteValue(L"missing"));
            EXPECT_TRUE(key.WriteDword(L"first", 1U));
            EXPECT_TRUE(key.WriteDword(L"second", 2U));
            EXPECT_EQ(test::GetRaw(row.hive, volatileKey, L"ValueCreator"),
                      test::Text(REG_SZ, L"first"));

            EXPECT_TRUE(key.CreateSubKey(L"made"));
            EXPECT_TRUE(test::IsVolatileKey(row.hive, row.base + L"\\volatile\\a\\b\\made"));
            EXPECT_EQ(key.LockVolatile(), row.canLock);
            EXPECT_EQ(key.UnlockVolatile(), row.canLock);
        }
        // Opened again, nothing is stamped: the stamps that are there stay.
        test::SetRaw(row.hive, volatileKey, L"Creation Time", test::Dword(12345));
        CRegistryKey again;
        ASSERT_TRUE(again.Open(CKORString(row.name) + L"\\volatile\\other", true));
        EXPECT_TRUE(again.WriteDword(L"third", 3U));
        EXPECT_EQ(test::GetRaw(row.hive, volatileKey, L"Creation Time"), test::Dword(12345));
        EXPECT_EQ(test::GetRaw(row.hive, volatileKey, L"PathCreator"),
                  test::Text(REG_SZ, L"Volatile\\a\\b"));
        EXPECT_EQ(test::GetRaw(row.hive, volatileKey, L"ValueCreator"),
                  test::Text(REG_SZ, L"first"));
        EXPECT_TRUE(test::IsVolatileKey(row.hive, row.base + L"\\volatile\\other"));
        again.Close();
        TearDown();
        SetUp();
    }
}

// The current user's imaging board has no volatile keys of its own; its opening stamps the local
// machine's.
TEST_F(Volatile, TheImagingBoardOfTheUserIsIrregular) {
    const std::wstring board = test::Vantrel + L"\\Imaging Board";
    CRegistryKey key;
    ASSERT_TRUE(key.OpenSymbolic(SymbolicRootId::CurrentUserImagingBoard, L"volatile\\x", true));
    EXPECT_TRUE(test::IsVolatileKey(HKEY_LOCAL_MACHINE, board + L"\\volatile"));
    ExpectStamps(HKEY_LOCAL_MACHINE, board + L"\\volatile", L"volatile\\x");
    EXPECT_FALSE(test::IsVolatileKey(HKEY_CURRENT_USER, board + L"\\volatile\\x"));
    EXPECT_TRUE(key.WriteDword(L"first", 1U));
    EXPECT_FALSE(test::GetRaw(HKEY_LOCAL_MACHINE, board + L"\\volatile", L"ValueCreator"));
    test::RegistryCalls calls;
    EXPECT_FALSE(key.LockVolatile());
    EXPECT_TRUE(calls.Calls().empty());
}

// The user's own key "volatile" is the one that is looked for.
TEST_F(Volatile, TheImagingBoardOfTheUserStampsOnce) {
    const std::wstring volatileKey = test::Vantrel + L"\\Imaging Board\\volatile";
    for (const wchar_t* path : {L"volatile\\x", L"volatile\\y"}) {
        CRegistryKey key;
        ASSERT_TRUE(key.OpenSymbolic(SymbolicRootId::CurrentUserImagingBoard, path, true));
        ExpectStamps(HKEY_LOCAL_MACHINE, volatileKey, L"volatile\\x");
    }
    EXPECT_EQ(test::TreeOf(HKEY_CURRENT_USER, volatileKey),
              (std::vector<std::wstring>{L"x", L"y"}));
}

TEST_F(Volatile, RealPathsReachTheSameLocations) {
    for (const RootRow& row : Roots) {
        SCOPED_TRACE(row.id);
        const wchar_t* const hive =
            row.hive == HKEY_CURRENT_USER ? L"HKEY_CURRENT_USER" : L"HKEY_LOCAL_MACHINE";
        const std::wstring rest = row.base + L"\\Volatile\\x";
        CRegistryKey key;
        ASSERT_TRUE(key.Open(CKORString(hive) + L"\\" + rest.c_str(), true));
        ExpectStamps(row.hive, row.stampBase + L"\\volatile", rest);
        EXPECT_TRUE(test::IsVolatileKey(row.hive, row.base + L"\\volatile\\x"));
        EXPECT_TRUE(key.WriteDword(L"first", 1U));
        EXPECT_EQ(test::GetRaw(row.hive, row.stampBase + L"\\volatile", L"ValueCreator"),
                  test::Text(REG_SZ, L"first"));
        key.Close();
        TearDown();
        SetUp();
    }
}

TEST_F(Volatile, TheRealTimeLayoutStampsItsOwnRoots) {
    CRegistryKey::ClearAllowWritesAnywhere();
    CRegistryKey::SetRtxMode(true);
    CRegistryKey key;
    ASSERT_TRUE(key.OpenCurrentUserRuntime(L"volatile", true));
    const std::wstring volatileKey =
        Library + L"\\RTXUser\\Vantrel Imaging Library\\Runtime\\volatile";
    ExpectStamps(HKEY_LOCAL_MACHINE, volatileKey, L"volatile");
    EXPECT_TRUE(key.WriteDword(L"v", 1U));
    EXPECT_EQ(test::GetRaw(HKEY_LOCAL_MACHINE, volatileKey, L"ValueCreator"),
              test::Text(REG_SZ, L"v"));
}

// A real path of the user's reaches the location that is compared with it, while the key "volatile"
// is made where the root lies: below the local machine.
TEST_F(Volatile, TheRealTimeLayoutStampsARealPathElsewhere) {
    CRegistryKey::ClearAllowWritesAnywhere();
    CRegistryKey::SetRtxMode(true);
    const std::wstring volatileKey =
        Library + L"\\RTXUser\\Vantrel Imaging Library\\Runtime\\volatile";
    const std::wstring rest = volatileKey + L"\\x";
    CRegistryKey key;
    ASSERT_TRUE(key.Open(CKORString(L"HKEY_CURRENT_USER\\") + rest.c_str(), true));
    EXPECT_EQ(key.GetFullName(), CKORString(L"HKEY_CURRENT_USER\\") + rest.c_str());
    EXPECT_TRUE(key.WriteDword(L"v", 1U));
    EXPECT_TRUE(test::IsVolatileKey(HKEY_LOCAL_MACHINE, volatileKey));
    ExpectStamps(HKEY_LOCAL_MACHINE, volatileKey, rest);
    EXPECT_EQ(test::GetRaw(HKEY_LOCAL_MACHINE, volatileKey, L"ValueCreator"),
              test::Text(REG_SZ, L"v"));
    EXPECT_FALSE(test::KeyExists(HKEY_LOCAL_MACHINE, rest));
    EXPECT_EQ(test::TreeOf(HKEY_CURRENT_USER, volatileKey),
              (std::vector<std::wstring>{L"x", L"x:v"}));
    EXPECT_TRUE(test::IsVolatileKey(HKEY_CURRENT_USER, rest));
}

// The stamps follow the layout of the process, whatever the object's own is.
TEST_F(Volatile, TheLayoutOfTheObjectDoesNotGoWithTheCompanion) {
    CRegistryKey::SetRtxMode(true);
    CRegistryKey key;
    CRegistryKey::SetRtxMode(false);
    ASSERT_TRUE(key.OpenCurrentUserRuntime(L"volatile\\x", true));
    ExpectStamps(HKEY_CURRENT_USER, Runtime + L"\\volatile", L"volatile\\x");
    EXPECT_EQ(test::TreeOf(HKEY_LOCAL_MACHINE,
                           Library + L"\\RTXUser\\Vantrel Imaging Library\\Runtime\\volatile"),
              std::vector<std::wstring>{L"x"});
}

TEST_F(Volatile, PathCreatorIsThePathAsItWasPassed) {
    for (const std::wstring path : {L"Volatile\\A\\", L"\\volatile\\\\", L"VOLATILE/x"}) {
        CRegistryKey key;
        ASSERT_TRUE(key.OpenCurrentUserRuntime(path.c_str(), true));
        EXPECT_EQ(test::GetRaw(HKEY_CURRENT_USER, Runtime + L"\\volatile", L"PathCreator"),
                  test::Text(REG_SZ, path));
        key.CloseIfOpen();
        TearDown();
        SetUp();
    }
}

TEST_F(Volatile, TheTimeIsTakenBeforeTheNameOfTheProgram) {
    std::string order;
    HOOK_IMPORT(clock, _time64, [&](__time64_t* result) {
        order += "time ";
        return clock.Original(result);
    });
    HOOK_IMPORT(module, GetModuleFileNameW, [&](auto... all) {
        order += "name ";
        return module.Original(all...);
    });
    CRegistryKey key;
    EXPECT_TRUE(key.OpenCurrentUserRuntime(L"volatile", true));
    EXPECT_EQ(order, "time name ");
}

TEST_F(Volatile, TheTimeIsCutToItsLowHalf) {
    constexpr std::pair<std::int64_t, std::uint32_t> Times[] = {{0x100000005, 5}, {-1, 0xffffffff}};
    for (const auto& [time, stamp] : Times) {
        SCOPED_TRACE(time);
        const __time64_t now = time;
        HOOK_IMPORT(clock, _time64, [&](__time64_t* result) {
            EXPECT_EQ(result, nullptr);
            return now;
        });
        CRegistryKey key;
        EXPECT_TRUE(key.OpenCurrentUserRuntime(L"volatile", true));
        EXPECT_EQ(test::GetRaw(HKEY_CURRENT_USER, Runtime + L"\\volatile", L"Creation Time"),
                  test::Dword(stamp));
        key.Close();
        TearDown();
        SetUp();
    }
}

// The writable-root rule holds for stamps too, and a refused stamp is no failure.
TEST_F(Volatile, StampsThatMayNotBeWrittenAreLeftOut) {
    CRegistryKey::ClearAllowWritesAnywhere();
    CRegistryKey key;
    EXPECT_TRUE(key.OpenLocalMachineRuntime(L"volatile\\x", true));
    EXPECT_TRUE(test::IsVolatileKey(HKEY_LOCAL_MACHINE, Runtime + L"\\volatile\\x"));
    EXPECT_TRUE(test::TreeOf(HKEY_LOCAL_MACHINE, Runtime + L"\\volatile") ==
                std::vector<std::wstring>{L"x"});
    EXPECT_FALSE(key.WriteDword(L"v", 1U));
}

TEST_F(Volatile, AStampThatFailsDoesNotKeepTheOthersFromBeingWritten) {
    using Names = std::vector<std::wstring>;
    for (const std::wstring refused : {L"Creation Time", L"Process Name", L"PathCreator"}) {
        CRegistryKey key;
        {
            HOOK_IMPORT(set, RegSetValueExW, [&](HKEY opened, LPCWSTR name, auto... rest) {
                return name == refused ? LSTATUS{ERROR_ACCESS_DENIED}
                                       : set.Original(opened, name, rest...);
            });
            EXPECT_TRUE(key.OpenCurrentUserRuntime(L"volatile", true));
        }
        Names expected = {L":Creation Time", L":PathCreator", L":Process Name"};
        expected.erase(std::find(expected.begin(), expected.end(), L":" + refused));
        EXPECT_EQ(test::TreeOf(HKEY_CURRENT_USER, Runtime + L"\\volatile"), expected);
        key.Close();
        TearDown();
        SetUp();
    }
}

TEST_F(Volatile, WithoutCreationAMissingKeyFails) {
    test::MakeKey(HKEY_CURRENT_USER, Runtime);
    CRegistryKey key;
    EXPECT_FALSE(key.OpenCurrentUserRuntime(L"volatile", false));
    EXPECT_TRUE(test::IsReset(key));
    EXPECT_FALSE(test::KeyExists(HKEY_CURRENT_USER, Runtime + L"\\volatile"));
    // Without even the root there is nothing either.
    EXPECT_FALSE(key.OpenSymbolic(SymbolicRootId::CurrentUserDevelopment, L"volatile", false));
    EXPECT_FALSE(test::KeyExists(HKEY_CURRENT_USER, Library + L"\\Development"));
    // With the key, a location in it opens when it exists.
    test::MakeKey(HKEY_CURRENT_USER, Runtime + L"\\volatile\\x", true);
    EXPECT_TRUE(key.OpenCurrentUserRuntime(L"volatile\\x", false));
    EXPECT_FALSE(key.OpenCurrentUserRuntime(L"volatile\\y", false));
    EXPECT_TRUE(test::TreeOf(HKEY_CURRENT_USER, Runtime + L"\\volatile") ==
                std::vector<std::wstring>{L"x"});
}

// A companion that an earlier stamping of the same object left open receives the stamps.
TEST_F(Volatile, WithoutCreationACompanionThatIsOpenServes) {
    CRegistryKey key;
    ASSERT_TRUE(key.OpenCurrentUserRuntime(L"volatile\\x", true));
    test::MakeKey(HKEY_CURRENT_USER, Library + L"\\Development");
    EXPECT_FALSE(key.OpenSymbolic(SymbolicRootId::CurrentUserDevelopment, L"volatile\\y", false))
        << "the stamping goes well, the key is still missing";
    EXPECT_EQ(test::GetRaw(HKEY_CURRENT_USER, Runtime + L"\\volatile", L"PathCreator"),
              test::Text(REG_SZ, L"volatile\\y"));
    EXPECT_FALSE(test::KeyExists(HKEY_CURRENT_USER, Library + L"\\Development\\volatile"));
}

TEST_F(Volatile, WithoutMemoryForTheCompanionTheOpeningFails) {
    CRegistryKey key;
    const std::int64_t blocks = test::LiveBlocks();
    {
        const test::AllocationFailure failure(1, sizeof(CRegistryKey));
        EXPECT_FALSE(key.OpenCurrentUserRuntime(L"volatile\\x", true));
        EXPECT_TRUE(failure.Happened());
    }
    EXPECT_TRUE(test::IsReset(key));
    EXPECT_EQ(test::LiveBlocks(), blocks);
    EXPECT_FALSE(test::KeyExists(HKEY_CURRENT_USER, Runtime + L"\\volatile"));
    EXPECT_TRUE(key.OpenCurrentUserRuntime(L"volatile\\x", true));
    ExpectStamps(HKEY_CURRENT_USER, Runtime + L"\\volatile", L"volatile\\x");
}

TEST_F(Volatile, ASecondStampingReplacesTheCompanion) {
    const std::wstring development = Library + L"\\Development\\volatile";
    CRegistryKey key;
    ASSERT_TRUE(key.OpenCurrentUserRuntime(L"volatile\\x", true));
    test::RegistryCalls calls;
    ASSERT_TRUE(key.OpenSymbolic(SymbolicRootId::CurrentUserDevelopment, L"volatile\\y", true));
    EXPECT_TRUE(key.WriteDword(L"first", 1U));
    ExpectStamps(HKEY_CURRENT_USER, development, L"volatile\\y");
    EXPECT_EQ(test::GetRaw(HKEY_CURRENT_USER, development, L"ValueCreator"),
              test::Text(REG_SZ, L"first"));
    EXPECT_EQ(test::GetRaw(HKEY_CURRENT_USER, Runtime + L"\\volatile", L"PathCreator"),
              test::Text(REG_SZ, L"volatile\\x"));
    EXPECT_FALSE(test::GetRaw(HKEY_CURRENT_USER, Runtime + L"\\volatile", L"ValueCreator"));
    EXPECT_EQ(calls.CountOf("RegFlushKey"), 1) << "the first companion had written its stamps";
}

TEST_F(Volatile, CopiesStampTheirDestination) {
    test::SetRaw(HKEY_CURRENT_USER, L"Software\\KORTests", L"copied", test::Dword(1));
    CRegistryKey key(L"HKEY_CURRENT_USER\\Software\\KORTests");
    EXPECT_TRUE(key.CopyValues(L"M_KOR_HKEY_CURRENT_USER_RUNTIME\\volatile\\x"));
    EXPECT_EQ(test::GetRaw(HKEY_CURRENT_USER, Runtime + L"\\volatile", L"ValueCreator"),
              test::Text(REG_SZ, L"copied"));
    EXPECT_TRUE(test::IsVolatileKey(HKEY_CURRENT_USER, Runtime + L"\\volatile\\x"));
}

TEST_F(Volatile, APathWithoutBackslashNamesNoProcess) {
    for (const DWORD length : {DWORD{0}, DWORD{11}}) {
        HOOK_IMPORT(module, GetModuleFileNameW, [&](HMODULE handle, LPWSTR path, DWORD size) {
            EXPECT_EQ(handle, nullptr);
            EXPECT_EQ(size, 260U);
            wcscpy(path, length == 0 ? L"" : L"program.exe");
            return length;
        });
        CRegistryKey key;
        EXPECT_TRUE(key.OpenCurrentUserRuntime(L"volatile", true));
        EXPECT_EQ(test::GetRaw(HKEY_CURRENT_USER, Runtime + L"\\volatile", L"Process Name"),
                  test::Text(REG_SZ, L""));
        key.Close();
        TearDown();
        SetUp();
    }
}

// A module path that fills the buffer comes back without a terminator on old systems.
TEST_F(Volatile, AModulePathThatFillsTheBufferIsCut) {
    HOOK_IMPORT(module, GetModuleFileNameW, [](HMODULE, LPWSTR path, DWORD size) {
        std::fill_n(path, size, L'p');
        path[3] = L'\\';
        return size;
    });
    CRegistryKey key;
    EXPECT_TRUE(key.OpenCurrentUserRuntime(L"volatile", true));
    EXPECT_EQ(test::GetRaw(HKEY_CURRENT_USER, Runtime + L"\\volatile", L"Process Name"),
              test::Text(REG_SZ, std::wstring(255, L'p')));
}

TEST_F(Volatile, StampingMakesItsCallsInOrder) {
    const std::string runtime = "Software\\Vantrel\\Vantrel Imaging Library\\Runtime";
    test::BalancedCalls calls;
    {
        CRegistryKey key;
        ASSERT_TRUE(key.OpenLocalMachineRuntime(L"volatile\\x", true));
    }
    const std::string companion = "RegOpenKeyExW(HKLM, " + runtime + "\\volatile, 0, ";
    std::vector<std::string> expected = {
        "RegCreateKeyExW(HKLM, " + runtime + ", 0, -, 0, 20019, -, disposition)",
        "RegOpenKeyExW(k1, volatile, 0, 20019)",
        "RegCloseKey(k1)",
        "RegCreateKeyExW(HKLM, " + runtime + "\\volatile, 0, -, 1, 20019, -, disposition)",
    };
    // Each stamp opens its key twice.
    int handle = 2;
    const auto stamp = [&](const std::string& set) {
        const auto name = [](int number) { return "k" + std::to_string(number); };
        expected.push_back("RegCloseKey(" + name(handle) + ")");
        expected.push_back(companion + "f003f)");
        expected.push_back("RegSetValueExW(" + name(handle + 1) + ", " + set);
        expected.push_back("RegCloseKey(" + name(handle + 1) + ")");
        expected.push_back(companion + "20019)");
        handle += 2;
    };
    // A copy: the call below is recorded too.
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization)
    const std::vector<std::string> made = calls.Calls();
    wchar_t module[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, module, MAX_PATH);
    expected.emplace_back("GetModuleFileNameW(-, 260)");
    stamp("Creation Time, 0, 4, 4)");
    stamp("Process Name, 0, 1, " + std::to_string(2 * (wcslen(wcsrchr(module, L'\\') + 1) + 1)) +
          ")");
    stamp("PathCreator, 0, 1, 22)");
    expected.push_back("RegCreateKeyExW(HKLM, " + runtime +
                       "\\volatile\\x, 0, -, 1, 20019, -, disposition)");
    // The companion goes first.
    expected.insert(expected.end(),
                    {"RegFlushKey(k8)", "RegCloseKey(k8)", "RegFlushKey(k9)", "RegCloseKey(k9)"});
    EXPECT_EQ(made, expected);
}

} // namespace
