// The host's side of embedding, and its way down again.
#include "tests/htmldocument/BrowserHost.h"

#include <exdispid.h>

namespace test {

template <class Base>
HRESULT HostPart<Base>::QueryInterface(REFIID iid, void** object) {
    return m_host.Query(iid, object);
}
template <class Base>
ULONG HostPart<Base>::AddRef() {
    return ++m_host.m_references;
}
template <class Base>
ULONG HostPart<Base>::Release() {
    return --m_host.m_references;
}

HRESULT HostInPlaceSite::GetWindow(HWND* window) {
    *window = m_host.Window();
    return S_OK;
}

HRESULT HostInPlaceSite::GetWindowContext(IOleInPlaceFrame** frame, IOleInPlaceUIWindow** window,
                                          LPRECT area, LPRECT clip, LPOLEINPLACEFRAMEINFO info) {
    *frame = &m_host.m_frame;
    m_host.m_frame.AddRef();
    *window = nullptr;
    GetClientRect(m_host.Window(), area);
    *clip = *area;
    info->fMDIApp = FALSE;
    info->hwndFrame = m_host.Window();
    info->haccel = nullptr;
    info->cAccelEntries = 0;
    return S_OK;
}

HRESULT HostFrame::GetWindow(HWND* window) {
    *window = m_host.Window();
    return S_OK;
}

HRESULT HostUiHandler::GetHostInfo(DOCHOSTUIINFO* info) {
    info->dwFlags = m_host.hostFlags;
    return S_OK;
}

HRESULT HostUiHandler::ShowContextMenu(DWORD, POINT*, IUnknown*, IDispatch*) {
    return m_host.menuAnswer;
}

HRESULT HostUiHandler::GetDropTarget(IDropTarget* proposed, IDropTarget** target) {
    m_host.proposedDropTarget = proposed;
    *target = nullptr;
    return m_host.ownDropTarget != nullptr ? m_host.ownDropTarget.CopyTo(target) : E_NOTIMPL;
}

HRESULT HostUiHandler::TranslateAccelerator(LPMSG message, const GUID*, DWORD) {
    m_host.keyMessages.push_back(message->message);
    return m_host.keyAnswer;
}

HRESULT HostSink::QueryInterface(REFIID iid, void** object) {
    if (iid == IID_IUnknown || iid == IID_IDispatch || iid == m_iid) {
        *object = this;
        AddRef();
        return S_OK;
    }
    *object = nullptr;
    return E_NOINTERFACE;
}

HRESULT HostSink::Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT*,
                         EXCEPINFO*, UINT*) {
    m_function(id, *parameters);
    return S_OK;
}

BrowserHost::BrowserHost(SIZE client)
    : m_clientSite(*this), m_inPlaceSite(*this), m_frame(*this), m_uiHandler(*this),
      m_browserSink(DIID_DWebBrowserEvents2,
                    [this](DISPID id, DISPPARAMS& parameters) { HearBrowser(id, parameters); }),
      m_documentSink(__uuidof(HTMLDocumentEvents2),
                     [this](DISPID id, DISPPARAMS& parameters) { HearDocument(id, parameters); }) {
    OleInitialize(nullptr);
    RECT area = {0, 0, client.cx, client.cy};
    AdjustWindowRect(&area, WS_OVERLAPPEDWINDOW, FALSE);
    m_window = CreateWindowExW(0, L"STATIC", L"Host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 40, 40,
                               area.right - area.left, area.bottom - area.top, nullptr, nullptr,
                               nullptr, nullptr);
}

HRESULT BrowserHost::Query(REFIID iid, void** object) {
    const struct {
        const IID& iid;
        IUnknown* part;
    } parts[] = {{IID_IUnknown, &m_clientSite},
                 {IID_IOleClientSite, &m_clientSite},
                 {IID_IOleWindow, &m_inPlaceSite},
                 {IID_IOleInPlaceSite, &m_inPlaceSite},
                 {IID_IDocHostUIHandler, &m_uiHandler}};
    for (const auto& known : parts) {
        if (iid == known.iid) {
            *object = known.part;
            ++m_references;
            return S_OK;
        }
    }
    *object = nullptr;
    return E_NOINTERFACE;
}

