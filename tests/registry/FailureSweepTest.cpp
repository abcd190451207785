// Every operation of the layer with each of its system calls refused in turn: what the operation
// says, where it leaves the object, that every handle is closed just once and no memory is lost.
#include <functional>
#include <iterator>
#include <memory>
#include <type_traits>

#include "registry/KeyHandles.h"
#include "tests/registry/RegistryTest.h"
#include "tests/support/GuardedMemory.h"
#include "tests/support/RegistryCalls.h"

using namespace kor;

namespace {

using test::TestSubKey;
using test::UserKey;

constexpr wchar_t ReadsKey[] =
    L"HKEY_CURRENT_USER\\Software\\Vantrel\\Vantrel Imaging Library\\Reads";

// Where an operation leaves the object.
enum Where : char {
    AtStart = 'S', // open on the key where it was
    Moved = 'M',   // open on the key that the operation leads to
    Located = 'L', // closed, but knows the key where it was
    Away = 'A',    // closed, but knows the key that it was moved to
    Gone = 'G',    // closed and reset
};

struct Operation {
    const char* name;
    std::function<bool(CRegistryKey&)> run;
    // One pair a system call that the undisturbed operation makes: '+' or '-' for its result when
    // that call fails, and where the object is then.
    std::string outcomes;
    const wchar_t* start = UserKey; // null: the operation works on a closed object
    const wchar_t* end = nullptr;   // the full name after Moved
};

constexpr wchar_t VolatileX[] = L"HKEY_CURRENT_USER\\Software\\Vantrel\\Vantrel Imaging "
                                L"Library\\Development\\volatile\\x";

constexpr wchar_t VolatileDeep[] =
    L"HKEY_CURRENT_USER\\Software\\Vantrel\\Vantrel Imaging Library\\Runtime\\volatile\\deep";

bool OpenVolatile(CRegistryKey& key) {
    return key.OpenSymbolic(SymbolicRootId::CurrentUserDevelopment, L"volatile\\x", true);
}

std::string Times(int count, const char* outcome) {
    std::string outcomes;
    for (int i = 0; i < count; ++i) {
        outcomes += outcome;
    }
    return outcomes;
}

// What the static operations are given.
HKEY BareKey = nullptr;

const CKORString Name = L"n";
const CKORString TextName = L"s";
const CKORString LongName = L"long";

template <typename Value>
bool Reads(CRegistryKey& key, bool (CRegistryKey::*read)(const CKORString&, Value&),
           const CKORString& name) {
    // What none of the values is.
    Value untouched{};
    if constexpr (std::is_integral_v<Value>) {
        untouched = 77;
    } else {
        untouched = L"untouched";
    }
    Value value(untouched);
    const bool isRead = (key.*read)(name, value);
    EXPECT_NE(value == untouched, isRead) << "a failed read leaves the output as it was";
    return isRead;
}

bool Lists(const CRegistryKey& key, bool (CRegistryKey::*list)(CTable1D<CKORString>&) const) {
    CTable1D<CKORString> names;
    return (key.*list)(names);
}

const Operation Operations[] = {
    // Opening: the per-user root has a stand-in, everything else is needed.
    {"Open", [](auto& key) { return key.Open(UserKey, false); }, "+M-G", nullptr, UserKey},
    {"Open to create", [](auto& key) { return key.Open(UserKey, true); }, "+M-G", nullptr, UserKey},
    // A refused close of the key that is left does not keep the new one from being opened.
    {"Open again", [](auto& key) { return key.Open(L"HKEY_LOCAL_MACHINE\\Software", false); },
     "+M+M-G", UserKey, L"HKEY_LOCAL_MACHINE\\Software"},
    {"OpenSymbolic",
     [](auto& key) { return key.OpenSymbolic(SymbolicRootId::LocalMachineRoot, L"", false); }, "-G",
     nullptr, L"HKEY_LOCAL_MACHINE\\Software\\Vantrel\\Vantrel Imaging Library"},
    {"OpenLocalMachineRuntime", [](auto& key) { return key.OpenLocalMachineRuntime(L"x", true); },
     "-G", nullptr, L"HKEY_LOCAL_MACHINE\\Software\\Vantrel\\Vantrel Imaging Library\\Runtime\\x"},
    {"OpenCurrentUserRuntime", [](auto& key) { return key.OpenCurrentUserRuntime(L"", false); },
     "+M-G", nullptr, L"HKEY_CURRENT_USER\\Software\\Vantrel\\Vantrel Imaging Library\\Runtime"},
    // Its flush and its two closings are at its end.
    {"Construct to create", [](auto&) { return CRegistryKey(UserKey, true).IsOpen(); },
     "+G-G+G+G+G", nullptr, L""},
    {"Close and OpenResolved",
     [](auto& key) { return key.Close(true) && key.OpenResolved(false, true, true); }, "-S-L"},
    {"ReopenForWrite", [](auto& key) { return key.ReopenForWrite(true); }, "-S-S"},
    {"ReopenForWrite to read", [](auto& key) { return key.ReopenForWrite(false); }, "-S-L"},
    {"OpenRelative", [](auto& key) { return key.OpenRelative(L"a"); }, "-L-L", UserKey,
     L"HKEY_CURRENT_USER\\Software\\KORTests\\a"},
    {"Close", [](auto& key) { return key.Close(); }, "-G-G", UserKey, L""},
    {"CloseIfOpen", [](auto& key) { return key.CloseIfOpen(); }, "-G-G", UserKey, L""},
    {"Flush", [](auto& key) { return key.Flush(); }, "-S"},
    {"FlushCreated", [](auto& key) { return key.FlushCreated(); }, "-S"},
    // Reading.
    {"ValueExists", [](auto& key) { return key.ValueExists(Name); }, "-S"},
    {"ReadDword",
     [](auto& key) { return Reads<std::uint32_t>(key, &CRegistryKey::ReadDword, Name); }, "-S-S"},
    {"ReadDwordAsInt64",
     [](auto& key) { return Reads<std::int64_t>(key, &CRegistryKey::ReadDwordAsInt64, Name); },
     "-S-S"},
    {"ReadDwordAsUInt64",
     [](auto& key) { return Reads<std::uint64_t>(key, &CRegistryKey::ReadDwordAsUInt64, Name); },
     "-S-S"},
    {"ReadQword",
     [](auto& key) { return Reads<std::uint64_t>(key, &CRegistryKey::ReadQword, L"q"); }, "-S-S",
     ReadsKey},
    {"QueryValue", [](auto& key) { return key.QueryValue(Name, RegValueType::Dword); }, "-S-S"},
    {"GetValueType",
     [](auto& key) {
         RegValueType type = RegValueType::Unknown;
         return key.GetValueType(Name, type);
     },
     "-S"},
    {"QueryValueTraced",
     [](auto&) {
         RegValueType type = RegValueType::Dword;
         std::uint32_t value = 0;
         std::uint64_t size = sizeof value;
         bool hasMoreData = false;
         return CRegistryKey::QueryValueTraced(BareKey, Name, type, &value, size, hasMoreData);
     },
     "-G", nullptr, L""},
    {"ReadString of a multi-string",
     [](auto& key) { return Reads<CKORString>(key, &CRegistryKey::ReadString, L"m"); }, "-S-S-S",
     ReadsKey},
    {"ReadString",
     [](auto& key) { return Reads<CKORString>(key, &CRegistryKey::ReadString, TextName); },
     "-S-S-S"},
    {"ReadString of a long value",
     [](auto& key) { return Reads<CKORString>(key, &CRegistryKey::ReadString, LongName); },
     "-S-S-S-S"},
    {"ReadBinary",
     [](auto& key) {
         BYTE data[8] = {};
         std::uint64_t size = sizeof data;
         return key.ReadBinary(L"b", data, size);
     },
     "-S-S"},
    {"GetSubKeyCount", [](auto& key) { return key.GetSubKeyCount() != 0; }, "-S"},
    {"GetValueCount", [](auto& key) { return key.GetValueCount() != 0; }, "-S"},
    {"EnumSubKeyNames", [](auto& key) { return Lists(key, &CRegistryKey::EnumSubKeyNames); },
     "-S-S-S"},
    {"EnumValueNames", [](auto& key) { return Lists(key, &CRegistryKey::EnumValueNames); }, "-S-S",
     L"HKEY_CURRENT_USER\\Software\\KORTests\\a"},
    {"VisitSubKeyNames",
     [](auto& key) { return key.VisitSubKeyNames([](const wchar_t*) { return true; }); }, "-S-S-S"},
    {"VisitValueNames",
     [](auto& key) { return key.VisitValueNames([](const wchar_t*) { return true; }); }, "-S-S",
     L"HKEY_CURRENT_USER\\Software\\KORTests\\a"},
    {"SubKeyExists", [](auto& key) { return key.SubKeyExists(L"a"); }, "-S+S"},
    // Writing: a refused reopening for reading closes the object, a refused one for writing not.
    {"WriteDword", [](auto& key) { return key.WriteDword(Name, 7U); }, "-S-S-S-S-L"},
    {"WriteQword", [](auto& key) { return key.WriteQword(Name, std::uint64_t{7}); }, "-S-S-S-S-L"},
    {"WriteString", [](auto& key) { return key.WriteString(Name, TextName); }, "-S-S-S-S-L"},
    {"WriteExpandString", [](auto& key) { return key.WriteExpandString(Name, TextName); },
     "-S-S-S-S-L"},
    {"WriteBinary", [](auto& key) { return key.WriteBinary(Name, "abc", 3); }, "-S-S-S-S-L"},
    {"WriteValue", [](auto& key) { return key.WriteValue(Name, RegValueType::Binary, "abc", 3); },
     "-S-S-S-S-L"},
    {"DeleteValue", [](auto& key) { return key.DeleteValue(Name); }, "-S-S-S-S-L"},
    {"CreateSubKey", [](auto& key) { return key.CreateSubKey(L"new"); }, "-S-S-S+S-S-L"},
    // Walking and changing.
    {"DeleteTree", [](auto& key) { return key.DeleteTree(L"a"); }, Times(24, "-S") + "+S+S"},
    {"DeleteSubKey", [](auto& key) { return key.DeleteSubKey(L"a"); },
     Times(26, "-S") + "+S+S-S-S-L"},
    {"DeleteSubKey of a path", [](auto& key) { return key.DeleteSubKey(L"a\\aa"); },
     "+S" + Times(13, "-S") + "+S+S-S-S-S+S+S+S"},
    {"CopyValues", [](auto& key) { return key.CopyValues(CKORString(UserKey) + L"\\copy"); },
     Times(4, "+S") + Times(6, "-S") + Times(37, "+S")},
    {"CopyTree",
     [](auto& key) {
         const CKORString target = CKORString(UserKey) + L"\\copy";
         return key.CopyTree(target, target);
     },
     Times(4, "+S") + Times(6, "-S") + Times(103, "+S")},
    {"ClearCurrentUserVolatile", [](auto& key) { return key.ClearCurrentUserVolatile(); },
     "+G+G" + Times(18, "-G") + "+G+G+G+G", nullptr, L""},
    {"Open a volatile location", [](auto& key) { return OpenVolatile(key); },
     "+M-G" + Times(4, "+M") + "-G" + Times(17, "+M") + "-G", nullptr, VolatileX},
    // The key "volatile" is there already. When it cannot be seen, it counts as missing: with
    // creation it is stamped anew.
    {"Open a stamped location",
     [](auto& key) { return key.OpenCurrentUserRuntime(L"volatile\\deep", false); },
     "+M-G-G+M+M+M+M-G", nullptr, VolatileDeep},
    {"Open a stamped location to create",
     [](auto& key) { return key.OpenCurrentUserRuntime(L"volatile\\deep", true); },
     "+M-G+M+M+M+M+M-G", nullptr, VolatileDeep},
    {"Write a stamped value",
     [](auto& key) { return OpenVolatile(key) && key.WriteDword(Name, 1U); },
     "+M-G" + Times(4, "+M") + "-G" + Times(17, "+M") + "-G" + Times(4, "-M") + "-A" +
         Times(7, "+M"),
     nullptr, VolatileX},
    {"Lock and unlock",
     [](auto& key) { return OpenVolatile(key) && key.LockVolatile() && key.UnlockVolatile(); },
     "+M-G" + Times(4, "+M") + "-G" + Times(17, "+M") + "-G+M" + Times(4, "-M"), nullptr,
     VolatileX},
    // On a handle alone.
    {"ValueExists of a handle", [](auto&) { return ValueExists(BareKey, Name); }, "-G", nullptr,
     L""},
    {"GetSubKeyCount of a handle",
     [](auto&) {
         std::uint64_t count = 0;
         return GetSubKeyCount(BareKey, count) && count == 2;
     },
     "-G", nullptr, L""},
    {"GetValueCount of a handle",
     [](auto&) {
         std::uint64_t count = 0;
         return GetValueCount(BareKey, count) && count == 4;
     },
     "-G", nullptr, L""},
    {"FlushKeyHandle", [](auto&) { return FlushKeyHandle(BareKey); }, "-G", nullptr, L""},
    {"CloseKeyHandle",
     [](auto&) {
         HKEY opened = nullptr;
         return RegOpenKeyExW(HKEY_CURRENT_USER, TestSubKey, 0, KEY_READ, &opened) ==
                    ERROR_SUCCESS &&
                CloseKeyHandle(opened);
     },
     "-G-G", nullptr, L""},
};

class FailureSweep : public test::RegistryTest {
protected:
    static void Prepare() {
        test::DeleteKey(HKEY_CURRENT_USER, TestSubKey);
        test::DeleteKey(HKEY_CURRENT_USER, test::Vantrel);
        test::MakeKey(HKEY_LOCAL_MACHINE, test::Library);
        const std::wstring base(TestSubKey);
        test::SetRaw(HKEY_CURRENT_USER, base, L"n", test::Dword(1));
        test::SetRaw(HKEY_CURRENT_USER, base, L"s", test::Text(REG_SZ, L"text"));
        test::SetRaw(HKEY_CURRENT_USER, base, L"b", {REG_BINARY, {1, 2, 3}});
        test::SetRaw(HKEY_CURRENT_USER, base, L"long", test::Text(REG_SZ, std::wstring(900, L'l')));
        test::SetRaw(HKEY_CURRENT_USER, base + L"\\a", L"v", test::Dword(2));
        test::SetRaw(HKEY_CURRENT_USER, base + L"\\a\\aa", L"v", test::Dword(3));
        test::MakeKey(HKEY_CURRENT_USER, base + L"\\b");
        test::SetRaw(HKEY_CURRENT_USER, test::Library + L"\\Reads", L"q", test::Qword(5));
        test::SetRaw(HKEY_CURRENT_USER, test::Library + L"\\Reads", L"m",
                     test::Text(REG_MULTI_SZ, std::wstring(L"a\0", 2)));
        test::SetRaw(HKEY_CURRENT_USER, test::Runtime + L"\\Volatile\\deep", L"v", test::Dword(4));
    }

