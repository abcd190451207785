// Operations on a bare registry handle. They return false on failure.
#pragma once

#include <windows.h>

#include <cstdint>

#include "base/CKORString.h"

namespace kor {

bool CloseKeyHandle(HKEY handle);
bool FlushKeyHandle(HKEY handle);
bool ValueExists(HKEY handle, const CKORString& name);
// The count is 0 on failure.
bool GetSubKeyCount(HKEY handle, std::uint64_t& count);
bool GetValueCount(HKEY handle, std::uint64_t& count);

} // namespace kor
