// Modal dialogs with a message loop of their own, so that keys can be looked at before they are
// dispatched.
#include "mfc/afxwin.h"

#include <algorithm>

namespace {

// The class of dialogs, "#32770".
constexpr ULONG_PTR DialogClass = 0x8002;

// The dialog whose window is being made, until there is one.
CDialog* g_creating = nullptr;

// The template may be larger than the screen.
void KeepWithinWorkArea(HWND window, MINMAXINFO& limits) {
    MONITORINFO monitor{};
    monitor.cbSize = sizeof(monitor);
    if (GetMonitorInfo(MonitorFromWindow(window, MONITOR_DEFAULTTOPRIMARY), &monitor)) {
        const RECT& area = monitor.rcWork;
        limits.ptMaxTrackSize.x = std::min(limits.ptMaxTrackSize.x, area.right - area.left);
        limits.ptMaxTrackSize.y = std::min(limits.ptMaxTrackSize.y, area.bottom - area.top);
    }
}

} // namespace

CDialog::CDialog(UINT nIDTemplate, CWnd* pParentWnd)
    : m_templateId(nIDTemplate), m_pParentWnd(pParentWnd) {}

INT_PTR CDialog::DoModal() {
    const HWND parent = m_pParentWnd != nullptr ? m_pParentWnd->m_hWnd : nullptr;
    const bool disableParent = parent != nullptr && IsWindowEnabled(parent);
    if (disableParent) {
        EnableWindow(parent, FALSE);
    }
    m_modalResult = IDABORT;
    m_running = true;
    if (!CreateWindowOf(parent) && m_running) {
        m_modalResult = -1;
    }
    const std::optional<int> quitCode = RunModalLoop();
    // Before the window goes: otherwise another program's window would be activated.
    if (disableParent) {
        EnableWindow(parent, TRUE);
    }
    if (m_hWnd != nullptr) {
        DestroyWindow(m_hWnd);
    }
    if (quitCode) {
        PostQuitMessage(*quitCode);
    }
    return m_modalResult;
}

// The hook sees the window before it gets its first message.
bool CDialog::CreateWindowOf(HWND parent) {
    CDialog* const outer = g_creating;
    g_creating = this;
    m_creating = true;
    const HHOOK hook = SetWindowsHookEx(WH_CBT, &CreationHook, nullptr, GetCurrentThreadId());
    const HWND window = CreateDialogParam(GetModuleHandle(nullptr), MAKEINTRESOURCE(m_templateId),
                                          parent, &DialogProcedure, reinterpret_cast<LPARAM>(this));
    UnhookWindowsHookEx(hook);
    m_creating = false;
    g_creating = outer;
    return window != nullptr;
}

// Other windows may come first, such as that of an input method.
LRESULT CALLBACK CDialog::CreationHook(int code, WPARAM wParam, LPARAM lParam) {
    auto* const window = reinterpret_cast<HWND>(wParam);
    if (code == HCBT_CREATEWND && g_creating != nullptr &&
        GetClassLongPtr(window, GCW_ATOM) == DialogClass) {
        g_creating->SubclassWindow(window);
        g_creating = nullptr;
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

LRESULT CDialog::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    const LRESULT result = CWnd::WindowProc(message, wParam, lParam);
    if (message == WM_GETMINMAXINFO && m_creating) {
        KeepWithinWorkArea(m_hWnd, *reinterpret_cast<MINMAXINFO*>(lParam));
    }
    return result;
}

void CDialog::EndDialog(int nResult) {
    m_modalResult = nResult;
    m_running = false;
    // The loop may be waiting for a message.
    PostMessage(m_hWnd, WM_NULL, 0, 0);
}

BOOL CDialog::PreTranslateMessage(MSG* pMsg) {
    return IsDialogMessage(m_hWnd, pMsg);
}

INT_PTR CALLBACK CDialog::DialogProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        auto* const self = reinterpret_cast<CDialog*>(lParam);
        SetWindowLongPtr(dialog, DWLP_USER, lParam);
        if (self->m_hWnd == nullptr) {
            self->SubclassWindow(dialog); // the hook was refused
        }
        return self->OnInitDialog();
    }
    auto* const self = reinterpret_cast<CDialog*>(GetWindowLongPtr(dialog, DWLP_USER));
    if (self == nullptr || message != WM_COMMAND) {
        return FALSE;
    }
    switch (LOWORD(wParam)) {
    case IDOK:
        self->OnOK();
        return TRUE;
    case IDCANCEL:
        self->OnCancel();
        return TRUE;
    default:
        return FALSE;
    }
}

std::optional<int> CDialog::RunModalLoop() {
    while (m_running && m_hWnd != nullptr) {
        MSG message;
        const BOOL got = GetMessage(&message, nullptr, 0, 0);
        if (got == 0) {
            return static_cast<int>(message.wParam);
        }
        if (got == -1) {
            break;
        }
        if (!PreTranslateMessage(&message)) {
            TranslateMessage(&message);
            DispatchMessage(&message);
        }
    }
    return std::nullopt;
}