    static char WhereIs(CRegistryKey& key, const CKORString& start, const wchar_t* end) {
        const CKORString name = key.GetFullName();
        if (key.IsOpen()) {
            // Open and readable, not just a number that was once a handle.
            CTable1D<CKORString> names;
            EXPECT_TRUE(key.EnumSubKeyNames(names));
            if (end != nullptr && name == end) {
                return Moved;
            }
            return name == start ? char{AtStart} : '?';
        }
        if (name == L"") {
            return Gone;
        }
        return name == start ? Located : Away;
    }
};

char WhereItEnds(const Operation& operation) {
    if (operation.end == nullptr) {
        return AtStart;
    }
    return *operation.end == L'\0' ? Gone : Moved;
}

TEST_F(FailureSweep, EveryCallOfEveryOperationMayFail) {
    int tried = 0;
    for (const Operation& operation : Operations) {
        SCOPED_TRACE(operation.name);
        for (int n = 1;; ++n) {
            Prepare();
            const CKORString start(operation.start);
            bool result = false;
            char where = '?';
            std::string failedCall;
            std::string faults;
            RegOpenKeyExW(HKEY_CURRENT_USER, TestSubKey, 0, KEY_READ, &BareKey);
            const std::int64_t blocks = test::LiveBlocks();
            {
                auto calls = std::make_unique<test::RegistryCalls>();
                auto key = std::make_unique<CRegistryKey>();
                ASSERT_TRUE(operation.start == nullptr || key->Open(start, false));
                calls->FailCall(n);
                result = operation.run(*key);
                failedCall = calls->FailedCall();
                calls->FailCall(0);
                where = WhereIs(*key, start, operation.end);
                key.reset();
                faults = calls->HandleFaults();
            }
            RegCloseKey(BareKey);
            failedCall.shrink_to_fit();
            EXPECT_EQ(faults, "") << failedCall;
            EXPECT_LE(test::LiveBlocks() - blocks,
                      (failedCall.capacity() > 15 ? 1 : 0) + (faults.capacity() > 15 ? 1 : 0))
                << failedCall;
            if (failedCall.empty()) {
                EXPECT_TRUE(result) << "undisturbed";
                EXPECT_EQ(where, WhereItEnds(operation));
                EXPECT_EQ(2 * (static_cast<std::size_t>(n) - 1), operation.outcomes.size());
                break;
            }
            ++tried;
            const std::size_t at = 2 * (static_cast<std::size_t>(n) - 1);
            ASSERT_LT(at, operation.outcomes.size()) << "one call more: " << failedCall;
            EXPECT_EQ((std::string{result ? '+' : '-', where}), operation.outcomes.substr(at, 2))
                << "when call " << n << " fails: " << failedCall;
        }
    }
    std::printf("%d failures tried\n", tried);
}

} // namespace
