// Reads of numbers and bytes, and what they leave behind.
#include "registry/KeyHandles.h"
#include "tests/registry/RegistryTest.h"
#include "tests/support/GuardedMemory.h"
#include "tests/support/RegistryCalls.h"

using namespace kor;

namespace {

using test::MachineKey;
using test::TestSubKey;

using Lines = std::vector<std::string>;

class ValueReads : public test::MachineKeyTest {
protected:
    void SetUp() override {
        MachineKeyTest::SetUp();
        ASSERT_TRUE(m_key.Open(MachineKey, false));
    }

    CRegistryKey m_key;
};

// Each read of each type; what a read may not take leaves the output alone.
struct TypeRow {
    const wchar_t* name;
    test::RawValue value;
    RegValueType type;
    const wchar_t* text = nullptr; // null: not a text
    bool isDword = false;
    bool isQword = false;
    bool isBinary = false;
};

TEST_F(ValueReads, TakeTheirOwnTypeOnly) {
    const std::vector<BYTE> four = {1, 0, 0, 0};
    const std::vector<BYTE> eight = {2, 0, 0, 0, 0, 0, 0, 0};
    const TypeRow rows[] = {
        {L"dword", {REG_DWORD, four}, RegValueType::Dword, nullptr, true},
        {L"qword", {REG_QWORD, eight}, RegValueType::Qword, nullptr, false, true},
        {L"long dword", {REG_DWORD, eight}, RegValueType::Dword},
        {L"short qword", {REG_QWORD, four}, RegValueType::Qword},
        {L"empty dword", {REG_DWORD, {}}, RegValueType::Dword},
        {L"binary4", {REG_BINARY, four}, RegValueType::Binary, nullptr, false, false, true},
        {L"binary8", {REG_BINARY, eight}, RegValueType::Binary, nullptr, false, false, true},
        {L"binary0", {REG_BINARY, {}}, RegValueType::Binary, nullptr, false, false, true},
        {L"text", test::Text(REG_SZ, L"ab"), RegValueType::String, L"ab"},
        {L"expand", test::Text(REG_EXPAND_SZ, L"%TEMP%"), RegValueType::ExpandString, L"%TEMP%"},
        {L"multi", test::Text(REG_MULTI_SZ, std::wstring(L"a\0b\0", 4)), RegValueType::MultiString,
         L"<a> <b>"},
        {L"none", {REG_NONE, four}, RegValueType::Unknown},
        {L"big endian", {REG_DWORD_BIG_ENDIAN, four}, RegValueType::Unknown},
        {L"link", {REG_LINK, four}, RegValueType::Unknown},
        {L"strange", {0x1234, four}, RegValueType::Unknown},
    };
    for (const TypeRow& row : rows) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(row.name)));
        Set(row.name, row.value);
        EXPECT_TRUE(m_key.ValueExists(row.name));
        for (std::uint32_t type = 0; type <= 7; ++type) {
            EXPECT_EQ(m_key.QueryValue(row.name, static_cast<RegValueType>(type)),
                      type != 0 && static_cast<RegValueType>(type) == row.type)
                << type;
        }

        std::uint32_t u32 = 0xdeadbeef;
        DWORD systems = 77;
        std::int64_t wideSigned = -77;
        std::uint64_t wideUnsigned = 77;
        EXPECT_EQ(m_key.ReadDword(row.name, u32), row.isDword);
        EXPECT_EQ(m_key.ReadDword(row.name, systems), row.isDword);
        EXPECT_EQ(m_key.ReadDwordAsInt64(row.name, wideSigned), row.isDword);
        EXPECT_EQ(m_key.ReadDwordAsUInt64(row.name, wideUnsigned), row.isDword);
        EXPECT_EQ(u32, row.isDword ? 1U : 0xdeadbeefU);
        EXPECT_EQ(systems, row.isDword ? 1U : 77U);
        EXPECT_EQ(wideSigned, row.isDword ? 1 : -77);
        EXPECT_EQ(wideUnsigned, row.isDword ? 1U : 77U);
        EXPECT_EQ(m_key.ReadQword(row.name, wideSigned), row.isQword);
        EXPECT_EQ(m_key.ReadQword(row.name, wideUnsigned), row.isQword);
        EXPECT_EQ(wideUnsigned, row.isQword ? 2U : (row.isDword ? 1U : 77U));

        CKORString text(L"untouched");
        EXPECT_EQ(m_key.ReadString(row.name, text), row.text != nullptr);
        EXPECT_EQ(text, row.text != nullptr ? row.text : L"untouched");

        BYTE buffer[16] = {0xee, 0xee, 0xee, 0xee, 0xee, 0xee, 0xee, 0xee, 0xee};
        std::uint64_t size = sizeof buffer;
        EXPECT_EQ(m_key.ReadBinary(row.name, buffer, size), row.isBinary);
        EXPECT_EQ(size, row.value.data.size());
        EXPECT_EQ(buffer[row.isBinary ? size : 0], 0xee) << "not a byte more than the value has";
        EXPECT_TRUE(!row.isBinary ||
                    std::equal(row.value.data.begin(), row.value.data.end(), buffer));
    }
}

