// Walking the names of a key's subkeys and values.
#include <algorithm>
#include <array>

#include "registry/CRegistryKey.h"
#include "registry/KeyHandles.h"

namespace {

constexpr DWORD NameCharacters = 1024;

using EnumFunction = LSTATUS (*)(HKEY, DWORD, wchar_t*, DWORD*);

LSTATUS NextSubKey(HKEY key, DWORD index, wchar_t* name, DWORD* length) {
    return RegEnumKeyExW(key, index, name, length, nullptr, nullptr, nullptr, nullptr);
}

LSTATUS NextValue(HKEY key, DWORD index, wchar_t* name, DWORD* length) {
    return RegEnumValueW(key, index, name, length, nullptr, nullptr, nullptr, nullptr);
}

// visit gives false to end the walk early, which is a success too.
template <typename Visit>
bool Walk(HKEY key, EnumFunction next, const Visit& visit) {
    if (key == nullptr) {
        return false;
    }
    // The system is given one character less, so the last one stays null.
    std::array<wchar_t, NameCharacters + 1> name{};
    for (DWORD index = 0;; ++index) {
        DWORD length = NameCharacters;
        const LSTATUS result = next(key, index, name.data(), &length);
        // A name that does not fit counts as it is in the buffer: docs/quirks.md.
        if (result != ERROR_SUCCESS && result != ERROR_MORE_DATA) {
            return result == ERROR_NO_MORE_ITEMS;
        }
        if (!visit(name.data())) {
            return true;
        }
    }
}

// The list grows in doubling steps, so that the walk is linear, and is cut to the count at its end.
bool CollectNames(HKEY key, EnumFunction next, CTable1D<CKORString>& names) {
    names.SetSize(0, false);
    std::int64_t count = 0;
    const bool isComplete = Walk(key, next, [&](const wchar_t* name) {
        if (count == names.Count()) {
            names.SetSize(std::max<std::int64_t>(1, count * 2), true);
        }
        names[count] = name;
        ++count;
        return true;
    });
    names.SetSize(count, true);
    return isComplete;
}

} // namespace

std::uint32_t CRegistryKey::GetSubKeyCount() const {
    std::uint64_t count = 0;
    return m_handle != nullptr && kor::GetSubKeyCount(m_handle, count)
               ? static_cast<std::uint32_t>(count)
               : 0;
}

std::uint32_t CRegistryKey::GetValueCount() const {
    std::uint64_t count = 0;
    return m_handle != nullptr && kor::GetValueCount(m_handle, count)
               ? static_cast<std::uint32_t>(count)
               : 0;
}

bool CRegistryKey::EnumSubKeyNames(CTable1D<CKORString>& names) const {
    return CollectNames(m_handle, NextSubKey, names);
}

bool CRegistryKey::EnumValueNames(CTable1D<CKORString>& names) const {
    return CollectNames(m_handle, NextValue, names);
}

bool CRegistryKey::VisitSubKeyNames(const NameVisitor& visit) const {
    return visit != nullptr && Walk(m_handle, NextSubKey, visit);
}

bool CRegistryKey::VisitValueNames(const NameVisitor& visit) const {
    return visit != nullptr && Walk(m_handle, NextValue, visit);
}

bool CRegistryKey::SubKeyExists(const CKORString& name) const {
    HKEY subKey = nullptr;
    if (m_handle == nullptr || RegOpenKeyExW(m_handle, name.Text(), 0, m_extraAccess | KEY_READ,
                                             &subKey) != ERROR_SUCCESS) {
        return false;
    }
    kor::CloseKeyHandle(subKey);
    return true;
}
