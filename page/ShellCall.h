// What the shell is asked for when an item is started, by a click or without a page.
#pragma once

#include <windows.h>

#include <optional>

#include "base/CKORString.h"

struct ShellAnswer {
    bool IsStarted;
    INT_PTR Result; // over 32 when it was started, else the shell's own number of the failure
    DWORD Error;    // the thread's, when it was not started; the shell need not set it
};

// One call of ShellExecuteEx, or of ShellExecute; what is not named here is null.
struct ShellCall {
    // The handle of a started process stays open.
    ShellAnswer Make() const;

    bool IsExtended;     // ShellExecuteEx, which gives the handle of the process
    const wchar_t* Verb; // null is the default one
    CKORString File;
    std::optional<CKORString> Parameters; // none is null
};

// A program with its parameters. With elevate set, elevation is asked for unless the user has it.
ShellCall CallOfProgram(const CKORString& path, const CKORString& arguments, bool elevate);

// By the item's type; none for a number that is no type.
std::optional<ShellCall> CallOfItem(const CKORString& path, const CKORString& arguments, int type);