TEST_F(ValueReads, NumbersAreWidenedWithTheirSign) {
    Set(L"n", test::Dword(0xfffffffe));
    std::uint32_t u32 = 0;
    DWORD systems = 0;
    std::int64_t wideSigned = 0;
    std::uint64_t wideUnsigned = 0;
    EXPECT_TRUE(m_key.ReadDword(L"n", u32));
    EXPECT_TRUE(m_key.ReadDword(L"n", systems));
    EXPECT_TRUE(m_key.ReadDwordAsInt64(L"n", wideSigned));
    EXPECT_TRUE(m_key.ReadDwordAsUInt64(L"n", wideUnsigned));
    EXPECT_EQ(u32, 0xfffffffeU);
    EXPECT_EQ(systems, 0xfffffffeU);
    EXPECT_EQ(wideSigned, -2);
    EXPECT_EQ(wideUnsigned, 0xfffffffeU);
    Set(L"q", test::Qword(0xfffffffffffffffdU));
    EXPECT_TRUE(m_key.ReadQword(L"q", wideSigned));
    EXPECT_TRUE(m_key.ReadQword(L"q", wideUnsigned));
    EXPECT_EQ(wideSigned, -3);
    EXPECT_EQ(wideUnsigned, 0xfffffffffffffffdU);
}

TEST_F(ValueReads, MissingValuesAndClosedKeysGiveNothing) {
    CRegistryKey closed;
    for (CRegistryKey* key : {&m_key, &closed}) {
        std::uint32_t number = 3;
        CKORString text(L"untouched");
        EXPECT_FALSE(key->ValueExists(L"missing"));
        EXPECT_FALSE(key->QueryValue(L"missing", RegValueType::Dword));
        EXPECT_FALSE(key->ReadDword(L"missing", number));
        EXPECT_FALSE(key->ReadString(L"missing", text));
        EXPECT_EQ(number, 3U);
        EXPECT_EQ(text, L"untouched");
    }
    std::uint64_t size = 5;
    BYTE buffer[5];
    EXPECT_FALSE(closed.ReadBinary(L"missing", buffer, size));
    EXPECT_EQ(size, 5U);
}

