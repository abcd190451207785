// Modal dialogs with a message loop of their own, so that keys can be looked at before they are
// dispatched.
#include "mfc/afxwin.h"

CDialog::CDialog(UINT nIDTemplate, CWnd* pParentWnd)
    : m_templateId(nIDTemplate), m_pParentWnd(pParentWnd) {}

INT_PTR CDialog::DoModal() {
    const HWND parent = m_pParentWnd != nullptr ? m_pParentWnd->m_hWnd : nullptr;
    const bool disableParent = parent != nullptr && IsWindowEnabled(parent);
    if (disableParent) {
        EnableWindow(parent, FALSE);
    }
    m_modalResult = -1;
    m_running = true;
    CreateDialogParam(GetModuleHandle(nullptr), MAKEINTRESOURCE(m_templateId), parent,
                      &DialogProcedure, reinterpret_cast<LPARAM>(this));
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
        self->SubclassWindow(dialog);
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
