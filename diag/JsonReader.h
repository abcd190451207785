// Reads JSON, strictly: what is not JSON to the letter is refused, and so is an object that has a
// name twice, of which other readers keep the one or the other.
//
// It is our own because there is no other: the system's reader begins with Windows 8, and what the
// product depends on is the C++ standard library and Windows.
#pragma once

#include <string>
#include <string_view>

#include "diag/JsonValue.h"

// Values stand in at most this many others.
inline constexpr int MostJsonDepth = 64;

// False with the place and what is wrong there, in words; document is of no use then. A surrogate
// that is written as \uXXXX is taken as it is, without its other half, too.
bool ReadJson(std::wstring_view text, JsonValue& document, std::wstring& error);
