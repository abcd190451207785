// refreshkey.exe TITLE: tells the page in the window of that title that a keyboard's Refresh key
// was pressed, as Windows does: by a command that is sent past the program's message loop.
#include <windows.h>

namespace {

constexpr DWORD Patience = 30000; // milliseconds

} // namespace

int wmain(int argc, wchar_t** argv) {
    HWND page = nullptr;
    EnumChildWindows(
        argc == 2 ? FindWindowW(nullptr, argv[1]) : nullptr,
        [](HWND window, LPARAM found) -> BOOL {
            wchar_t name[64] = {};
            GetClassNameW(window, name, ARRAYSIZE(name));
            const bool isPage = lstrcmpW(name, L"Internet Explorer_Server") == 0;
            if (isPage) {
                *reinterpret_cast<HWND*>(found) = window;
            }
            return !isPage;
        },
        reinterpret_cast<LPARAM>(&page));
    DWORD_PTR answer = 0;
    const bool sent =
        page != nullptr && SendMessageTimeoutW(page, WM_APPCOMMAND, reinterpret_cast<WPARAM>(page),
                                               MAKELPARAM(0, APPCOMMAND_BROWSER_REFRESH),
                                               SMTO_NORMAL, Patience, &answer) != 0;
    return sent ? 0 : 1;
}
