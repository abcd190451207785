// The layer's own value types and the registry types that they stand for.
#pragma once

#include <windows.h>

#include <cstdint>

// Every registry type that is not listed is Unknown; no value of such a type is read or written.
// MultiString is read only.
enum class RegValueType : std::uint32_t {
    Unknown = 0,
    Dword = 1,
    String = 2,
    Binary = 3,
    Qword = 4,
    ExpandString = 5,
    MultiString = 6,
};

namespace registry_types {

struct TypePair {
    RegValueType type;
    DWORD registryType;
};

inline constexpr TypePair Pairs[] = {
    {RegValueType::Dword, REG_DWORD},
    {RegValueType::String, REG_SZ},
    {RegValueType::Binary, REG_BINARY},
    {RegValueType::Qword, REG_QWORD},
    {RegValueType::ExpandString, REG_EXPAND_SZ},
    {RegValueType::MultiString, REG_MULTI_SZ},
};

} // namespace registry_types

constexpr RegValueType FromRegistryType(DWORD registryType) {
    for (const registry_types::TypePair& pair : registry_types::Pairs) {
        if (pair.registryType == registryType) {
            return pair.type;
        }
    }
    return RegValueType::Unknown;
}

// False for a type that is not written: MultiString, Unknown and every other number.
constexpr bool ToWritableRegistryType(RegValueType type, DWORD& registryType) {
    for (const registry_types::TypePair& pair : registry_types::Pairs) {
        if (pair.type == type && type != RegValueType::MultiString) {
            registryType = pair.registryType;
            return true;
        }
    }
    return false;
}
