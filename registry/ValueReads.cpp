// Reading values with a check of their type and size.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>
#include <string_view>

#include "registry/CRegistryKey.h"
#include "registry/KeyHandles.h"
#include "registry/RegistryTypes.h"

namespace {

constexpr DWORD FirstBufferSize = 1024;

// %ls is wide under every rule that the C runtime's wprintf may follow.
void Trace(const CKORString& name, DWORD registryType, LSTATUS result) {
    std::wprintf(L"Read value: %ls, type is %u, retval %u\n", name.Text(),
                 static_cast<unsigned>(registryType), static_cast<unsigned>(result));
}

CKORString TextOf(std::wstring_view characters) {
    const auto length = static_cast<std::int64_t>(characters.size());
    CKORString text(L"");
    text.SetSize(length + 1, false);
    std::copy(characters.begin(), characters.end(), text.Data());
    text[length] = L'\0';
    return text;
}

// An empty item or the end of the data, whichever comes first, ends the list.
template <typename Take>
void ForEachItem(std::wstring_view items, Take take) {
    while (!items.empty() && items.front() != L'\0') {
        const std::wstring_view item = items.substr(0, items.find(L'\0'));
        take(item);
        items.remove_prefix(std::min(item.size() + 1, items.size()));
    }
}

CKORString BracketedItems(std::wstring_view items) {
    constexpr std::wstring_view Separator = L"> <";
    std::size_t length = 2;
    ForEachItem(items, [&](std::wstring_view item) {
        length += item.size() + (length > 2 ? Separator.size() : 0);
    });

    CKORString text(L"");
    text.SetSize(static_cast<std::int64_t>(length) + 1, false);
    wchar_t* const start = text.Data();
    wchar_t* end = start;
    *end++ = L'<';
    ForEachItem(items, [&](std::wstring_view item) {
        if (end - start > 1) {
            end = std::copy(Separator.begin(), Separator.end(), end);
        }
        end = std::copy(item.begin(), item.end(), end);
    });
    *end++ = L'>';
    *end = L'\0';
    return text;
}

} // namespace

bool CRegistryKey::ValueExists(const CKORString& name) const {
    return m_handle != nullptr && kor::ValueExists(m_handle, name);
}

bool CRegistryKey::QueryValue(const CKORString& name, RegValueType requestedType) {
    if (!ValueExists(name)) {
        return false;
    }
    if (m_readBuffer == nullptr && !AllocateReadBuffer(FirstBufferSize)) {
        return false;
    }

    RegValueType type = RegValueType::Unknown;
    DWORD registryType = REG_NONE;
    auto size = static_cast<DWORD>(m_readBufferCapacity);
    LSTATUS result = QueryIntoBuffer(name, registryType, size);
    if (result == ERROR_MORE_DATA) {
        if (!AllocateReadBuffer(size)) {
            m_lastDataSize = size;
            return false;
        }
        result = QueryIntoBuffer(name, registryType, size);
        // No type is known yet, so it never writes: docs/quirks.md.
        if (type == RegValueType::Binary) {
            Trace(name, registryType, result);
        }
    }
    m_lastDataSize = size;
    if (result != ERROR_SUCCESS) {
        return false;
    }
    type = kor::FromRegistryType(registryType);
    return type != RegValueType::Unknown && type == requestedType;
}

LSTATUS CRegistryKey::QueryIntoBuffer(const CKORString& name, DWORD& registryType, DWORD& size) {
    return RegQueryValueExW(m_handle, name.Text(), nullptr, &registryType,
                            reinterpret_cast<BYTE*>(m_readBuffer.get()), &size);
}

// Frees the buffer before it makes the new one: what was in it is of no use any more.
bool CRegistryKey::AllocateReadBuffer(DWORD capacity) {
    m_readBuffer.reset();
    m_readBuffer.reset(new (std::nothrow) std::byte[capacity]);
    m_readBufferCapacity = m_readBuffer != nullptr ? capacity : 0;
    return m_readBuffer != nullptr;
}

bool CRegistryKey::ReadExactly(const CKORString& name, RegValueType type, void* value,
                               std::size_t size) {
    if (!QueryValue(name, type) || m_lastDataSize != size) {
        return false;
    }
    std::memcpy(value, m_readBuffer.get(), size);
    return true;
}

