// Where the program is called by COM or the window manager.
#pragma once

#include <windows.h>

#include <comdef.h>

// Runs what COM or the window manager called. An exception must not unwind through the caller,
// which may not even be C++: it is turned into the error that it stands for.
template <typename Function>
HRESULT AnswerSystem(const Function& function) noexcept {
    try {
        return function();
    } catch (const _com_error& error) {
        return error.Error();
    } catch (...) {
        return E_UNEXPECTED;
    }
}
