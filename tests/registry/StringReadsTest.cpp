// Strings and lists of strings whose data ends where it likes.
#include "tests/registry/RegistryTest.h"
#include "tests/support/ImportHook.h"

namespace {

using test::MachineKey;

using StringReads = test::MachineKeyTest;

struct ItemsRow {
    std::wstring data;
    bool terminated;
    const wchar_t* text;
};

// What the system gives back for a query into a buffer, as the tests say; it adds terminators
// itself.
class Answer {
public:
    Answer(DWORD registryType, std::vector<BYTE> data)
        : m_type(registryType), m_data(std::move(data)),
          m_query(
              "RegQueryValueExW",
              [this](HKEY, LPCWSTR, LPDWORD, LPDWORD type, LPBYTE buffer, LPDWORD size) -> LSTATUS {
                  const auto needed = static_cast<DWORD>(m_data.size());
                  const bool fits = buffer == nullptr || *size >= needed;
                  if (type != nullptr) {
                      *type = m_type;
                  }
                  if (buffer != nullptr && fits) {
                      std::fill_n(buffer, *size, BYTE{0x41});
                      std::copy(m_data.begin(), m_data.end(), buffer);
                  }
                  if (size != nullptr) {
                      *size = needed;
                  }
                  return fits ? LSTATUS{ERROR_SUCCESS} : LSTATUS{ERROR_MORE_DATA};
              }) {}

private:
    DWORD m_type;
    std::vector<BYTE> m_data;
    test::ImportHook<struct AnswerTag, decltype(&RegQueryValueExW)> m_query;
};

TEST_F(StringReads, MultiStringsAreReadItemByItem) {
    const ItemsRow rows[] = {
        {std::wstring(L"x\0y\0z\0", 6), true, L"<x> <y> <z>"},
        {std::wstring(L"a\0b\0", 4), true, L"<a> <b>"},
        {std::wstring(L"a\0", 2), true, L"<a>"},
        {std::wstring(L"a", 1), true, L"<a>"},
        {std::wstring(L"a", 1), false, L"<a>"},
        {std::wstring(L"a\0b", 3), false, L"<a> <b>"},
        {std::wstring(L"a\0\0b\0", 5), true, L"<a>"},
        {std::wstring(L"\0a\0", 3), true, L"<>"},
        {std::wstring(), true, L"<>"},
        {std::wstring(), false, L"<>"},
        {std::wstring(L"one item\0two", 12), false, L"<one item> <two>"},
    };
    for (const ItemsRow& row : rows) {
        const Answer answer(REG_MULTI_SZ, test::Bytes(row.data, row.terminated));
        CRegistryKey key(MachineKey);
        CKORString text;
        EXPECT_TRUE(key.ReadString(L"m", text));
        EXPECT_EQ(text, row.text);
        EXPECT_EQ(text.Count(), text.Length() + 1);
    }
}

// A value that is replaced by one of another type between the question for its type and the read.
TEST_F(StringReads, AnotherTypeThanTheOneThatWasToldIsAFailure) {
    for (const DWORD told : {DWORD{REG_SZ}, DWORD{REG_EXPAND_SZ}, DWORD{REG_MULTI_SZ}}) {
        SCOPED_TRACE(told);
        int reads = 0;
        HOOK_IMPORT(
            query, RegQueryValueExW,
            [&](HKEY, LPCWSTR, LPDWORD, LPDWORD type, LPBYTE buffer, LPDWORD size) -> LSTATUS {
                if (type != nullptr) {
                    *type = buffer == nullptr ? told : DWORD{REG_BINARY};
                }
                if (buffer != nullptr) {
                    ++reads;
                    std::fill_n(buffer, *size, BYTE{0});
                    *buffer = 'x';
                }
                if (size != nullptr) {
                    *size = 4;
                }
                return ERROR_SUCCESS;
            });
        CRegistryKey key(MachineKey);
        CKORString text(L"untouched");
        EXPECT_FALSE(key.ReadString(L"s", text));
        EXPECT_EQ(text, L"untouched");
        EXPECT_EQ(reads, 1);
    }
}

TEST_F(StringReads, StringsEndWithTheirData) {
    struct TextRow {
        std::vector<BYTE> data;
        std::wstring text;
    };
    std::vector<BYTE> odd = test::Bytes(L"ab", false);
    odd.push_back('c');
    const TextRow rows[] = {
        {{}, L""},
        {{'a'}, L""},
        {test::Bytes(L"a", false), L"a"},
        {odd, L"ab"},
        {test::Bytes(L"ab", true), L"ab"},
        {test::Bytes(std::wstring(L"ab\0cd", 5), true), L"ab"},
        {test::Bytes(std::wstring(512, L'y'), false), std::wstring(512, L'y')},
        {test::Bytes(std::wstring(513, L'y'), false), std::wstring(513, L'y')},
        {test::Bytes(std::wstring(9000, L'y'), false), std::wstring(9000, L'y')},
    };
    for (const DWORD type : {DWORD{REG_SZ}, DWORD{REG_EXPAND_SZ}}) {
        for (const TextRow& row : rows) {
            const Answer answer(type, row.data);
            CRegistryKey key(MachineKey);
            CKORString text(L"before");
            EXPECT_TRUE(key.ReadString(L"s", text));
            EXPECT_EQ(text.Text(), row.text);
            EXPECT_EQ(text.Length(), static_cast<std::int64_t>(row.text.size()));
        }
    }
}

} // namespace
