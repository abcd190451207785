// How a dialog hosts the browser control: its life, its place, its keys, its page.
#include "mfc/afxdhtml.h"

#include <comdef.h>

#include "mfc/AnswerSystem.h"
#include "mfc/BrowserSite.h"
#include "mfc/EventSink.h"
#include "mfc/ResourceAddress.h"

BEGIN_MESSAGE_MAP(CDHtmlDialog, CDialog)
ON_WM_ACTIVATE()
ON_WM_SETFOCUS()
ON_WM_SIZE()
ON_WM_SHOWWINDOW()
ON_WM_DESTROY()
END_MESSAGE_MAP()

CDHtmlDialog::CDHtmlDialog(UINT nIDTemplate, UINT nHtmlResID, CWnd* pParentWnd)
    : CDialog(nIDTemplate, pParentWnd), m_nHtmlResID(nHtmlResID), m_site(new BrowserSite(*this)),
      m_browserEvents(
          new EventSink(__uuidof(DWebBrowserEvents2), *this, &CDHtmlDialog::OnBrowserEvent)),
      m_pageEvents(
          new EventSink(__uuidof(HTMLDocumentEvents2), *this, &CDHtmlDialog::OnPageEvent)) {}

CDHtmlDialog::~CDHtmlDialog() {
    m_site->Detach();
}

BOOL CDHtmlDialog::OnInitDialog() {
    CDialog::OnInitDialog();
    if (CreateBrowser()) {
        AnswerSystem([this] {
            LoadFromResource();
            return S_OK;
        });
    }
    return TRUE;
}

bool CDHtmlDialog::CreateBrowser() {
    if (FAILED(m_pBrowserApp.CoCreateInstance(CLSID_WebBrowser)) ||
        FAILED(m_pBrowserApp.QueryInterface(&m_control)) ||
        FAILED(m_control->SetClientSite(m_site.get()))) {
        return false;
    }
    RECT client{};
    GetClientRect(&client);
    m_browserEvents->Connect(m_pBrowserApp);
    m_pBrowserApp->put_RegisterAsDropTarget(VARIANT_FALSE);
    m_control->DoVerb(OLEIVERB_UIACTIVATE, nullptr, m_site.get(), 0, m_hWnd, &client);
    return true;
}

// In the reverse of the order in which it came to be. Nothing is asked of the control any more: a
// control that is not told to close would keep itself and the site.
void CDHtmlDialog::CloseBrowser() {
    m_pageEvents->Disconnect();
    m_body.Release();
    m_spHtmlDoc.Release();
    m_browserEvents->Disconnect();
    if (m_control != nullptr) {
        m_control->Close(OLECLOSE_NOSAVE);
        m_control->SetClientSite(nullptr);
    }
    m_control.Release();
    m_pBrowserApp.Release();
}

void CDHtmlDialog::LoadFromResource() {
    const _bstr_t address = ResourceAddress(m_nHtmlResID);
    if (address.length() != 0) {
        // The page may be complete before the call is back.
        m_pBrowserApp->Navigate(address, nullptr, nullptr, nullptr, nullptr);
    }
}

HRESULT CDHtmlDialog::GetElement(LPCTSTR szElementId, IHTMLElement** pphtmlElement) {
    *pphtmlElement = nullptr;
    CComPtr<IHTMLDocument3> document;
    if (m_spHtmlDoc == nullptr || FAILED(m_spHtmlDoc.QueryInterface(&document))) {
        return E_NOINTERFACE;
    }
    const _bstr_t id(szElementId);
    if (IsThereTwice(id)) {
        return E_FAIL;
    }
    return document->getElementById(id, pphtmlElement);
}

// For a name that several elements have, the list of all gives a list instead of an element.
bool CDHtmlDialog::IsThereTwice(BSTR id) const {
    CComPtr<IHTMLElementCollection> all;
    CComPtr<IDispatch> found;
    CComPtr<IHTMLElementCollection> several;
    VARIANT name{};
    name.vt = VT_BSTR;
    name.bstrVal = id;
    return SUCCEEDED(m_spHtmlDoc->get_all(&all)) && all != nullptr &&
           SUCCEEDED(all->item(name, VARIANT{}, &found)) && found != nullptr &&
           SUCCEEDED(found.QueryInterface(&several));
}

BOOL CDHtmlDialog::PreTranslateMessage(MSG* pMsg) {
    m_keyMessage = WM_NULL;
    const bool isKey = pMsg->message >= WM_KEYFIRST && pMsg->message <= WM_KEYLAST;
    if (isKey && m_pBrowserApp != nullptr &&
        (pMsg->hwnd == m_hWnd || IsChild(m_hWnd, pMsg->hwnd)) && TranslateKey(pMsg)) {
        return TRUE;
    }
    return CDialog::PreTranslateMessage(pMsg);
}

