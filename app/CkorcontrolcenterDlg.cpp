// The main dialog's start, page, window and keys.
#include "app/CkorcontrolcenterDlg.h"

#include <comdef.h>

#include "res/resource.h"

namespace {

constexpr wchar_t Title[] = L"Vantrel Imaging Library >> Control Center";

} // namespace

BEGIN_MESSAGE_MAP(CkorcontrolcenterDlg, CDHtmlDialog)
ON_WM_PAINT()
ON_WM_GETMINMAXINFO()
END_MESSAGE_MAP()

CkorcontrolcenterDlg::CkorcontrolcenterDlg(CWnd* pParent)
    : CDHtmlDialog(IDD_KORCONTROLCENTER_DIALOG, IDR_HTML_KORCONTROLCENTER_DIALOG, pParent),
      m_icon(AfxGetApp()->LoadIcon(IDR_MAINFRAME)) {
    RECT workArea = {};
    SystemParametersInfo(SPI_GETWORKAREA, 0, &workArea, 0);
    m_workAreaWidth = std::int64_t{workArea.right} - workArea.left;
    m_workAreaHeight = std::int64_t{workArea.bottom} - workArea.top;
    m_titleLength = CKORString(Title).Length();
    Start(ReadScreenMetrics());
}

BOOL CkorcontrolcenterDlg::OnInitDialog() {
    SetHostFlags(DOCHOSTUIFLAG_FLAT_SCROLLBAR);
    CDHtmlDialog::OnInitDialog();
    SetIcon(m_icon, TRUE);
    SetIcon(m_icon, FALSE);
    SetWindowText(Title);
    return TRUE;
}

void CkorcontrolcenterDlg::OnDocumentComplete(LPDISPATCH pDisp, LPCTSTR szUrl) {
    CDHtmlDialog::OnDocumentComplete(pDisp, szUrl);
    FillSectionsElement();
}

void CkorcontrolcenterDlg::FillSectionsElement() {
    CComPtr<IHTMLElement> sections;
    GetElement(L"Sections", &sections);
    if (sections == nullptr) {
        return;
    }
    Refill();
    sections->put_innerHTML(_bstr_t(PageHtml.Text()));
    SetWindowPos(nullptr, 0, 0, static_cast<int>(WindowWidth), static_cast<int>(WindowHeight),
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOOWNERZORDER);
}

void CkorcontrolcenterDlg::OnPaint() {
    if (!IsIconic()) {
        CDHtmlDialog::OnPaint();
        return;
    }
    CPaintDC dc(this);
    SendMessage(WM_ICONERASEBKGND, reinterpret_cast<WPARAM>(dc.GetSafeHdc()), 0);
    RECT client = {};
    GetClientRect(&client);
    const int x = (client.right - client.left - GetSystemMetrics(SM_CXICON) + 1) / 2;
    const int y = (client.bottom - client.top - GetSystemMetrics(SM_CYICON) + 1) / 2;
    dc.DrawIcon(x, y, m_icon);
}

// A window that fits the work area cannot be made smaller than it should be; one that does not
// cannot be made larger than the work area.
void CkorcontrolcenterDlg::OnGetMinMaxInfo(MINMAXINFO* lpMMI) {
    if (WindowWidth <= m_workAreaWidth) {
        lpMMI->ptMinTrackSize.x = static_cast<LONG>(WindowWidth);
    } else {
        lpMMI->ptMaxTrackSize.x = static_cast<LONG>(m_workAreaWidth);
    }
    if (WindowHeight <= m_workAreaHeight) {
        lpMMI->ptMinTrackSize.y = static_cast<LONG>(WindowHeight);
    } else {
        lpMMI->ptMaxTrackSize.y = static_cast<LONG>(m_workAreaHeight);
    }
}

HRESULT STDMETHODCALLTYPE CkorcontrolcenterDlg::TranslateAccelerator(LPMSG lpMsg,
                                                                     const GUID* /*pguidCmdGroup*/,
                                                                     DWORD /*nCmdID*/) {
    if (lpMsg == nullptr) {
        return S_OK;
    }
    if (lpMsg->message == WM_KEYUP && lpMsg->wParam == VK_F5) {
        FillSectionsElement();
        return E_FAIL; // the key goes on to the page
    }
    if (lpMsg->message == WM_SYSKEYUP && lpMsg->wParam == VK_F4) {
        PostQuitMessage(0);
    }
    // The page gets no other key: docs/quirks.md.
    return S_OK;
}
