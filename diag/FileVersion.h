// Which version of its own libraries the system has.
#pragma once

#include <windows.h>

#include <string>

struct FileVersion {
    std::wstring Text; // four numbers; empty after a failure
    DWORD Error = ERROR_SUCCESS;
};

// name is that of a file in the system's folder.
FileVersion VersionOfSystemFile(const wchar_t* name);
