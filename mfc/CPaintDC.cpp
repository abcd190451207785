// The device context of one WM_PAINT.
#include "mfc/afxwin.h"

CPaintDC::CPaintDC(CWnd* pWnd) : m_window(pWnd->m_hWnd) {
    BeginPaint(m_window, &m_ps);
}

CPaintDC::~CPaintDC() {
    EndPaint(m_window, &m_ps);
}
