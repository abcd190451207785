// The place in a window where the browser control lives.
#include "mfc/BrowserSite.h"

#include "mfc/EventSink.h"
#include "mfc/afxdhtml.h"

HRESULT STDMETHODCALLTYPE BrowserSite::QueryInterface(REFIID iid, void** object) {
    if (iid == IID_IUnknown || iid == IID_IOleClientSite) {
        *object = static_cast<IOleClientSite*>(this);
    } else if (iid == IID_IOleWindow || iid == IID_IOleInPlaceSite) {
        *object = static_cast<IOleInPlaceSite*>(this);
    } else if (iid == IID_IOleInPlaceUIWindow || iid == IID_IOleInPlaceFrame) {
        *object = static_cast<IOleInPlaceFrame*>(this);
    } else if (iid == IID_IDocHostUIHandler) {
        *object = static_cast<IDocHostUIHandler*>(this);
    } else {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
}

ULONG STDMETHODCALLTYPE BrowserSite::AddRef() {
    return ++m_references;
}

ULONG STDMETHODCALLTYPE BrowserSite::Release() {
    const ULONG references = --m_references;
    if (references == 0) {
        delete this;
    }
    return references;
}

HRESULT STDMETHODCALLTYPE BrowserSite::GetMoniker(DWORD /*assign*/, DWORD /*which*/,
                                                  IMoniker** moniker) {
    *moniker = nullptr;
    return E_NOTIMPL;
}

HRESULT STDMETHODCALLTYPE BrowserSite::GetContainer(IOleContainer** container) {
    *container = nullptr;
    return E_NOINTERFACE;
}

HRESULT STDMETHODCALLTYPE BrowserSite::OnShowWindow(BOOL /*show*/) {
    return S_OK;
}

HRESULT STDMETHODCALLTYPE BrowserSite::GetWindow(HWND* window) {
    *window = m_dialog != nullptr ? m_dialog->m_hWnd : nullptr;
    return *window != nullptr ? S_OK : E_FAIL;
}

HRESULT STDMETHODCALLTYPE BrowserSite::ContextSensitiveHelp(BOOL /*enter*/) {
    return E_NOTIMPL;
}

HRESULT STDMETHODCALLTYPE BrowserSite::GetWindowContext(IOleInPlaceFrame** frame,
                                                        IOleInPlaceUIWindow** document,
                                                        RECT* position, RECT* clip,
                                                        OLEINPLACEFRAMEINFO* info) {
    *frame = nullptr;
    *document = nullptr;
    HWND window = nullptr;
    if (FAILED(GetWindow(&window))) {
        return E_FAIL;
    }
    *frame = this;
    AddRef();
    GetClientRect(window, position);
    *clip = *position;
    info->fMDIApp = FALSE;
    info->hwndFrame = window;
    info->haccel = nullptr;
    info->cAccelEntries = 0;
    return S_OK;
}

HRESULT STDMETHODCALLTYPE BrowserSite::Scroll(SIZE /*extent*/) {
    return E_NOTIMPL;
}

HRESULT STDMETHODCALLTYPE BrowserSite::OnUIDeactivate(BOOL /*undoable*/) {
    return S_OK;
}

// The control always has the whole client area.
HRESULT STDMETHODCALLTYPE BrowserSite::OnPosRectChange(const RECT* /*position*/) {
    return S_OK;
}

HRESULT STDMETHODCALLTYPE BrowserSite::GetBorder(RECT* /*border*/) {
    return INPLACE_E_NOTOOLSPACE;
}

HRESULT STDMETHODCALLTYPE BrowserSite::RequestBorderSpace(const BORDERWIDTHS* /*widths*/) {
    return INPLACE_E_NOTOOLSPACE;
}

HRESULT STDMETHODCALLTYPE BrowserSite::SetBorderSpace(const BORDERWIDTHS* /*widths*/) {
    return S_OK;
}

HRESULT STDMETHODCALLTYPE BrowserSite::SetActiveObject(IOleInPlaceActiveObject* /*object*/,
                                                       LPCOLESTR /*name*/) {
    return S_OK;
}

HRESULT STDMETHODCALLTYPE BrowserSite::InsertMenus(HMENU /*menu*/, OLEMENUGROUPWIDTHS* /*widths*/) {
    return E_NOTIMPL;
}

HRESULT STDMETHODCALLTYPE BrowserSite::SetMenu(HMENU /*menu*/, HOLEMENU /*oleMenu*/,
                                               HWND /*activeObject*/) {
    return S_OK;
}

HRESULT STDMETHODCALLTYPE BrowserSite::RemoveMenus(HMENU /*menu*/) {
    return E_NOTIMPL;
}

HRESULT STDMETHODCALLTYPE BrowserSite::SetStatusText(LPCOLESTR /*text*/) {
    return S_OK;
}

HRESULT STDMETHODCALLTYPE BrowserSite::TranslateAccelerator(MSG* /*message*/, WORD /*command*/) {
    return S_FALSE;
}

HRESULT STDMETHODCALLTYPE BrowserSite::EnableModeless(BOOL /*enable*/) {
    return S_OK;
}

HRESULT STDMETHODCALLTYPE BrowserSite::ShowContextMenu(DWORD /*menu*/, POINT* /*position*/,
                                                       IUnknown* /*commands*/,
                                                       IDispatch* /*object*/) {
    return S_FALSE; // the document shows its own
}

HRESULT STDMETHODCALLTYPE BrowserSite::GetHostInfo(DOCHOSTUIINFO* info) {
    return m_dialog != nullptr ? m_dialog->GetHostInfo(info) : E_FAIL;
}

HRESULT STDMETHODCALLTYPE BrowserSite::ShowUI(DWORD /*kind*/, IOleInPlaceActiveObject* /*object*/,
                                              IOleCommandTarget* /*commands*/,
                                              IOleInPlaceFrame* /*frame*/,
                                              IOleInPlaceUIWindow* /*document*/) {
    return S_FALSE;
}

HRESULT STDMETHODCALLTYPE BrowserSite::OnDocWindowActivate(BOOL /*activate*/) {
    return S_OK;
}

HRESULT STDMETHODCALLTYPE BrowserSite::OnFrameWindowActivate(BOOL /*activate*/) {
    return S_OK;
}

HRESULT STDMETHODCALLTYPE BrowserSite::ResizeBorder(const RECT* /*border*/,
                                                    IOleInPlaceUIWindow* /*window*/,
                                                    BOOL /*isFrame*/) {
    return S_OK;
}

HRESULT STDMETHODCALLTYPE BrowserSite::TranslateAccelerator(MSG* message, const GUID* commandGroup,
                                                            DWORD command) {
    if (m_dialog == nullptr) {
        return S_FALSE;
    }
    return AnswerSystem(
        [&] { return m_dialog->TranslateAccelerator(message, commandGroup, command); });
}

HRESULT STDMETHODCALLTYPE BrowserSite::GetOptionKeyPath(LPOLESTR* key, DWORD /*reserved*/) {
    *key = nullptr;
    return S_FALSE;
}

HRESULT STDMETHODCALLTYPE BrowserSite::GetDropTarget(IDropTarget* /*proposed*/,
                                                     IDropTarget** target) {
    *target = nullptr;
    return E_NOTIMPL;
}

HRESULT STDMETHODCALLTYPE BrowserSite::GetExternal(IDispatch** external) {
    *external = nullptr;
    return S_FALSE;
}

HRESULT STDMETHODCALLTYPE BrowserSite::TranslateUrl(DWORD /*reserved*/, LPWSTR /*url*/,
                                                    LPWSTR* translated) {
    *translated = nullptr;
    return S_FALSE;
}

HRESULT STDMETHODCALLTYPE BrowserSite::FilterDataObject(IDataObject* /*object*/,
                                                        IDataObject** filtered) {
    *filtered = nullptr;
    return S_FALSE;
}