TEST_F(ValueReads, WithoutAKeyTheSystemIsNotAsked) {
    CRegistryKey key;
    CKORString text;
    CTable1D<CKORString> names;
    std::uint32_t u32 = 0;
    DWORD systems = 0;
    std::int64_t wideSigned = 0;
    std::uint64_t wideUnsigned = 0;
    BYTE buffer[4] = {};
    std::uint64_t size = sizeof buffer;
    RegValueType type = RegValueType::Unknown;
    const auto visit = [](const wchar_t* /*name*/) { return true; };
    test::RegistryCalls calls;
    EXPECT_FALSE(key.ValueExists(L"n"));
    EXPECT_FALSE(key.QueryValue(L"n", RegValueType::Dword));
    EXPECT_FALSE(key.ReadDword(L"n", u32));
    EXPECT_FALSE(key.ReadDword(L"n", systems));
    EXPECT_FALSE(key.ReadDwordAsInt64(L"n", wideSigned));
    EXPECT_FALSE(key.ReadDwordAsUInt64(L"n", wideUnsigned));
    EXPECT_FALSE(key.ReadQword(L"n", wideSigned));
    EXPECT_FALSE(key.ReadQword(L"n", wideUnsigned));
    EXPECT_FALSE(key.ReadString(L"n", text));
    EXPECT_FALSE(key.ReadBinary(L"n", buffer, size));
    EXPECT_FALSE(key.GetValueType(L"n", type));
    EXPECT_EQ(key.GetSubKeyCount(), 0U);
    EXPECT_EQ(key.GetValueCount(), 0U);
    EXPECT_FALSE(key.EnumSubKeyNames(names));
    EXPECT_FALSE(key.EnumValueNames(names));
    EXPECT_FALSE(key.VisitSubKeyNames(visit));
    EXPECT_FALSE(key.VisitValueNames(visit));
    EXPECT_FALSE(key.SubKeyExists(L"n"));
    EXPECT_TRUE(calls.Calls().empty()) << testing::PrintToString(calls.Calls());
}

TEST_F(ValueReads, TheDefaultValueHasNoName) {
    Set(L"", test::Text(REG_SZ, L"default"));
    CKORString text;
    EXPECT_TRUE(m_key.ValueExists(L""));
    EXPECT_TRUE(m_key.ReadString(L"", text));
    EXPECT_EQ(text, L"default");
}

TEST_F(ValueReads, BinaryTellsTheSizeThatIsNeeded) {
    Set(L"eight", {REG_BINARY, {1, 2, 3, 4, 5, 6, 7, 8}});
    BYTE buffer[8] = {0xee, 0xee, 0xee};
    std::uint64_t size = 2;
    EXPECT_FALSE(m_key.ReadBinary(L"eight", buffer, size));
    EXPECT_EQ(size, 8U);
    EXPECT_EQ(buffer[0], 0xee);
    EXPECT_TRUE(m_key.ReadBinary(L"eight", buffer, size));
    EXPECT_EQ(size, 8U);
    EXPECT_EQ(buffer[7], 8);
    size = 8;
    EXPECT_FALSE(m_key.ReadBinary(L"missing", buffer, size));
    EXPECT_EQ(size, 8U) << "the size of the value read before";
}

TEST_F(ValueReads, LongStringsGrowTheBufferOnce) {
    const std::wstring text(1499, L'x');
    Set(L"long", test::Text(REG_SZ, text));
    Set(L"short", test::Text(REG_SZ, L"s"));
    test::RegistryCalls calls;
    CRegistryKey key(MachineKey);
    calls.Clear();
    CKORString read;
    EXPECT_TRUE(key.ReadString(L"long", read));
    EXPECT_EQ(read.Text(), text);
    EXPECT_EQ(calls.Calls(), (Lines{"RegQueryValueExW(k1, long, -, type, -, -)",
                                    "RegQueryValueExW(k1, long, -, -, -, 0)",
                                    "RegQueryValueExW(k1, long, -, type, data, 1024)",
                                    "RegQueryValueExW(k1, long, -, type, data, 3000)"}));
    calls.Clear();
    EXPECT_TRUE(key.ReadString(L"long", read));
    EXPECT_TRUE(key.ReadString(L"short", read));
    EXPECT_EQ(read, L"s");
    EXPECT_EQ(calls.Calls(), (Lines{"RegQueryValueExW(k1, long, -, type, -, -)",
                                    "RegQueryValueExW(k1, long, -, -, -, 0)",
                                    "RegQueryValueExW(k1, long, -, type, data, 3000)",
                                    "RegQueryValueExW(k1, short, -, type, -, -)",
                                    "RegQueryValueExW(k1, short, -, -, -, 0)",
                                    "RegQueryValueExW(k1, short, -, type, data, 3000)"}));
}

