// The place in a window where the browser control lives.
#include "mfc/BrowserSite.h"

#include "mfc/AnswerSystem.h"
#include "mfc/EventSink.h"
#include "mfc/NoDropTarget.h"
#include "mfc/afxdhtml.h"

namespace {

// Texts of the registry go into the page as they are, so a control among them is neither loaded
// nor run.
constexpr LONG PicturesButNoControls =
    DLCTL_DLIMAGES | DLCTL_NO_JAVA | DLCTL_NO_DLACTIVEXCTLS | DLCTL_NO_RUNACTIVEXCTLS;

} // namespace

HRESULT STDMETHODCALLTYPE BrowserSite::QueryInterface(REFIID iid, void** object) {
    if (iid == IID_IUnknown || iid == IID_IOleClientSite) {
        *object = static_cast<IOleClientSite*>(this);
    } else if (iid == IID_IOleWindow || iid == IID_IOleInPlaceSite) {
        *object = static_cast<IOleInPlaceSite*>(this);
    } else if (iid == IID_IOleInPlaceUIWindow || iid == IID_IOleInPlaceFrame) {
        *object = static_cast<IOleInPlaceFrame*>(this);
    } else if (iid == IID_IDocHostUIHandler) {
        *object = static_cast<IDocHostUIHandler*>(this);
    } else if (iid == IID_IDispatch) {
        *object = static_cast<IDispatch*>(this);
    } else {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
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

// The engine's own menu would reload, print, or show the markup of a page that is a surface.
HRESULT STDMETHODCALLTYPE BrowserSite::ShowContextMenu(DWORD menu, POINT* position,
                                                       IUnknown* commands, IDispatch* object) {
    if (m_dialog != nullptr) {
        AnswerSystem([&] { return m_dialog->ShowContextMenu(menu, position, commands, object); });
    }
    return S_OK;
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
    return m_dialog != nullptr ? m_dialog->AnswerKey(message, commandGroup, command) : S_FALSE;
}

HRESULT STDMETHODCALLTYPE BrowserSite::GetOptionKeyPath(LPOLESTR* key, DWORD /*reserved*/) {
    *key = nullptr;
    return S_FALSE;
}

// The engine's own would replace the page by what is dropped on it.
HRESULT STDMETHODCALLTYPE BrowserSite::GetDropTarget(IDropTarget* proposed, IDropTarget** target) {
    *target = nullptr;
    return AnswerSystem([&] {
        if (m_dialog == nullptr || m_dialog->GetDropTarget(proposed, target) != S_OK) {
            *target = new NoDropTarget;
        }
        return S_OK;
    });
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

HRESULT STDMETHODCALLTYPE BrowserSite::GetTypeInfoCount(UINT* count) {
    *count = 0;
    return S_OK;
}

HRESULT STDMETHODCALLTYPE BrowserSite::GetTypeInfo(UINT /*index*/, LCID /*locale*/,
                                                   ITypeInfo** info) {
    *info = nullptr;
    return E_NOTIMPL;
}

HRESULT STDMETHODCALLTYPE BrowserSite::GetIDsOfNames(REFIID /*iid*/, LPOLESTR* /*names*/,
                                                     UINT /*count*/, LCID /*locale*/,
                                                     DISPID* /*ids*/) {
    return DISP_E_UNKNOWNNAME;
}

HRESULT STDMETHODCALLTYPE BrowserSite::Invoke(DISPID property, REFIID /*iid*/, LCID /*locale*/,
                                              WORD flags, DISPPARAMS* /*parameters*/,
                                              VARIANT* result, EXCEPINFO* /*exception*/,
                                              UINT* /*argumentError*/) {
    if (property != DISPID_AMBIENT_DLCONTROL || (flags & DISPATCH_PROPERTYGET) == 0 ||
        result == nullptr) {
        return DISP_E_MEMBERNOTFOUND;
    }
    result->vt = VT_I4;
    result->lVal = PicturesButNoControls;
    return S_OK;
}
