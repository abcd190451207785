// The types of registry values in the words of the registry editor's users.
#pragma once

#include <string_view>

#include "registry/RegValueType.h"

// "unknown" for a type that the library does not read.
const wchar_t* TypeName(RegValueType type);

// Unknown for a word that names no type.
RegValueType TypeNamed(std::wstring_view word);