bool CRegistryKey::ReadDword(const CKORString& name, std::uint32_t& value) {
    return ReadExactly(name, RegValueType::Dword, &value, sizeof value);
}

bool CRegistryKey::ReadDword(const CKORString& name, DWORD& value) {
    return ReadExactly(name, RegValueType::Dword, &value, sizeof value);
}

bool CRegistryKey::ReadDwordAsInt64(const CKORString& name, std::int64_t& value) {
    std::int32_t number = 0;
    if (!ReadExactly(name, RegValueType::Dword, &number, sizeof number)) {
        return false;
    }
    value = number;
    return true;
}

bool CRegistryKey::ReadDwordAsUInt64(const CKORString& name, std::uint64_t& value) {
    std::uint32_t number = 0;
    if (!ReadDword(name, number)) {
        return false;
    }
    value = number;
    return true;
}

bool CRegistryKey::ReadQword(const CKORString& name, std::uint64_t& value) {
    return ReadExactly(name, RegValueType::Qword, &value, sizeof value);
}

bool CRegistryKey::ReadQword(const CKORString& name, std::int64_t& value) {
    return ReadExactly(name, RegValueType::Qword, &value, sizeof value);
}

bool CRegistryKey::ReadString(const CKORString& name, CKORString& value) {
    RegValueType type = RegValueType::Unknown;
    if (m_handle == nullptr || !GetValueType(m_handle, name, type)) {
        return false;
    }
    switch (type) {
    case RegValueType::String:
    case RegValueType::ExpandString: {
        if (!QueryValue(name, type)) {
            return false;
        }
        const std::wstring_view text = BufferedCharacters();
        const std::size_t end = text.find(L'\0');
        // A terminated text is taken as it lies in the buffer, without a second copy.
        if (end != std::wstring_view::npos) {
            value = text.data();
        } else {
            value = TextOf(text);
        }
        return true;
    }
    case RegValueType::MultiString:
        if (!QueryValue(name, type)) {
            return false;
        }
        value = BracketedItems(BufferedCharacters());
        return true;
    default:
        return false;
    }
}

// The whole characters of the value last read; an odd last byte is left out.
std::wstring_view CRegistryKey::BufferedCharacters() const {
    return {reinterpret_cast<const wchar_t*>(m_readBuffer.get()),
            static_cast<std::size_t>(m_lastDataSize / sizeof(wchar_t))};
}

bool CRegistryKey::ReadBinary(const CKORString& name, void* buffer, std::uint64_t& size) {
    if (m_handle == nullptr) {
        return false;
    }
    const bool fits = QueryValue(name, RegValueType::Binary) && m_lastDataSize <= size;
    if (fits && m_lastDataSize > 0) {
        std::memcpy(buffer, m_readBuffer.get(), static_cast<std::size_t>(m_lastDataSize));
    }
    // Of a missing value it is the size of the one before: docs/quirks.md.
    size = m_lastDataSize;
    return fits;
}

bool CRegistryKey::GetValueType(HKEY handle, const CKORString& name, RegValueType& type) {
    DWORD registryType = REG_NONE;
    if (RegQueryValueExW(handle, name.Text(), nullptr, &registryType, nullptr, nullptr) !=
        ERROR_SUCCESS) {
        return false;
    }
    type = kor::FromRegistryType(registryType);
    return type != RegValueType::Unknown;
}

bool CRegistryKey::GetValueType(const CKORString& name, RegValueType& type) const {
    return m_handle != nullptr && GetValueType(m_handle, name, type);
}

bool CRegistryKey::QueryValueTraced(HKEY handle, const CKORString& name, RegValueType& type,
                                    void* buffer, std::uint64_t& size, bool& hasMoreData) {
    DWORD registryType = REG_NONE;
    auto systemSize = static_cast<DWORD>(std::min<std::uint64_t>(size, MAXDWORD));
    const LSTATUS result = RegQueryValueExW(handle, name.Text(), nullptr, &registryType,
                                            static_cast<BYTE*>(buffer), &systemSize);
    if (type == RegValueType::Binary) {
        Trace(name, registryType, result);
    }
    hasMoreData = result == ERROR_MORE_DATA;
    size = systemSize;
    if (result != ERROR_SUCCESS) {
        return false;
    }
    type = kor::FromRegistryType(registryType);
    return type != RegValueType::Unknown;
}
