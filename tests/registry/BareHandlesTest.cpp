// Operations on a handle that no key object holds, the traced read among them.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "registry/CRegistryKey.h"
#include "registry/KeyHandles.h"
#include "tests/registry/RegistryTest.h"
#include "tests/support/ImportHook.h"
#include "tests/support/RegistryCalls.h"

using namespace kor;

namespace {

using test::TestSubKey;

using BareHandles = test::MachineKeyTest;

struct TracedRead {
    bool result;
    RegValueType type;
    std::uint64_t size;
    bool hasMoreData;
    std::string printed;
};

TracedRead ReadTraced(HKEY key, const wchar_t* name, RegValueType type, void* buffer,
                      std::uint64_t size) {
    TracedRead read{false, type, size, true, {}};
    testing::internal::CaptureStdout();
    read.result =
        CRegistryKey::QueryValueTraced(key, name, read.type, buffer, read.size, read.hasMoreData);
    read.printed = testing::internal::GetCapturedStdout();
    return read;
}

TEST_F(BareHandles, TracedReadsTellEverything) {
    Set(L"number", test::Dword(0x01020304));
    Set(L"bytes", {REG_BINARY, {9, 8, 7}});
    Set(L"strange", {0x1234, {1}});
    HKEY raw = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegOpenKeyExW(HKEY_LOCAL_MACHINE, TestSubKey, 0, KEY_READ, &raw));
    BYTE buffer[8] = {};

    TracedRead read = ReadTraced(raw, L"number", RegValueType::Dword, buffer, sizeof buffer);
    EXPECT_TRUE(read.result);
    EXPECT_EQ(read.type, RegValueType::Dword);
    EXPECT_EQ(read.size, 4U);
    EXPECT_FALSE(read.hasMoreData);
    EXPECT_EQ(buffer[0], 4);
    EXPECT_EQ(read.printed, "");

    // Asking for binary writes the line, whatever the value is.
    read = ReadTraced(raw, L"number", RegValueType::Binary, buffer, sizeof buffer);
    EXPECT_TRUE(read.result);
    EXPECT_EQ(read.type, RegValueType::Dword);
    EXPECT_EQ(read.printed, "Read value: number, type is 4, retval 0\n");

    read = ReadTraced(raw, L"bytes", RegValueType::Binary, buffer, 2);
    EXPECT_FALSE(read.result);
    EXPECT_EQ(read.type, RegValueType::Binary);
    EXPECT_EQ(read.size, 3U);
    EXPECT_TRUE(read.hasMoreData);
    EXPECT_EQ(read.printed, "Read value: bytes, type is 3, retval 234\n");

    // The type is that of a value that was read.
    read = ReadTraced(raw, L"number", RegValueType::String, buffer, 2);
    EXPECT_FALSE(read.result);
    EXPECT_EQ(read.type, RegValueType::String);
    EXPECT_EQ(read.size, 4U);
    EXPECT_TRUE(read.hasMoreData);
    EXPECT_EQ(read.printed, "");

    read = ReadTraced(raw, L"missing", RegValueType::Binary, buffer, 2);
    EXPECT_FALSE(read.result);
    EXPECT_FALSE(read.hasMoreData);
    EXPECT_EQ(read.printed, "Read value: missing, type is 0, retval 2\n");

    read = ReadTraced(raw, L"strange", RegValueType::String, buffer, sizeof buffer);
    EXPECT_FALSE(read.result);
    EXPECT_EQ(read.type, RegValueType::Unknown);
    EXPECT_EQ(read.size, 1U);

    // The system's sizes have 32 bits; a larger one is not cut to its low half.
    test::RegistryCalls calls;
    calls.FailCall(1);
    EXPECT_FALSE(ReadTraced(raw, L"bytes", RegValueType::String, buffer, 0x100000008U).result);
    EXPECT_EQ(calls.FailedCall(), "RegQueryValueExW(?, bytes, -, type, data, 4294967295)");
    RegCloseKey(raw);
}

TEST_F(BareHandles, TracedReadsPrintNumbersWithoutASign) {
    HOOK_IMPORT(query, RegQueryValueExW,
                [](HKEY, LPCWSTR, LPDWORD, LPDWORD type, auto...) -> LSTATUS {
                    *type = 0x80000001;
                    return static_cast<LSTATUS>(0xffffffffU);
                });
    const TracedRead read = ReadTraced(nullptr, L"v", RegValueType::Binary, nullptr, 0);
    EXPECT_EQ(read.printed, "Read value: v, type is 2147483649, retval 4294967295\n");
}

TEST_F(BareHandles, CountZeroAfterAFailure) {
    HOOK_IMPORT(info, RegQueryInfoKeyW,
                [](HKEY, LPWSTR, LPDWORD, LPDWORD, LPDWORD subKeys, LPDWORD, LPDWORD,
                   LPDWORD values, auto...) -> LSTATUS {
                    *(subKeys != nullptr ? subKeys : values) = 5;
                    return ERROR_ACCESS_DENIED;
                });
    std::uint64_t subKeys = 77;
    std::uint64_t values = 77;
    EXPECT_FALSE(GetSubKeyCount(nullptr, subKeys));
    EXPECT_FALSE(GetValueCount(nullptr, values));
    EXPECT_EQ(subKeys, 0U);
    EXPECT_EQ(values, 0U);
}

TEST_F(BareHandles, AnswerTheSame) {
    Set(L"n", test::Dword(1));
    test::MakeKey(HKEY_LOCAL_MACHINE, L"Software\\KORTests\\sub");
    HKEY raw = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegOpenKeyExW(HKEY_LOCAL_MACHINE, TestSubKey, 0, KEY_READ, &raw));
    std::uint64_t count = 77;
    EXPECT_TRUE(ValueExists(raw, L"n"));
    EXPECT_FALSE(ValueExists(raw, L"missing"));
    EXPECT_TRUE(GetSubKeyCount(raw, count));
    EXPECT_EQ(count, 1U);
    EXPECT_TRUE(GetValueCount(raw, count));
    EXPECT_EQ(count, 1U);
    EXPECT_TRUE(FlushKeyHandle(raw));
    EXPECT_TRUE(CloseKeyHandle(raw));
    EXPECT_FALSE(FlushKeyHandle(nullptr));
    EXPECT_FALSE(CloseKeyHandle(nullptr));
    EXPECT_FALSE(ValueExists(nullptr, L"n"));
    EXPECT_FALSE(GetSubKeyCount(nullptr, count));
    EXPECT_EQ(count, 0U);
    count = 77;
    EXPECT_FALSE(GetValueCount(nullptr, count));
    EXPECT_EQ(count, 0U);
}

} // namespace
