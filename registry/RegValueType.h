// The layer's own value types.
#pragma once

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
