// The entry point of a program with an application object.
#include "base/SystemLibraries.h"
#include "mfc/afxwin.h"

// A quit message carries the exit code; a dialog that was closed leaves none behind.
int WINAPI WinMain(HINSTANCE /*instance*/, HINSTANCE /*previous*/, LPSTR /*commandLine*/,
                   int /*show*/) {
    LoadLibrariesFromSystemOnly();
    AfxGetApp()->InitInstance();
    MSG message;
    const bool quit = PeekMessage(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE) != FALSE;
    return quit ? static_cast<int>(message.wParam) : 0;
}
