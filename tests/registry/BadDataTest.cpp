// Generated values, most of them wrong in some way, through every read, a copy and an enumeration.
// Each result must be that of a small model that knows nothing of the layer. The guard page behind
// each block finds what is read beyond the data.
#include <algorithm>
#include <map>
#include <memory>
#include <random>
#include <string_view>

#include "tests/registry/RegistryTest.h"
#include "tests/support/GuardedMemory.h"
#include "tests/support/ImportHook.h"

namespace {

constexpr wchar_t TestKey[] = L"HKEY_CURRENT_USER\\Software\\KORTests\\data";
constexpr wchar_t TestSubKey[] = L"Software\\KORTests\\data";
constexpr unsigned Seed = 20240229;

class Generator {
public:
    std::size_t Below(std::size_t limit) { return m_random() % limit; }

    test::RawValue Value() {
        constexpr DWORD Types[] = {
            REG_NONE,  REG_SZ, REG_EXPAND_SZ, REG_BINARY, REG_DWORD, REG_DWORD_BIG_ENDIAN,
            REG_LINK,  REG_SZ, REG_MULTI_SZ,  8,          9,         10,
            REG_QWORD, 12,     0x7fffffff,    REG_SZ,     REG_DWORD, REG_MULTI_SZ};
        const DWORD type = Types[Below(std::size(Types))];
        std::vector<BYTE> data(Size());
        // Few different characters, so that nulls fall everywhere.
        for (std::size_t i = 0; i < data.size(); ++i) {
            const std::size_t pick = Below(8);
            const BYTE common = i % 2 == 1 ? BYTE{0} : static_cast<BYTE>("ab\0cdefg"[pick]);
            data[i] = pick == 0 ? static_cast<BYTE>(Below(256)) : common;
        }
        return {type, data};
    }

    std::wstring Name() {
        constexpr std::size_t Lengths[] = {1, 2, 8, 31, 32, 33, 255, 256, 1022, 1023};
        std::wstring name(Lengths[Below(std::size(Lengths))], L'n');
        for (wchar_t& c : name) {
            c = static_cast<wchar_t>(Below(20) == 0 ? 0x100 + Below(0x5000) : L'a' + Below(26));
        }
        return name;
    }

private:
    std::size_t Size() {
        constexpr std::size_t Sizes[] = {0, 1, 2, 3, 4, 5, 7, 8, 9, 1023, 1024, 1025, 1026};
        const std::size_t pick = Below(40);
        return pick < std::size(Sizes) ? Sizes[pick] : pick == 39 ? Below(70001) : Below(300);
    }

    std::mt19937 m_random{Seed};
};

// --- The model: what the reads say about the bytes of a value. ---

std::wstring Characters(const test::RawValue& value) {
    std::wstring text;
    text.reserve(value.data.size() / 2);
    for (std::size_t i = 0; i + 1 < value.data.size(); i += 2) {
        text += static_cast<wchar_t>(value.data[i] | value.data[i + 1] << 8);
    }
    return text;
}

std::optional<std::wstring> ModelText(const test::RawValue& value) {
    const test::PlainMemory plain;
    const std::wstring all = Characters(value);
    if (value.type == REG_SZ || value.type == REG_EXPAND_SZ) {
        return all.substr(0, all.find(L'\0'));
    }
    if (value.type != REG_MULTI_SZ) {
        return std::nullopt;
    }
    std::wstring text = L"<";
    std::wstring item;
    text.reserve(all.size() * 3);
    item.reserve(all.size());
    bool isFirst = true;
    for (std::size_t i = 0; i <= all.size(); ++i) {
        const bool ends = i == all.size() || all[i] == L'\0';
        if (!ends) {
            item += all[i];
            continue;
        }
        if (item.empty()) {
            break;
        }
        text += (isFirst ? L"" : L"> <") + item;
        isFirst = false;
        item.clear();
    }
    return text + L">";
}

std::optional<std::uint64_t> ModelNumber(const test::RawValue& value, DWORD type,
                                         std::size_t size) {
    if (value.type != type || value.data.size() != size) {
        return std::nullopt;
    }
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < size; ++i) {
        number |= std::uint64_t{value.data[i]} << (8 * i);
    }
    return number;
}

int ModelType(DWORD registryType) {
    switch (registryType) {
    case REG_DWORD:
        return 1;
    case REG_SZ:
        return 2;
    case REG_BINARY:
        return 3;
    case REG_QWORD:
        return 4;
    case REG_EXPAND_SZ:
        return 5;
    case REG_MULTI_SZ:
        return 6;
    default:
        return 0;
    }
}