TEST_F(ValueReads, EachReadMakesItsCallsInOrder) {
    Set(L"n", test::Dword(1));
    test::RegistryCalls calls;
    CRegistryKey key(MachineKey);
    calls.Clear();
    std::uint32_t number = 0;
    EXPECT_TRUE(key.ReadDword(L"n", number));
    EXPECT_EQ(calls.Calls(), (Lines{"RegQueryValueExW(k1, n, -, -, -, 0)",
                                    "RegQueryValueExW(k1, n, -, type, data, 1024)"}));
    calls.Clear();
    EXPECT_FALSE(key.QueryValue(L"missing", RegValueType::Dword));
    EXPECT_EQ(calls.Calls(), Lines{"RegQueryValueExW(k1, missing, -, -, -, 0)"});
    calls.Clear();
    CKORString text;
    EXPECT_FALSE(key.ReadString(L"n", text));
    EXPECT_EQ(calls.Calls(), Lines{"RegQueryValueExW(k1, n, -, type, -, -)"});
    calls.Clear();
    EXPECT_TRUE(key.ValueExists(L"n"));
    EXPECT_EQ(calls.Calls(), Lines{"RegQueryValueExW(k1, n, -, -, -, 0)"});
    calls.Clear();
    EXPECT_EQ(key.GetSubKeyCount(), 0U);
    EXPECT_EQ(key.GetValueCount(), 1U);
    EXPECT_EQ(calls.Calls(),
              (Lines{"RegQueryInfoKeyW(k1, subkeys, -)", "RegQueryInfoKeyW(k1, -, values)"}));
}

// A value that grows between the two queries, and stays too long for the second one.
TEST_F(ValueReads, MoreDataAfterTheBufferGrewIsAFailure) {
    DWORD reported = 2000;
    HOOK_IMPORT(query, RegQueryValueExW,
                [&](HKEY, LPCWSTR, LPDWORD, LPDWORD type, LPBYTE buffer, LPDWORD size) -> LSTATUS {
                    if (type != nullptr) {
                        *type = REG_BINARY;
                    }
                    if (buffer == nullptr) {
                        return ERROR_SUCCESS;
                    }
                    EXPECT_EQ(*size, reported == 2000 ? 1024U : 2000U);
                    *size = reported;
                    reported += 100;
                    return ERROR_MORE_DATA;
                });
    std::uint64_t size = 1;
    BYTE buffer[1];
    testing::internal::CaptureStdout();
    EXPECT_FALSE(m_key.ReadBinary(L"b", buffer, size));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "") << "the trace line is never written";
    EXPECT_EQ(size, 2100U) << "the size last reported";
}

// Somebody else writes the value anew, as another type.
TEST_F(ValueReads, AValueThatChangesItsTypeCountsAsWhatWasReadLast) {
    HOOK_IMPORT(query, RegQueryValueExW,
                [&](HKEY, LPCWSTR, LPDWORD, LPDWORD type, LPBYTE buffer, LPDWORD size) -> LSTATUS {
                    if (buffer == nullptr) {
                        return ERROR_SUCCESS;
                    }
                    const bool isFirst = *size == 1024;
                    *type = isFirst ? REG_SZ : REG_BINARY;
                    *size = 2000;
                    return isFirst ? LSTATUS{ERROR_MORE_DATA} : LSTATUS{ERROR_SUCCESS};
                });
    EXPECT_FALSE(CRegistryKey(MachineKey).QueryValue(L"v", RegValueType::String));
    EXPECT_TRUE(CRegistryKey(MachineKey).QueryValue(L"v", RegValueType::Binary));
}

TEST_F(ValueReads, AStringThatBecomesBytesBeforeItIsReadIsNoString) {
    Set(L"s", test::Text(REG_SZ, L"text"));
    HOOK_IMPORT(query, RegQueryValueExW,
                [&](HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE buffer,
                    LPDWORD size) -> LSTATUS {
                    const LSTATUS result = query.Original(key, name, reserved, type, buffer, size);
                    if (buffer != nullptr) {
                        *type = REG_BINARY;
                    }
                    return result;
                });
    CKORString text(L"untouched");
    EXPECT_FALSE(m_key.ReadString(L"s", text));
    EXPECT_EQ(text, L"untouched");
}

