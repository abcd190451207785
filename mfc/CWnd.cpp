// How a window's messages reach the message map of its object.
#include "mfc/afxwin.h"

CWnd::~CWnd() {
    if (AfxGetApp() != nullptr && AfxGetApp()->m_pMainWnd == this) {
        AfxGetApp()->m_pMainWnd = nullptr;
    }
}

HICON CWnd::SetIcon(HICON hIcon, BOOL bBigIcon) {
    return reinterpret_cast<HICON>(
        SendMessage(WM_SETICON, bBigIcon ? ICON_BIG : ICON_SMALL, reinterpret_cast<LPARAM>(hIcon)));
}

BOOL CWnd::SetWindowPos(const CWnd* pWndInsertAfter, int x, int y, int cx, int cy, UINT nFlags) {
    const HWND after = pWndInsertAfter != nullptr ? pWndInsertAfter->m_hWnd : nullptr;
    return ::SetWindowPos(m_hWnd, after, x, y, cx, cy, nFlags);
}

LRESULT CWnd::SendMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    return ::SendMessage(m_hWnd, message, wParam, lParam);
}

int CWnd::MessageBox(LPCTSTR lpszText, LPCTSTR lpszCaption, UINT nType) {
    return ::MessageBox(m_hWnd, lpszText, lpszCaption, nType);
}

BOOL CWnd::SubclassWindow(HWND hWnd) {
    m_hWnd = hWnd;
    SetWindowLongPtr(hWnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    m_superProcedure = reinterpret_cast<WNDPROC>(
        SetWindowLongPtr(hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&WindowProcedure)));
    return m_superProcedure != nullptr;
}

LRESULT CWnd::Default() {
    return CallWindowProc(m_superProcedure, m_hWnd, m_currentMessage.message,
                          m_currentMessage.wParam, m_currentMessage.lParam);
}

void CWnd::OnActivate(UINT /*nState*/, CWnd* /*pWndOther*/, BOOL /*bMinimized*/) {
    Default();
}

void CWnd::OnSetFocus(CWnd* /*pOldWnd*/) {
    Default();
}

void CWnd::OnSize(UINT /*nType*/, int /*cx*/, int /*cy*/) {
    Default();
}

void CWnd::OnShowWindow(BOOL /*bShow*/, UINT /*nStatus*/) {
    Default();
}

LRESULT CALLBACK CWnd::WindowProcedure(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* const window = reinterpret_cast<CWnd*>(GetWindowLongPtr(hWnd, GWLP_USERDATA));
    const LRESULT result = window->WindowProc(message, wParam, lParam);
    if (message == WM_NCDESTROY) {
        window->m_hWnd = nullptr;
    }
    return result;
}

LRESULT CWnd::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    // A handler may send messages, which come in here again.
    const MSG outer = m_currentMessage;
    m_currentMessage = {m_hWnd, message, wParam, lParam, 0, {}};
    LRESULT result = 0;
    bool handled = false;
    for (const AFX_MSGMAP* map = GetMessageMap(); map != nullptr && !handled; map = map->pBaseMap) {
        for (const AFX_MSGMAP_ENTRY* entry = map->lpEntries; entry->pfnHandler != nullptr;
             ++entry) {
            if (entry->nMessage == message) {
                result = entry->pfnHandler(*this, wParam, lParam);
                handled = true;
                break;
            }
        }
    }
    if (!handled) {
        result = Default();
    }
    m_currentMessage = outer;
    return result;
}
