// How a dialog hosts the browser control and gets at its page.
#include "mfc/afxdhtml.h"

#include <comdef.h>
#include <exdispid.h>

#include <cwchar>

#include "mfc/BrowserSite.h"
#include "mfc/EventSink.h"

BEGIN_MESSAGE_MAP(CDHtmlDialog, CDialog)
ON_WM_SIZE()
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
    CComPtr<IOleObject> object;
    if (FAILED(m_pBrowserApp.CoCreateInstance(CLSID_WebBrowser)) ||
        FAILED(m_pBrowserApp.QueryInterface(&object))) {
        return false;
    }
    RECT client{};
    GetClientRect(&client);
    object->SetClientSite(m_site.get());
    m_browserEvents->Connect(m_pBrowserApp);
    object->DoVerb(OLEIVERB_UIACTIVATE, nullptr, m_site.get(), 0, m_hWnd, &client);
    return true;
}

// In the reverse of the order in which it came to be.
void CDHtmlDialog::CloseBrowser() {
    m_pageEvents->Disconnect();
    m_spHtmlDoc.Release();
    m_browserEvents->Disconnect();
    CComPtr<IOleObject> object;
    if (m_pBrowserApp != nullptr && SUCCEEDED(m_pBrowserApp.QueryInterface(&object))) {
        object->Close(OLECLOSE_NOSAVE);
        object->SetClientSite(nullptr);
    }
    m_pBrowserApp.Release();
}

void CDHtmlDialog::LoadFromResource() {
    constexpr wchar_t Scheme[] = L"res://";
    constexpr DWORD SchemeLength = 6;
    constexpr DWORD LongestPath = 0x8000;
    constexpr DWORD LongestName = 16;
    const auto url = std::make_unique<wchar_t[]>(SchemeLength + LongestPath + LongestName);
    wcscpy(url.get(), Scheme);
    const DWORD pathLength = GetModuleFileName(nullptr, url.get() + SchemeLength, LongestPath);
    wsprintf(url.get() + SchemeLength + pathLength, L"/%u", m_nHtmlResID);
    // The page may be complete before the call is back.
    m_pBrowserApp->Navigate(_bstr_t(url.get()), nullptr, nullptr, nullptr, nullptr);
}

HRESULT CDHtmlDialog::GetElement(LPCTSTR szElementId, IHTMLElement** pphtmlElement) {
    *pphtmlElement = nullptr;
    CComPtr<IHTMLDocument3> document;
    if (m_spHtmlDoc == nullptr || FAILED(m_spHtmlDoc.QueryInterface(&document))) {
        return E_NOINTERFACE;
    }
    return document->getElementById(_bstr_t(szElementId), pphtmlElement);
}

BOOL CDHtmlDialog::PreTranslateMessage(MSG* pMsg) {
    const bool isKey = pMsg->message >= WM_KEYFIRST && pMsg->message <= WM_KEYLAST;
    if (isKey && m_pBrowserApp != nullptr &&
        (pMsg->hwnd == m_hWnd || IsChild(m_hWnd, pMsg->hwnd))) {
        CComPtr<IOleInPlaceActiveObject> control;
        if (SUCCEEDED(m_pBrowserApp.QueryInterface(&control)) &&
            control->TranslateAccelerator(pMsg) == S_OK) {
            return TRUE;
        }
    }
    return CDialog::PreTranslateMessage(pMsg);
}

void CDHtmlDialog::OnDocumentComplete(LPDISPATCH /*pDisp*/, LPCTSTR /*szUrl*/) {}

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

void CDHtmlDialog::OnSize(UINT nType, int cx, int cy) {
    CDialog::OnSize(nType, cx, cy);
    CComPtr<IOleInPlaceObject> control;
    if (nType != SIZE_MINIMIZED && m_pBrowserApp != nullptr &&
        SUCCEEDED(m_pBrowserApp.QueryInterface(&control))) {
        const RECT client{0, 0, cx, cy};
        control->SetObjectRects(&client, &client);
    }
}

void CDHtmlDialog::OnDestroy() {
    CloseBrowser();
    CDialog::OnDestroy();
}

void CDHtmlDialog::OnBrowserEvent(DISPID event, const DISPPARAMS& parameters) {
    // The arguments stand last first.
    if (event != DISPID_DOCUMENTCOMPLETE || parameters.cArgs != 2 ||
        parameters.rgvarg[1].vt != VT_DISPATCH || !IsBrowser(parameters.rgvarg[1].pdispVal)) {
        return;
    }
    CComPtr<IDispatch> document;
    m_spHtmlDoc.Release();
    if (FAILED(m_pBrowserApp->get_Document(&document)) || document == nullptr ||
        FAILED(document.QueryInterface(&m_spHtmlDoc))) {
        return;
    }
    m_pageEvents->Connect(m_spHtmlDoc);
    _variant_t url;
    VariantCopyInd(&url, &parameters.rgvarg[0]);
    OnDocumentComplete(parameters.rgvarg[1].pdispVal,
                       url.vt == VT_BSTR && url.bstrVal != nullptr ? url.bstrVal : L"");
}

// Whether the event's source is the control itself and not a frame within the page.
bool CDHtmlDialog::IsBrowser(IDispatch* source) const {
    CComPtr<IUnknown> browserIdentity;
    CComPtr<IUnknown> sourceIdentity;
    return source != nullptr && m_pBrowserApp != nullptr &&
           SUCCEEDED(m_pBrowserApp.QueryInterface(&browserIdentity)) &&
           SUCCEEDED(source->QueryInterface(IID_PPV_ARGS(&sourceIdentity))) &&
           browserIdentity == sourceIdentity;
}

void CDHtmlDialog::OnPageEvent(DISPID event, const DISPPARAMS& parameters) {
    if (parameters.cArgs < 1 || parameters.rgvarg[0].vt != VT_DISPATCH ||
        parameters.rgvarg[0].pdispVal == nullptr) {
        return;
    }
    CComPtr<IHTMLEventObj> details;
    CComPtr<IHTMLElement> element;
    if (FAILED(parameters.rgvarg[0].pdispVal->QueryInterface(IID_PPV_ARGS(&details))) ||
        FAILED(details->get_srcElement(&element)) || element == nullptr) {
        return;
    }
    BSTR text = nullptr;
    element->get_className(&text);
    const _bstr_t className(text, false);
    if (text == nullptr) {
        return;
    }
    for (const DHtmlEventMapEntry* entry = GetDHtmlEventMap(); entry->szName != nullptr; ++entry) {
        if (entry->dispId == event && wcscmp(entry->szName, text) == 0) {
            entry->pfnHandler(*this, element);
        }
    }
}
