// Where the library finds its folders: environment variables, some of which support people can
// override with debug settings in the registry (docs/folder-settings.md).
#pragma once

#include "base/CKORString.h"
#include "base/CTable1D.h"

// Values are given as they are stored: no separator is added or removed at their end, no variable
// in them is expanded. Where an operation gives false, nothing was found and the result is
// unchanged; nothing else is reported. Names are not null.

// The answer for an environment variable of any name, compared without regard to case:
//   TEMP         the setting "TempFolder", else the variable
//   TRACEFOLDER  the setting "TraceFolder", else the variable, else the answer for TEMP
//   KOR_PATH     the variable KOR_PATH64, else the variable
// Of a setting, only an existing directory counts. Any other name is that of the variable alone.
bool QueryEnvironmentSetting(const wchar_t* name, CKORString& result);

enum class SettingSource { DebugUser, DebugMachine, Environment };

// One source that was asked on the way to an answer.
struct SettingStep {
    SettingSource Source;
    CKORString Name; // of the setting or of the variable
    bool IsFound;
    CKORString Value;
    bool IsAnswer; // a setting that was found is not when it names no existing directory
};

// The same, and appends the sources in the order in which they were asked.
bool QueryEnvironmentSetting(const wchar_t* name, CKORString& result, CTable1D<SettingStep>* steps);

// A value in the key "Settings\Debug" of the current user, else of the machine. The name may begin
// with a path below that key. With asNumber, the value must be a 32-bit number and the result is
// its decimal text; otherwise it must be a string of any kind (see CRegistryKey::ReadString).
bool ReadDebugSetting(const wchar_t* name, CKORString& result, bool asNumber);
