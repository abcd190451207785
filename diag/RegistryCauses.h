// What is wrong with a value of the registry that the launcher reads as a text.
#pragma once

#include <optional>

#include "diag/Cause.h"

// keyName is the key's real name, below HKEY_LOCAL_MACHINE\Software. None when the value is a text,
// be it empty or not.
std::optional<Cause> CauseOfValue(const CKORString& keyName, const wchar_t* value);

// The same, and an empty text is a fault, too.
std::optional<Cause> CauseOfFolderValue(const CKORString& keyName, const wchar_t* value);

// Whether the key is there but may not be read.
bool IsDenied(const CKORString& keyName);

Cause UnreadableKey(const CKORString& keyName);

// The words of a command that writes the text there.
std::vector<std::wstring> SetCommand(const CKORString& keyName, const wchar_t* value,
                                     const CKORString& text);
