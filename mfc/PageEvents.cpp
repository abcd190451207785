// What the browser control and its page report to the dialog.
#include "mfc/afxdhtml.h"

#include <comdef.h>
#include <exdispid.h>

#include <cwchar>

#include "mfc/EventSink.h"

namespace {

// The arguments of an event stand last first.
struct Cancellable {
    DISPID event;
    UINT arguments;
    UINT cancel; // index
};

// An error page of the engine's, and a window of it, would both be foreign pages.
constexpr Cancellable NeverWanted[] = {
    {DISPID_NEWWINDOW2, 2, 0},
    {DISPID_NEWWINDOW3, 5, 3},
    {DISPID_NAVIGATEERROR, 5, 0},
};
constexpr Cancellable Navigation = {DISPID_BEFORENAVIGATE2, 7, 0};

void Cancel(const Cancellable& what, const DISPPARAMS& parameters) {
    if (parameters.cArgs == what.arguments &&
        parameters.rgvarg[what.cancel].vt == (VT_BYREF | VT_BOOL)) {
        *parameters.rgvarg[what.cancel].pboolVal = VARIANT_TRUE;
    }
}

bool IsSameObject(IUnknown* one, IUnknown* other) {
    CComPtr<IUnknown> identity;
    CComPtr<IUnknown> otherIdentity;
    return one != nullptr && other != nullptr &&
           SUCCEEDED(one->QueryInterface(IID_PPV_ARGS(&identity))) &&
           SUCCEEDED(other->QueryInterface(IID_PPV_ARGS(&otherIdentity))) &&
           identity == otherIdentity;
}

} // namespace

void CDHtmlDialog::OnBrowserEvent(DISPID event, const DISPPARAMS& parameters) {
    for (const Cancellable& unwanted : NeverWanted) {
        if (event == unwanted.event) {
            Cancel(unwanted, parameters);
        }
    }
    if (event == DISPID_DOWNLOADCOMPLETE) {
        OnDownloadComplete();
    } else if (event == DISPID_BEFORENAVIGATE2 || event == DISPID_NAVIGATECOMPLETE2 ||
               event == DISPID_DOCUMENTCOMPLETE) {
        OnNavigation(event, parameters);
    }
}

// Of the top frame: frames within the page do not count.
void CDHtmlDialog::OnNavigation(DISPID event, const DISPPARAMS& parameters) {
    const UINT count = event == DISPID_BEFORENAVIGATE2 ? Navigation.arguments : 2;
    if (parameters.cArgs != count || parameters.rgvarg[count - 1].vt != VT_DISPATCH ||
        !IsBrowser(parameters.rgvarg[count - 1].pdispVal)) {
        return;
    }
    IDispatch* const source = parameters.rgvarg[count - 1].pdispVal;
    _variant_t address;
    VariantCopyInd(&address, &parameters.rgvarg[count - 2]);
    const wchar_t* const url =
        address.vt == VT_BSTR && address.bstrVal != nullptr ? address.bstrVal : L"";
    if (event == DISPID_BEFORENAVIGATE2) {
        if (m_spHtmlDoc != nullptr) {
            Cancel(Navigation, parameters);
        }
        OnBeforeNavigate(source, url);
    } else if (event == DISPID_NAVIGATECOMPLETE2) {
        OnNavigateComplete(source, url);
    } else if (TakeDocument()) {
        OnDocumentComplete(source, url);
        FocusPage();
    }
}

// A refresh ends with this event and without a navigation's. Pictures within the page have it too.
void CDHtmlDialog::OnDownloadComplete() {
    if (!IsReloaded() || !TakeDocument()) {
        return;
    }
    BSTR received = nullptr;
    m_spHtmlDoc->get_URL(&received);
    const _bstr_t url(received, false);
    OnDocumentComplete(m_pBrowserApp, received != nullptr ? received : L"");
    FocusPage();
}

// Whether the event's source is the control itself and not a frame within the page.
bool CDHtmlDialog::IsBrowser(IDispatch* source) const {
    return IsSameObject(source, m_pBrowserApp);
}

// What the control shows now.
bool CDHtmlDialog::FindDocument(IHTMLDocument2** document) const {
    CComPtr<IDispatch> shown;
    return SUCCEEDED(m_pBrowserApp->get_Document(&shown)) && shown != nullptr &&
           SUCCEEDED(shown.QueryInterface(document));
}

// Whether the control's document is complete and not as it was taken.
bool CDHtmlDialog::IsReloaded() const {
    CComPtr<IHTMLDocument2> document;
    CComPtr<IHTMLElement> body;
    BSTR received = nullptr;
    if (m_spHtmlDoc == nullptr || !FindDocument(&document) ||
        FAILED(document->get_readyState(&received))) {
        return false;
    }
    const _bstr_t state(received, false);
    return received != nullptr && std::wcscmp(received, L"complete") == 0 &&
           SUCCEEDED(document->get_body(&body)) && body != nullptr && !IsSameObject(body, m_body);
}

// Engines write a path in their own way (escapes, slashes): what they cannot change is compared.
// Another module's page of the same number would pass, but no link or drop leads to a page once
// ours is there.
bool CDHtmlDialog::IsOwnPage() const {
    constexpr wchar_t Scheme[] = L"res:";
    constexpr std::size_t SchemeLength = 4;
    wchar_t name[16];
    wsprintf(name, L"/%u", m_nHtmlResID);
    BSTR received = nullptr;
    m_spHtmlDoc->get_URL(&received);
    const _bstr_t url(received, false);
    const std::size_t length = received != nullptr ? std::wcslen(received) : 0;
    const std::size_t nameLength = std::wcslen(name);
    return length >= SchemeLength + nameLength && _wcsnicmp(received, Scheme, SchemeLength) == 0 &&
           std::wcscmp(received + length - nameLength, name) == 0;
}

// Makes the control's document the dialog's. False when there is none or it is a foreign one.
bool CDHtmlDialog::TakeDocument() {
    m_pageEvents->Disconnect();
    m_body.Release();
    m_spHtmlDoc.Release();
    if (!FindDocument(&m_spHtmlDoc)) {
        return false;
    }
    if (!IsOwnPage()) {
        m_spHtmlDoc.Release();
        return false;
    }
    m_pageEvents->Connect(m_spHtmlDoc);
    m_spHtmlDoc->get_body(&m_body);
    return true;
}

void CDHtmlDialog::OnPageEvent(DISPID event, const DISPPARAMS& parameters) {
    // The document may have been given another page meanwhile.
    if (m_spHtmlDoc == nullptr || !IsOwnPage() || parameters.cArgs < 1 ||
        parameters.rgvarg[0].vt != VT_DISPATCH || parameters.rgvarg[0].pdispVal == nullptr) {
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