bool BrowserHost::Open(const wchar_t* page) {
    return Start(page) && PumpUntil([this] { return m_complete; });
}

bool BrowserHost::Start(const wchar_t* page) {
    ComPtr<IOleObject> object;
    ComPtr<IConnectionPointContainer> container;
    RECT area = {};
    GetClientRect(m_window, &area);
    if (FAILED(CoCreateInstance(CLSID_WebBrowser, nullptr, CLSCTX_INPROC_SERVER, IID_IWebBrowser2,
                                reinterpret_cast<void**>(m_browser.GetAddressOf()))) ||
        FAILED(m_browser.As(&object)) || FAILED(object->SetClientSite(&m_clientSite)) ||
        FAILED(m_browser.As(&container)) ||
        FAILED(container->FindConnectionPoint(DIID_DWebBrowserEvents2,
                                              m_browserPoint.GetAddressOf())) ||
        FAILED(m_browserPoint->Advise(&m_browserSink, &m_browserCookie)) ||
        FAILED(
            object->DoVerb(OLEIVERB_INPLACEACTIVATE, nullptr, &m_clientSite, 0, m_window, &area))) {
        return false;
    }
    wchar_t module[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, module, MAX_PATH);
    const std::wstring url = std::wstring(L"res://") + module + L"/" + page;
    VARIANT target;
    VARIANT nothing;
    VariantInit(&target);
    VariantInit(&nothing);
    V_VT(&target) = VT_BSTR;
    V_BSTR(&target) = SysAllocString(url.c_str());
    m_navigating = true;
    const HRESULT result = m_browser->Navigate2(&target, &nothing, &nothing, &nothing, &nothing);
    m_navigating = false;
    VariantClear(&target);
    return SUCCEEDED(result);
}

void BrowserHost::HearBrowser(DISPID id, DISPPARAMS& parameters) {
    browserEvents.push_back(id);
    if (onBrowserEvent) {
        onBrowserEvent(id, parameters);
    }
    if (id == DISPID_DOCUMENTCOMPLETE) {
        m_complete = true;
        m_completedInsideNavigate = m_navigating;
        ConnectDocument();
    }
}

void BrowserHost::ConnectDocument() {
    Unadvise(m_documentPoint, m_documentCookie);
    const ComPtr<IHTMLDocument2> document = Document();
    ComPtr<IConnectionPointContainer> container;
    if (document != nullptr && SUCCEEDED(document.As(&container)) &&
        SUCCEEDED(container->FindConnectionPoint(__uuidof(HTMLDocumentEvents2),
                                                 m_documentPoint.ReleaseAndGetAddressOf()))) {
        m_documentPoint->Advise(&m_documentSink, &m_documentCookie);
    }
}

void BrowserHost::HearDocument(DISPID id, DISPPARAMS& parameters) {
    ComPtr<IHTMLEventObj> event;
    ComPtr<IHTMLElement> source;
    HeardEvent heard;
    heard.id = id;
    if (parameters.cArgs == 1 && V_VT(&parameters.rgvarg[0]) == VT_DISPATCH &&
        SUCCEEDED(V_DISPATCH(&parameters.rgvarg[0])
                      ->QueryInterface(IID_IHTMLEventObj,
                                       reinterpret_cast<void**>(event.GetAddressOf()))) &&
        SUCCEEDED(event->get_srcElement(source.GetAddressOf())) && source != nullptr) {
        heard.sourceId = TextOf(*source.Get(), &IHTMLElement::get_id);
        heard.sourceTag = TextOf(*source.Get(), &IHTMLElement::get_tagName);
        heard.type = TextOf(*event.Get(), &IHTMLEventObj::get_type);
        events.push_back(heard);
        if (onEvent) {
            onEvent(heard, *source.Get());
        }
    }
}

