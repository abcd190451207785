// The registry types that the layer's value types stand for. Not installed.
#pragma once

#include <windows.h>

#include "registry/RegValueType.h"

namespace kor {

struct TypePair {
    RegValueType Type;
    DWORD RegistryType;
};

inline constexpr TypePair TypePairs[] = {
    {RegValueType::Dword, REG_DWORD},
    {RegValueType::String, REG_SZ},
    {RegValueType::Binary, REG_BINARY},
    {RegValueType::Qword, REG_QWORD},
    {RegValueType::ExpandString, REG_EXPAND_SZ},
    {RegValueType::MultiString, REG_MULTI_SZ},
};

constexpr RegValueType FromRegistryType(DWORD registryType) {
    for (const TypePair& pair : TypePairs) {
        if (pair.RegistryType == registryType) {
            return pair.Type;
        }
    }
    return RegValueType::Unknown;
}

// False for a type that is not written: MultiString, Unknown and every other number.
constexpr bool ToWritableRegistryType(RegValueType type, DWORD& registryType) {
    for (const TypePair& pair : TypePairs) {
        if (pair.Type == type && type != RegValueType::MultiString) {
            registryType = pair.RegistryType;
            return true;
        }
    }
    return false;
}

} // namespace kor
