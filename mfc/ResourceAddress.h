// Where the HTML engine finds a page of the program's resources.
#pragma once

#include <windows.h>

#include <comdef.h>

// The res: address of the program's HTML resource; empty when the program's path cannot be had.
// Throws _com_error without memory for it.
_bstr_t ResourceAddress(UINT id);
