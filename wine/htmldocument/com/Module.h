// The library itself.
#pragma once

#include <windows.h>

namespace html {

HINSTANCE ModuleInstance();

} // namespace html