// The copy of the value; number is what the last 64-bit value with 4 bytes left behind.
std::optional<test::RawValue> ModelCopy(const test::RawValue& value, std::uint32_t& number) {
    switch (value.type) {
    case REG_DWORD:
        return value.data.size() == 4 ? std::optional(value) : std::nullopt;
    case REG_QWORD:
        number = static_cast<std::uint32_t>(ModelNumber(value, REG_QWORD, 4).value_or(number));
        return test::Dword(number);
    case REG_SZ:
    case REG_EXPAND_SZ:
        return test::Text(REG_SZ, *ModelText(value));
    case REG_BINARY:
        return value;
    default:
        return std::nullopt;
    }
}

void ExpectReads(CRegistryKey& key, const CKORString& name, const test::RawValue& value) {
    const auto dword = ModelNumber(value, REG_DWORD, 4);
    const auto qword = ModelNumber(value, REG_QWORD, 8);
    const auto text = ModelText(value);
    constexpr std::uint32_t Untouched = 0xdeadbeef;

    std::uint32_t u32 = Untouched;
    std::int64_t wide = Untouched;
    std::uint64_t u64 = Untouched;
    EXPECT_EQ(key.ReadDword(name, u32), dword.has_value());
    EXPECT_EQ(u32, dword.value_or(Untouched));
    EXPECT_EQ(key.ReadDwordAsInt64(name, wide), dword.has_value());
    EXPECT_EQ(wide, dword ? std::int64_t{static_cast<std::int32_t>(*dword)} : Untouched);
    EXPECT_EQ(key.ReadQword(name, u64), qword.has_value());
    EXPECT_EQ(u64, qword.value_or(Untouched));

    CKORString read(L"untouched");
    EXPECT_EQ(key.ReadString(name, read), text.has_value());
    EXPECT_STREQ(read.Text(), text ? text->c_str() : L"untouched");

    // A buffer of just the size, or half of it, with a guard page behind it.
    for (const std::size_t room : {value.data.size(), value.data.size() / 2}) {
        std::vector<BYTE> buffer(room);
        std::uint64_t size = room;
        const bool fits = value.type == REG_BINARY && room == value.data.size();
        EXPECT_EQ(key.ReadBinary(name, buffer.data(), size), fits);
        EXPECT_EQ(size, value.data.size());
        EXPECT_TRUE(!fits || buffer == value.data);
    }
    for (int type = 0; type <= 6; ++type) {
        EXPECT_EQ(key.QueryValue(name, static_cast<RegValueType>(type)),
                  type != 0 && type == ModelType(value.type));
    }
}

class BadData : public test::RegistryTest {
protected:
    Generator m_generator;
};

// Real values. The system ends strings that are not ended, so it is asked what it stored.
TEST_F(BadData, RealValuesAreReadCopiedAndListed) {
    constexpr int Values = 2000;
    std::map<std::wstring, test::RawValue> stored;
    while (stored.size() < Values) {
        const std::wstring name = m_generator.Name();
        test::SetRaw(HKEY_CURRENT_USER, TestSubKey, name, m_generator.Value());
        stored[name] = *test::GetRaw(HKEY_CURRENT_USER, TestSubKey, name);
    }
    CRegistryKey key(TestKey);
    CTable1D<CKORString> names;
    EXPECT_TRUE(key.EnumValueNames(names));
    ASSERT_EQ(names.Count(), Values);
    EXPECT_TRUE(key.CopyValues(L"HKEY_CURRENT_USER\\Software\\KORTests\\copy"));
    std::uint32_t number = 0;
    for (const CKORString& name : names) {
        const auto value = stored.find(name.Text());
        ASSERT_NE(value, stored.end());
        ExpectReads(key, name, value->second);
        EXPECT_EQ(test::GetRaw(HKEY_CURRENT_USER, L"Software\\KORTests\\copy", name.Text()),
                  ModelCopy(value->second, number));
        ASSERT_FALSE(HasFailure()) << testing::PrintToString(value->second).substr(0, 200);
        stored.erase(value);
    }
    EXPECT_TRUE(stored.empty());
}

// Lists cut a name of this length, reads take it whole.
TEST_F(BadData, TheLongestNameIsReadLikeAnyOther) {
    const std::wstring name(16383, L'n');
    for (const test::RawValue& value :
         {test::Dword(7), test::Text(REG_SZ, L"text"), test::RawValue{REG_BINARY, {1, 2}}}) {
        test::SetRaw(HKEY_CURRENT_USER, TestSubKey, name, value);
        CRegistryKey key(TestKey);
        ExpectReads(key, name.c_str(), value);
        EXPECT_TRUE(key.DeleteValue(name.c_str()));
    }
}

