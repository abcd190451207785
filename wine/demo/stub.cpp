// Stands for every program of the demonstration installation: shows under which name and with
// which command line it was started, and appends that command line to a log, so that a person and
// a test can both see what a click on the page starts.
#include <windows.h>

#include <cwchar>
#include <string>

namespace {

constexpr int CommandLineBox = 101;

std::wstring EnvironmentText(const wchar_t* name) {
    wchar_t text[MAX_PATH] = {};
    const DWORD length = GetEnvironmentVariableW(name, text, MAX_PATH);
    return length < MAX_PATH ? std::wstring(text, length) : std::wstring();
}

std::wstring ProgramName() {
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    path[MAX_PATH - 1] = 0;
    const wchar_t* name = std::wcsrchr(path, L'\\');
    return name != nullptr ? name + 1 : path;
}

// One line each, in UTF-8. A mutex keeps the lines of programs that start together apart: an
// append is not one step for the file system.
void AppendToLog(std::wstring line) {
    for (wchar_t& c : line) {
        if (c == L'\r' || c == L'\n') {
            c = L' ';
        }
    }
    line += L'\n';
    std::string bytes(line.size() * 3, '\0');
    const int size =
        WideCharToMultiByte(CP_UTF8, 0, line.c_str(), static_cast<int>(line.size()), bytes.data(),
                            static_cast<int>(bytes.size()), nullptr, nullptr);
    std::wstring log = EnvironmentText(L"KOR_STUB_LOG");
    if (log.empty()) {
        log = L"C:\\stub.log";
    }
    HANDLE mutex = CreateMutexW(nullptr, FALSE, L"KORDemonstrationLog");
    if (mutex != nullptr) {
        WaitForSingleObject(mutex, 10000);
    }
    HANDLE file = CreateFileW(log.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE,
                              nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file != INVALID_HANDLE_VALUE) {
        DWORD written = 0;
        WriteFile(file, bytes.data(), static_cast<DWORD>(size), &written, nullptr);
        CloseHandle(file);
    }
    if (mutex != nullptr) {
        ReleaseMutex(mutex);
        CloseHandle(mutex);
    }
}

LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_SIZE:
        MoveWindow(GetDlgItem(window, CommandLineBox), 12, 44, LOWORD(lParam) - 24,
                   HIWORD(lParam) - 56, TRUE);
        return 0;
    case WM_CTLCOLORSTATIC:
        return reinterpret_cast<LRESULT>(GetSysColorBrush(COLOR_WINDOW));
    case WM_DESTROY:
        PostQuitMessage(0);
        return 0;
    default:
        return DefWindowProcW(window, message, wParam, lParam);
    }
}

HWND AddText(HWND owner, const wchar_t* kind, const wchar_t* text, DWORD style, int id) {
    HWND control =
        CreateWindowExW(0, kind, text, WS_CHILD | WS_VISIBLE | style, 12, 14, 520, 24, owner,
                        reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), nullptr, nullptr);
    SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(DEFAULT_GUI_FONT)),
                 FALSE);
    return control;
}

int ShowCommandLine(const std::wstring& name, const wchar_t* commandLine) {
    WNDCLASSW windowClass = {};
    windowClass.lpfnWndProc = WindowProcedure;
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windowClass.hbrBackground = GetSysColorBrush(COLOR_WINDOW);
    windowClass.lpszClassName = L"KORDemonstration";
    RegisterClassW(&windowClass);
    HWND window =
        CreateWindowExW(0, windowClass.lpszClassName, name.c_str(), WS_OVERLAPPEDWINDOW,
                        CW_USEDEFAULT, CW_USEDEFAULT, 560, 220, nullptr, nullptr, nullptr, nullptr);
    if (window == nullptr) {
        return 1;
    }
    AddText(window, L"STATIC", (name + L" was started with this command line:").c_str(), 0, 0);
    AddText(window, L"EDIT", commandLine,
            WS_BORDER | WS_VSCROLL | ES_MULTILINE | ES_READONLY | ES_AUTOVSCROLL, CommandLineBox);
    ShowWindow(window, SW_SHOWNORMAL);
    MSG message = {};
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (message.message == WM_KEYDOWN && message.wParam == VK_ESCAPE) {
            DestroyWindow(window);
            continue;
        }
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return 0;
}

} // namespace

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
    const wchar_t* commandLine = GetCommandLineW();
    AppendToLog(commandLine);
    if (EnvironmentText(L"KOR_STUB_QUIET") == L"1") {
        return 0;
    }
    return ShowCommandLine(ProgramName(), commandLine);
}