// Engines differ in which keys they ask the host about, when, and how often. Whatever they do, the
// host is asked once for each message. Keys that make an engine load the page anew do not reach it.
bool CDHtmlDialog::TranslateKey(MSG* message) {
    m_keyMessage = message->message;
    m_key = message->wParam;
    m_keyAnswer.reset();
    bool taken = message->message == WM_KEYDOWN &&
                 (message->wParam == VK_F5 || message->wParam == VK_BROWSER_REFRESH);
    CComPtr<IOleInPlaceActiveObject> control;
    if (!taken && SUCCEEDED(m_pBrowserApp.QueryInterface(&control))) {
        taken = control->TranslateAccelerator(message) == S_OK;
    }
    return AnswerKey(message, nullptr, 0) == S_OK || taken;
}

HRESULT CDHtmlDialog::AnswerKey(MSG* message, const GUID* commandGroup, DWORD command) {
    const bool isCurrent =
        message != nullptr && m_keyMessage == message->message && m_key == message->wParam;
    if (isCurrent && m_keyAnswer) {
        return *m_keyAnswer;
    }
    const HRESULT answer =
        AnswerSystem([&] { return TranslateAccelerator(message, commandGroup, command); });
    if (isCurrent) {
        m_keyAnswer = answer;
    }
    return answer;
}

void CDHtmlDialog::OnBeforeNavigate(LPDISPATCH /*pDisp*/, LPCTSTR /*szUrl*/) {}

void CDHtmlDialog::OnNavigateComplete(LPDISPATCH /*pDisp*/, LPCTSTR /*szUrl*/) {}

void CDHtmlDialog::OnDocumentComplete(LPDISPATCH /*pDisp*/, LPCTSTR /*szUrl*/) {}

HRESULT STDMETHODCALLTYPE CDHtmlDialog::ShowContextMenu(DWORD /*dwID*/, POINT* /*ppt*/,
                                                        IUnknown* /*pcmdtReserved*/,
                                                        IDispatch* /*pdispReserved*/) {
    return S_FALSE;
}

HRESULT STDMETHODCALLTYPE CDHtmlDialog::GetHostInfo(DOCHOSTUIINFO* pInfo) {
    pInfo->dwFlags = m_hostFlags;
    pInfo->dwDoubleClick = DOCHOSTUIDBLCLK_DEFAULT;
    return S_OK;
}

HRESULT STDMETHODCALLTYPE CDHtmlDialog::TranslateAccelerator(LPMSG /*lpMsg*/,
                                                             const GUID* /*pguidCmdGroup*/,
                                                             DWORD /*nCmdID*/) {
    return S_FALSE;
}

HRESULT STDMETHODCALLTYPE CDHtmlDialog::GetDropTarget(IDropTarget* /*pDropTarget*/,
                                                      IDropTarget** ppDropTarget) {
    *ppDropTarget = nullptr;
    return E_NOTIMPL;
}

void CDHtmlDialog::OnActivate(UINT nState, CWnd* pWndOther, BOOL bMinimized) {
    CDialog::OnActivate(nState, pWndOther, bMinimized);
    CComPtr<IOleInPlaceActiveObject> control;
    if (m_pBrowserApp != nullptr && SUCCEEDED(m_pBrowserApp.QueryInterface(&control))) {
        control->OnFrameWindowActivate(nState != WA_INACTIVE ? TRUE : FALSE);
    }
    // The dialog manager knows the control's outermost window at best.
    if (nState != WA_INACTIVE && !bMinimized) {
        FocusPage();
    }
}

void CDHtmlDialog::OnSetFocus(CWnd* pOldWnd) {
    if (!FocusPage()) {
        CDialog::OnSetFocus(pOldWnd);
    }
}

// False when the dialog is not active, or has no page.
bool CDHtmlDialog::FocusPage() {
    CComPtr<IOleWindow> view;
    HWND window = nullptr;
    if (m_hWnd != nullptr && GetActiveWindow() == m_hWnd && m_spHtmlDoc != nullptr &&
        SUCCEEDED(m_spHtmlDoc.QueryInterface(&view)) && SUCCEEDED(view->GetWindow(&window))) {
        SetFocus(window);
        return true;
    }
    return false;
}

void CDHtmlDialog::OnSize(UINT nType, int cx, int cy) {
    CDialog::OnSize(nType, cx, cy);
    CComPtr<IOleInPlaceObject> control;
    if (nType != SIZE_MINIMIZED && m_pBrowserApp != nullptr &&
        SUCCEEDED(m_pBrowserApp.QueryInterface(&control))) {
        const RECT client{0, 0, cx, cy};
        control->SetObjectRects(&client, &client);
    }
}

// The dialog manager has given the focus to the control before it shows the dialog, whose page may
// have been there already.
void CDHtmlDialog::OnShowWindow(BOOL bShow, UINT nStatus) {
    CDialog::OnShowWindow(bShow, nStatus);
    if (bShow) {
        FocusPage();
    }
}

void CDHtmlDialog::OnDestroy() {
    CloseBrowser();
    CDialog::OnDestroy();
}