TEST_F(ValueReads, EveryQueryMayFail) {
    Set(L"long", {REG_BINARY, std::vector<BYTE>(2000, 7)});
    // Nothing was read yet; the size that the query was given; the size that the first one told.
    const std::uint64_t sizes[] = {0, 1024, 2000};
    for (int failing = 1; failing <= 3; ++failing) {
        CRegistryKey key(MachineKey);
        std::vector<BYTE> buffer(2000);
        std::uint64_t size = buffer.size();
        test::RegistryCalls calls;
        calls.FailCall(failing);
        EXPECT_FALSE(key.ReadBinary(L"long", buffer.data(), size)) << failing;
        EXPECT_NE(calls.FailedCall(), "");
        EXPECT_EQ(size, sizes[failing - 1]) << failing;
        EXPECT_TRUE(key.ReadBinary(L"long", buffer.data(), size = buffer.size()));
    }
}

TEST_F(ValueReads, AMissingValueNeedsNoBuffer) {
    CRegistryKey key(test::UserKey, true);
    const CKORString name(L"missing");
    std::uint32_t value = 0;
    const std::int64_t blocks = test::LiveBlocks();
    EXPECT_FALSE(key.ReadDword(name, value));
    EXPECT_EQ(test::LiveBlocks(), blocks);
}

TEST_F(ValueReads, WithoutMemoryForTheBufferAReadFails) {
    Set(L"long", {REG_BINARY, std::vector<BYTE>(2000, 7)});
    const CKORString name(L"long");
    std::vector<BYTE> buffer(2000);
    for (int failing = 1; failing <= 2; ++failing) {
        CRegistryKey key(MachineKey);
        std::uint64_t size = buffer.size();
        const std::int64_t blocks = test::LiveBlocks();
        {
            const test::AllocationFailure failure(failing);
            EXPECT_FALSE(key.ReadBinary(name, buffer.data(), size));
            EXPECT_TRUE(failure.Happened());
        }
        EXPECT_EQ(test::LiveBlocks(), blocks) << "the buffer that was too small is given up first";
        EXPECT_EQ(size, failing == 1 ? 0U : 2000U);
        EXPECT_TRUE(key.ReadBinary(name, buffer.data(), size = buffer.size()));
        EXPECT_EQ(buffer[1999], 7);
    }
}

TEST_F(ValueReads, ABufferThatIsTooSmallIsFreedBeforeTheNextOneIsMade) {
    Set(L"long", {REG_BINARY, std::vector<BYTE>(2000, 7)});
    const CKORString name(L"long");
    std::vector<BYTE> buffer(2000);
    std::uint64_t size = buffer.size();
    CRegistryKey key(MachineKey);
    const test::PlainMemory fromTheHeap;
    std::int64_t blocksAtGrowth = -1;
    HOOK_IMPORT(allocate, malloc, [&](std::size_t bytes) {
        if (bytes == 2000) {
            blocksAtGrowth = test::LiveBlocks();
        }
        return allocate.Original(bytes);
    });
    const std::int64_t blocks = test::LiveBlocks();
    EXPECT_TRUE(key.ReadBinary(name, buffer.data(), size));
    EXPECT_EQ(blocksAtGrowth, blocks);
}

TEST_F(ValueReads, TypesAreToldWithoutReading) {
    Set(L"n", test::Dword(1));
    Set(L"strange", {0x1234, {1}});
    HKEY raw = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegOpenKeyExW(HKEY_LOCAL_MACHINE, TestSubKey, 0, KEY_READ, &raw));
    RegValueType type = RegValueType::Binary;
    EXPECT_TRUE(CRegistryKey::GetValueType(raw, L"n", type));
    EXPECT_EQ(type, RegValueType::Dword);
    EXPECT_FALSE(CRegistryKey::GetValueType(raw, L"missing", type));
    EXPECT_EQ(type, RegValueType::Dword);
    EXPECT_FALSE(CRegistryKey::GetValueType(raw, L"strange", type));
    EXPECT_EQ(type, RegValueType::Unknown);
    RegCloseKey(raw);
}

} // namespace