void BrowserHost::Unadvise(ComPtr<IConnectionPoint>& point, DWORD cookie) {
    if (point != nullptr) {
        point->Unadvise(cookie);
        point.Reset();
    }
}

ULONG BrowserHost::Close() {
    if (m_window == nullptr) {
        return m_references;
    }
    Unadvise(m_documentPoint, m_documentCookie);
    Unadvise(m_browserPoint, m_browserCookie);
    ComPtr<IOleObject> object;
    if (m_browser != nullptr && SUCCEEDED(m_browser.As(&object))) {
        object->Close(OLECLOSE_NOSAVE);
        object->SetClientSite(nullptr);
    }
    object.Reset();
    m_browser.Reset();
    proposedDropTarget.Reset();
    DestroyWindow(m_window);
    m_window = nullptr;
    PumpPending();
    return m_references + m_browserSink.References() + m_documentSink.References();
}

void BrowserHost::PumpPending() {
    MSG message = {};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

bool BrowserHost::PumpUntil(const std::function<bool()>& condition, DWORD milliseconds) {
    const ULONGLONG deadline = GetTickCount64() + milliseconds;
    for (;;) {
        PumpPending();
        if (condition()) {
            return true;
        }
        if (GetTickCount64() > deadline) {
            return false;
        }
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 20, QS_ALLINPUT);
    }
}

HWND BrowserHost::DocumentWindow() const {
    HWND found = nullptr;
    EnumChildWindows(
        m_window,
        [](HWND window, LPARAM result) -> BOOL {
            wchar_t name[64] = {};
            GetClassNameW(window, name, ARRAYSIZE(name));
            if (std::wstring(name) != L"Internet Explorer_Server") {
                return TRUE;
            }
            *reinterpret_cast<HWND*>(result) = window;
            return FALSE;
        },
        reinterpret_cast<LPARAM>(&found));
    return found;
}

ComPtr<IHTMLDocument2> BrowserHost::Document() const {
    ComPtr<IDispatch> dispatch;
    ComPtr<IHTMLDocument2> document;
    if (SUCCEEDED(m_browser->get_Document(dispatch.GetAddressOf())) && dispatch != nullptr) {
        dispatch.As(&document);
    }
    return document;
}

ComPtr<IHTMLElement> BrowserHost::Element(const wchar_t* id) const {
    ComPtr<IHTMLDocument3> document;
    ComPtr<IHTMLElement> element;
    const ComPtr<IHTMLDocument2> plain = Document();
    if (plain != nullptr && SUCCEEDED(plain.As(&document))) {
        BSTR text = SysAllocString(id);
        document->getElementById(text, element.GetAddressOf());
        SysFreeString(text);
    }
    return element;
}

void BrowserHost::Write(const wchar_t* id, const std::wstring& markup) const {
    const ComPtr<IHTMLElement> element = Element(id);
    BSTR text = SysAllocStringLen(markup.data(), static_cast<UINT>(markup.size()));
    element->put_innerHTML(text);
    SysFreeString(text);
}

HRESULT BrowserHost::Translate(UINT message, WPARAM key) const {
    ComPtr<IOleInPlaceActiveObject> active;
    if (FAILED(m_browser.As(&active))) {
        return E_NOINTERFACE;
    }
    MSG keyMessage = {};
    keyMessage.hwnd = DocumentWindow();
    keyMessage.message = message;
    keyMessage.wParam = key;
    return active->TranslateAccelerator(&keyMessage);
}

void BrowserHost::Resize(SIZE client) const {
    RECT area = {0, 0, client.cx, client.cy};
    AdjustWindowRect(&area, WS_OVERLAPPEDWINDOW, FALSE);
    SetWindowPos(m_window, nullptr, 0, 0, area.right - area.left, area.bottom - area.top,
                 SWP_NOMOVE | SWP_NOZORDER);
    ComPtr<IOleInPlaceObject> object;
    if (SUCCEEDED(m_browser.As(&object))) {
        const RECT inner = {0, 0, client.cx, client.cy};
        object->SetObjectRects(&inner, &inner);
    }
}

} // namespace test