// A key of values as they may stand in a registry that somebody else wrote: whatever bytes, for
// every type. It answers in the system's place, for every handle, while it lives, and keeps what is
// written meanwhile.
class ForeignKey {
public:
    void Put(const std::wstring& name, const test::RawValue& value) {
        const test::PlainMemory plain;
        if (m_values.insert_or_assign(name, value).second) {
            m_names.push_back(name);
        }
    }
    const std::vector<std::wstring>& Names() const { return m_names; }
    const test::RawValue& Value(const std::wstring& name) const { return m_values.at(name); }
    std::optional<test::RawValue> Written(const std::wstring& name) const {
        const auto written = m_written.find(name);
        return written != m_written.end() ? std::optional(written->second) : std::nullopt;
    }

private:
    LSTATUS Query(LPCWSTR name, LPDWORD type, LPBYTE buffer, LPDWORD size) const {
        const auto found = m_values.find(std::wstring_view(name));
        if (found == m_values.end()) {
            return ERROR_FILE_NOT_FOUND;
        }
        const std::vector<BYTE>& data = found->second.data;
        const bool fits = buffer == nullptr || *size >= data.size();
        if (type != nullptr) {
            *type = found->second.type;
        }
        if (buffer != nullptr && fits) {
            std::copy(data.begin(), data.end(), buffer);
        }
        if (size != nullptr) {
            *size = static_cast<DWORD>(data.size());
        }
        return fits ? LSTATUS{ERROR_SUCCESS} : LSTATUS{ERROR_MORE_DATA};
    }

    LSTATUS List(DWORD index, LPWSTR name, LPDWORD length) const {
        if (index >= m_names.size()) {
            return ERROR_NO_MORE_ITEMS;
        }
        const std::wstring& found = m_names[index];
        if (found.size() >= *length) {
            return ERROR_MORE_DATA;
        }
        *length = static_cast<DWORD>(found.size());
        std::copy_n(found.c_str(), found.size() + 1, name);
        return ERROR_SUCCESS;
    }

    std::map<std::wstring, test::RawValue, std::less<>> m_values;
    std::vector<std::wstring> m_names; // in the order in which they are listed
    std::map<std::wstring, test::RawValue> m_written;

    test::ImportHook<struct QueryTag, decltype(&RegQueryValueExW)> m_query{
        "RegQueryValueExW", [this](HKEY, LPCWSTR name, LPDWORD, LPDWORD type, LPBYTE buffer,
                                   LPDWORD size) { return Query(name, type, buffer, size); }};
    test::ImportHook<struct EnumTag, decltype(&RegEnumValueW)> m_enum{
        "RegEnumValueW", [this](HKEY, DWORD index, LPWSTR name, LPDWORD length, auto...) {
            return List(index, name, length);
        }};
    test::ImportHook<struct SetTag, decltype(&RegSetValueExW)> m_set{
        "RegSetValueExW",
        [this](HKEY, LPCWSTR name, DWORD, DWORD type, const BYTE* data, DWORD size) -> LSTATUS {
            const test::PlainMemory plain;
            m_written[name] = {type, std::vector<BYTE>(data, data + size)};
            return ERROR_SUCCESS;
        }};
};

TEST_F(BadData, ForeignValuesAreReadCopiedAndListed) {
    constexpr int Keys = 37;
    constexpr std::size_t ValuesInEach = 500;
    test::MakeKey(HKEY_CURRENT_USER, TestSubKey);
    test::MakeKey(HKEY_CURRENT_USER, L"Software\\KORTests\\copy");
    for (int i = 0; i < Keys; ++i) {
        ForeignKey foreign;
        while (foreign.Names().size() < ValuesInEach) {
            foreign.Put(m_generator.Name(), m_generator.Value());
        }
        std::unique_ptr<CRegistryKey> key;
        for (std::size_t j = 0; j < ValuesInEach; ++j) {
            // A buffer that an earlier value grew would hide what lies behind this one.
            if (j % 10 == 0) {
                key = std::make_unique<CRegistryKey>(TestKey);
            }
            const std::wstring& name = foreign.Names()[j];
            ExpectReads(*key, name.c_str(), foreign.Value(name));
            ASSERT_FALSE(HasFailure())
                << testing::PrintToString(foreign.Value(name)).substr(0, 200);
        }
        CTable1D<CKORString> listed;
        EXPECT_TRUE(key->EnumValueNames(listed));
        EXPECT_TRUE(std::equal(listed.begin(), listed.end(), foreign.Names().begin(),
                               foreign.Names().end(),
                               [](const CKORString& left, const std::wstring& right) {
                                   return left.Text() == right;
                               }));

        EXPECT_TRUE(key->CopyValues(L"HKEY_CURRENT_USER\\Software\\KORTests\\copy"));
        const test::PlainMemory plain;
        std::uint32_t number = 0;
        for (const std::wstring& name : foreign.Names()) {
            EXPECT_EQ(foreign.Written(name), ModelCopy(foreign.Value(name), number));
            ASSERT_FALSE(HasFailure())
                << testing::PrintToString(foreign.Value(name)).substr(0, 200);
        }
    }
}

} // namespace
