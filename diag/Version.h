// The version of the program, as wide text.
#pragma once

#include "res/version.h"

#define KOR_WIDE(text) KOR_WIDE_(text)
#define KOR_WIDE_(text) L##text

inline constexpr wchar_t ProgramVersion[] = KOR_WIDE(KOR_VERSION_TEXT);
