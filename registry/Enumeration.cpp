// Walking the names of a key's subkeys and values.
#include <algorithm>
#include <array>

#include "registry/CRegistryKey.h"
#include "registry/KeyHandles.h"

namespace {

constexpr DWORD NameCharacters = 1024;
constexpr std::int64_t FirstNames = 8;

using EnumFunction = LSTATUS (*)(HKEY, DWORD, wchar_t*, DWORD*);

LSTATUS NextSubKey(HKEY key, DWORD index, wchar_t* name, DWORD* length) {
    return RegEnumKeyExW(key, index, name, length, nullptr, nullptr, nullptr, nullptr);
}

LSTATUS NextValue(HKEY key, DWORD index, wchar_t* name, DWORD* length) {
    return RegEnumValueW(key, index, name, length, nullptr, nullptr, nullptr, nullptr);
}

// The list grows in doubling steps, so that the walk is linear, and is cut to the count at its end.
bool CollectNames(HKEY key, EnumFunction next, CTable1D<CKORString>& names) {
    names.SetSize(0, false);
    if (key == nullptr) {
        return false;
    }
    // One character more than the system is told of, which stays null.
    std::array<wchar_t, NameCharacters + 1> name{};
    for (DWORD index = 0;; ++index) {
        DWORD length = NameCharacters;
        const LSTATUS result = next(key, index, name.data(), &length);
        // Intended: a name that does not fit adds what is in the buffer.
        if (result != ERROR_SUCCESS && result != ERROR_MORE_DATA) {
            names.SetSize(index, true);
            return result == ERROR_NO_MORE_ITEMS;
        }
        if (index == names.Count()) {
            names.SetSize(std::max<std::int64_t>(FirstNames, std::int64_t{index} * 2), true);
        }
        names[index] = name.data();
    }
}

} // namespace

bool CRegistryKey::EnumSubKeyNames(CTable1D<CKORString>& names) const {
    return CollectNames(m_handle, NextSubKey, names);
}

bool CRegistryKey::EnumValueNames(CTable1D<CKORString>& names) const {
    return CollectNames(m_handle, NextValue, names);
}

bool CRegistryKey::SubKeyExists(const CKORString& name) const {
    HKEY subKey = nullptr;
    if (m_handle == nullptr || RegOpenKeyExW(m_handle, name.Text(), 0, m_extraAccess | KEY_READ,
                                             &subKey) != ERROR_SUCCESS) {
        return false;
    }
    CloseKeyHandle(subKey);
    return true;
}
