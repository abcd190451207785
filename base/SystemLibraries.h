// DLLs of the system, and nobody else's: a folder that a program lies in may hold foreign ones.
#pragma once

#include <windows.h>

// From now on DLLs that are loaded by name come from the system's folder and the folders that were
// added on purpose. An old system that cannot do that stays as it is. To be called before anything
// else.
void LoadLibrariesFromSystemOnly();

// Writes the path of a file in the system's folder, which need not be there. False when the folder
// cannot be found or the path would be too long; path is undefined then. The name is short, without
// a path.
[[nodiscard]] bool FindSystemFile(const wchar_t* name, wchar_t (&path)[MAX_PATH]);

// The DLL from the system's folder, null when it cannot be loaded. It stays loaded. The name is
// short, without a path.
HMODULE LoadSystemLibrary(const wchar_t* name);
