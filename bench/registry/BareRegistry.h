// The system calls that the registry layer's operations consist of, made directly and in the same
// order, and counted.
#pragma once

#include <windows.h>

#include <string>

namespace bare {

extern long Calls;

struct OpenKey {
    HKEY root;
    HKEY key;
};

// Below the current user, with the root of the calling thread's user.
OpenKey Open(const std::wstring& subKey);
void Close(const OpenKey& open);
// Below the local machine.
void OpenAndCloseMachine(const std::wstring& subKey);

bool ReadText(HKEY key, const wchar_t* name, std::wstring& text);
bool ReadNumber(HKEY key, const wchar_t* name, DWORD& number);
bool WriteNumber(OpenKey& open, const std::wstring& subKey, const wchar_t* name, DWORD number);
long CountSubKeyNames(HKEY key);
void CopyTree(OpenKey& open, const std::wstring& subKey, const std::wstring& destination);
// Empties the key that is open.
void Empty(OpenKey& open, const std::wstring& subKey);
void DeleteTree(OpenKey& open, const std::wstring& subKey, const std::wstring& name);

} // namespace bare
