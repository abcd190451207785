// Creating and deleting subkeys, alone and with everything in them.
#include "tests/registry/TreeTest.h"
#include "tests/support/RegistryCalls.h"

namespace {

using Lines = std::vector<std::string>;
using Tree = std::vector<std::wstring>;

using TreeDeletion = test::TreeTest;

TEST_F(TreeDeletion, CreatesSubKeys) {
    test::BalancedCalls calls;
    CRegistryKey key(test::UserKey);
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
}

TEST_F(TreeDeletion, DeleteTreeLeavesTheEmptySubKey) {
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

TEST_F(TreeDeletion, DeleteTreeMakesItsCallsInOrder) {
    Set(L"t", L"v");
    Make(L"t\\a");
    test::RegistryCalls calls;
    CRegistryKey key(test::UserKey);
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

TEST_F(TreeDeletion, DeleteTreeTakesRelativePaths) {
    Set(L"t\\u", L"v");
    Make(L"t\\u\\a");
    EXPECT_TRUE(m_key.DeleteTree(L"t\\u"));
    EXPECT_EQ(Below(), (Tree{L"t", L"t\\u"}));
    ExpectAtStart();
}

// The way back is to where the object was, not just one level up.
TEST_F(TreeDeletion, DeleteTreeComesBackFromElsewhere) {
    Make(L"a");
    Set(L"b", L"v");
    Make(L"b\\below\\deeper");
    Set(L"c", L"v");
    Make(L"c\\below");
    CRegistryKey key(L"HKEY_CURRENT_USER\\Software\\KORTests\\a");
    for (const wchar_t* path : {L"..\\b", L"\\Software\\KORTests\\c"}) {
        EXPECT_TRUE(key.DeleteTree(path));
        EXPECT_TRUE(key.EnumSubKeyNames(m_names)) << "open";
        EXPECT_EQ(key.GetFullName(), L"HKEY_CURRENT_USER\\Software\\KORTests\\a");
    }
    EXPECT_EQ(Below(), (Tree{L"a", L"b", L"c"}));
}

TEST_F(TreeDeletion, DeleteTreeOfNothingFailsAndStays) {
    for (const wchar_t* path : {L"missing", L"", L"missing\\a", L"\\..", L"\\missing"}) {
        EXPECT_FALSE(m_key.DeleteTree(path));
        ExpectAtStart();
    }
}

// A key may bear the name of the way up. It must not lead out of the tree that is deleted.
TEST_F(TreeDeletion, AKeyNamedLikeTheParentIsNoWayUp) {
    Set(L"keep", L"v");
    Set(L"t\\..", L"v");
    Make(L"t\\..\\x");
    Make(L"t\\..\\..");
    EXPECT_EQ(Below().size(), 7U);
    EXPECT_TRUE(m_key.CopyTree(CKORString(test::UserKey) + L"\\copy",
                               CKORString(test::UserKey) + L"\\copy"));
    EXPECT_TRUE(m_key.DeleteTree(L"t"));
    EXPECT_EQ(Below(), (Tree{L"copy", L"copy\\keep", L"copy\\keep:v", L"copy\\t", L"copy\\t\\..",
                             L"copy\\t\\..:v", L"copy\\t\\..\\..", L"copy\\t\\..\\x", L"keep",
                             L"keep:v", L"t"}));
    ExpectAtStart();
}

TEST_F(TreeDeletion, DeleteSubKeyTakesEverything) {
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

TEST_F(TreeDeletion, DeleteSubKeyGoesDownItsPath) {
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

TEST_F(TreeDeletion, ALeadingBackslashDoesNotSplitThePath) {
    Make(L"t");
    EXPECT_FALSE(m_key.DeleteSubKey(L"\\t")) << "a key of the root, where there is none";
    EXPECT_EQ(Below(), Tree{L"t"});
    ExpectAtStart();
}

// It is the key's full path that the components before the last one are joined to.
TEST_F(TreeDeletion, DeleteSubKeyStaysBelowItsKey) {
    Make(L"s\\t\\a");
    Make(L"s\\t\\b");
    Make(L"x\\below");
    CRegistryKey key(L"HKEY_CURRENT_USER\\Software\\KORTests\\s");
    EXPECT_TRUE(key.DeleteSubKey(L"\\t\\a")) << "with further components it is not absolute";
    EXPECT_FALSE(key.DeleteSubKey(L"..\\x")) << "there is no key of this name";
    EXPECT_EQ(Below(), (Tree{L"s", L"s\\t", L"s\\t\\b", L"x", L"x\\below"}));
    EXPECT_TRUE(key.EnumSubKeyNames(m_names)) << "open";
    EXPECT_EQ(key.GetFullName(), L"HKEY_CURRENT_USER\\Software\\KORTests\\s");
}

// A path with several components is opened by a temporary key, with a root of its own.
TEST_F(TreeDeletion, DeleteSubKeyMakesItsCallsInOrder) {
    Make(L"t\\a");
    test::RegistryCalls calls;
    CRegistryKey key(test::UserKey);
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

TEST_F(TreeDeletion, AFailureOnTheWayLeavesTheRest) {
    for (const wchar_t* name : {L"t\\a", L"t\\b\\x", L"t\\c"}) {
        Make(name);
    }
    HOOK_IMPORT(deleteKey, RegDeleteKeyExW, [&](HKEY key, LPCWSTR name, auto... rest) -> LSTATUS {
        return std::wstring(name) == L"x" ? LSTATUS{ERROR_ACCESS_DENIED}
                                          : deleteKey.Original(key, name, rest...);
    });
    EXPECT_FALSE(m_key.DeleteTree(L"t"));
    EXPECT_EQ(Below(), (Tree{L"t", L"t\\b", L"t\\b\\x", L"t\\c"}));
    ExpectAtStart();
    EXPECT_FALSE(m_key.DeleteSubKey(L"t"));
    ExpectAtStart();
}

// The list gives the beginning of such a name, and no value has that name.
TEST_F(TreeDeletion, AValueWithAVeryLongNameKeepsTheKeyFromBeingEmptied) {
    Set(L"t", std::wstring(1023, L'm'));
    EXPECT_TRUE(m_key.DeleteTree(L"t"));
    Set(L"t", std::wstring(1024, L'n'));
    EXPECT_FALSE(m_key.DeleteTree(L"t"));
    EXPECT_EQ(Below(), (Tree{L"t", L"t:" + std::wstring(1024, L'n')}));
    ExpectAtStart();
}

TEST_F(TreeDeletion, AValueThatStaysEndsTheDeletion) {
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

TEST_F(TreeDeletion, ASubKeyThatCannotBeEnteredEndsTheDeletion) {
    Make(L"t\\a");
    Make(L"t\\b");
    HOOK_IMPORT(open, RegOpenKeyExW, [&](HKEY root, LPCWSTR subKey, auto... rest) {
        const std::wstring path(subKey);
        return path.size() > 4 && path.compare(path.size() - 4, 4, L"\\t\\a") == 0
                   ? LSTATUS{ERROR_ACCESS_DENIED}
                   : open.Original(root, subKey, rest...);
    });
    EXPECT_FALSE(m_key.DeleteTree(L"t"));
    EXPECT_EQ(Below(), (Tree{L"t", L"t\\a", L"t\\b"}));
    ExpectAtStart();
}

// An empty name would lead to the same key again.
TEST_F(TreeDeletion, ASubKeyWithoutANameEndsTheDeletion) {
    Set(L"t", L"v");
    Make(L"t\\a");
    {
        const test::NamelessSubKey nameless;
        EXPECT_FALSE(m_key.DeleteTree(L"t"));
        EXPECT_EQ(nameless.Walks(), 1);
    }
    EXPECT_EQ(Below(), (Tree{L"t", L"t\\a"}));
    ExpectAtStart();
}

TEST_F(TreeDeletion, ClearsTheCurrentUsersVolatileData) {
    CRegistryKey key;
    EXPECT_TRUE(key.ClearCurrentUserVolatile()) << "no runtime key, nothing to clear";
    EXPECT_FALSE(key.IsOpen());
    test::MakeKey(HKEY_CURRENT_USER, test::Runtime);
    EXPECT_FALSE(key.ClearCurrentUserVolatile()) << "a runtime key without the volatile one";
    EXPECT_EQ(key.GetFullName(), L"");
    test::SetRaw(HKEY_CURRENT_USER, test::Runtime + L"\\volatile\\a\\b", L"v", test::Dword(1));
    test::SetRaw(HKEY_CURRENT_USER, test::Runtime + L"\\other", L"v", test::Dword(1));
    test::BalancedCalls calls;
    EXPECT_TRUE(key.ClearCurrentUserVolatile());
    EXPECT_EQ(calls.Calls()[3],
              "RegOpenKeyExW(k1, Software\\Vantrel\\Vantrel Imaging Library\\Runtime\\Volatile, 0, "
              "20019)");
    EXPECT_TRUE(test::IsReset(key));
    EXPECT_EQ(test::TreeOf(HKEY_CURRENT_USER, test::Runtime),
              (Tree{L"other", L"other:v", L"volatile"}));
}

// Deletes a key just before it is opened for writing for the n-th time.
class VanishingKey {
public:
    VanishingKey(const std::wstring& subKey, int n) : m_subKey(subKey), m_untilThen(n) {}

private:
    std::wstring m_subKey; // of the current user
    int m_untilThen;
    test::ImportHook<struct VanishingTag, decltype(&RegOpenKeyExW)> m_open{
        "RegOpenKeyExW",
        [this](HKEY root, LPCWSTR subKey, DWORD options, REGSAM access, PHKEY result) {
            if (access == KEY_ALL_ACCESS && m_subKey == subKey && --m_untilThen == 0) {
                test::DeleteKey(HKEY_CURRENT_USER, m_subKey);
            }
            return m_open.Original(root, subKey, options, access, result);
        }};
};

// A key that vanishes under the deletion can be reopened neither to write nor to read, which resets
// the object. It finds its way back all the same.
TEST_F(TreeDeletion, AKeyThatVanishesDoesNotTakeTheObjectWithIt) {
    Set(L"t", L"a");
    Set(L"t", L"b");
    test::BalancedCalls calls;
    {
        CRegistryKey key(test::UserKey);
        const VanishingKey vanishing(L"Software\\KORTests\\t", 2);
        EXPECT_FALSE(key.DeleteTree(L"t"));
        EXPECT_TRUE(key.IsOpen());
        EXPECT_EQ(key.GetFullName(), test::UserKey);
        EXPECT_TRUE(key.EnumSubKeyNames(m_names));
        EXPECT_EQ(m_names.Count(), 0);
        EXPECT_TRUE(key.OpenRelative(L".."));
    }
    EXPECT_EQ(calls.CountOf("RegFlushKey"), 1) << "a value had been deleted";
}

// The same in a volatile location, whose keys stay volatile.
TEST_F(TreeDeletion, AKeyThatVanishesLeavesTheLocationVolatile) {
    const std::wstring location = test::Runtime + L"\\volatile";
    CRegistryKey key;
    ASSERT_TRUE(key.OpenCurrentUserRuntime(L"volatile", true));
    ASSERT_TRUE(key.CreateSubKey(L"t"));
    test::SetRaw(HKEY_CURRENT_USER, location + L"\\t", L"a", test::Dword(1));
    {
        const VanishingKey vanishing(location + L"\\t", 1);
        EXPECT_FALSE(key.DeleteTree(L"t"));
    }
    EXPECT_TRUE(key.CreateSubKey(L"new"));
    EXPECT_TRUE(test::IsVolatileKey(HKEY_CURRENT_USER, location + L"\\new"));
}

// Not even the way back can be opened: the object is closed and knows no key, as after a success.
TEST_F(TreeDeletion, ClearingThatCannotGoBackLeavesTheObjectReset) {
    test::MakeKey(HKEY_CURRENT_USER, test::Runtime + L"\\volatile");
    int opened = 0;
    HOOK_IMPORT(open, RegOpenKeyExW, [&](auto... all) {
        return ++opened == 1 ? open.Original(all...) : LSTATUS{ERROR_ACCESS_DENIED};
    });
    CRegistryKey key;
    EXPECT_FALSE(key.ClearCurrentUserVolatile());
    EXPECT_GT(opened, 1);
    EXPECT_TRUE(test::IsReset(key));
}

} // namespace
