// The place in a window where the browser control lives: what a container of an in-place active
// object and a host of an HTML document must answer.
#pragma once

#include <windows.h>

#include <mshtmhst.h>
#include <oleidl.h>

#include "mfc/ComObject.h"

class CDHtmlDialog;

// The control may keep references past the dialog's end; Detach makes the site answer on its own
// from then on.
class BrowserSite final : public ComObject<IOleClientSite, IOleInPlaceSite, IOleInPlaceFrame,
                                           IDocHostUIHandler, IDispatch> {
public:
    explicit BrowserSite(CDHtmlDialog& dialog) : m_dialog(&dialog) {}

    void Detach() { m_dialog = nullptr; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;

    // IOleClientSite
    HRESULT STDMETHODCALLTYPE SaveObject() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetMoniker(DWORD assign, DWORD which, IMoniker** moniker) override;
    HRESULT STDMETHODCALLTYPE GetContainer(IOleContainer** container) override;
    HRESULT STDMETHODCALLTYPE ShowObject() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnShowWindow(BOOL show) override;
    HRESULT STDMETHODCALLTYPE RequestNewObjectLayout() override { return E_NOTIMPL; }

    // IOleWindow, of the site and of the frame
    HRESULT STDMETHODCALLTYPE GetWindow(HWND* window) override;
    HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL enter) override;

    // IOleInPlaceSite
    HRESULT STDMETHODCALLTYPE CanInPlaceActivate() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnInPlaceActivate() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnUIActivate() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetWindowContext(IOleInPlaceFrame** frame,
                                               IOleInPlaceUIWindow** document, RECT* position,
                                               RECT* clip, OLEINPLACEFRAMEINFO* info) override;
    HRESULT STDMETHODCALLTYPE Scroll(SIZE extent) override;
    HRESULT STDMETHODCALLTYPE OnUIDeactivate(BOOL undoable) override;
    HRESULT STDMETHODCALLTYPE OnInPlaceDeactivate() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE DiscardUndoState() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE DeactivateAndUndo() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE OnPosRectChange(const RECT* position) override;

    // IOleInPlaceUIWindow and IOleInPlaceFrame: there is neither border space nor a menu to share
    HRESULT STDMETHODCALLTYPE GetBorder(RECT* border) override;
    HRESULT STDMETHODCALLTYPE RequestBorderSpace(const BORDERWIDTHS* widths) override;
    HRESULT STDMETHODCALLTYPE SetBorderSpace(const BORDERWIDTHS* widths) override;
    HRESULT STDMETHODCALLTYPE SetActiveObject(IOleInPlaceActiveObject* object,
                                              LPCOLESTR name) override;
    HRESULT STDMETHODCALLTYPE InsertMenus(HMENU menu, OLEMENUGROUPWIDTHS* widths) override;
    HRESULT STDMETHODCALLTYPE SetMenu(HMENU menu, HOLEMENU oleMenu, HWND activeObject) override;
    HRESULT STDMETHODCALLTYPE RemoveMenus(HMENU menu) override;
    HRESULT STDMETHODCALLTYPE SetStatusText(LPCOLESTR text) override;
    HRESULT STDMETHODCALLTYPE TranslateAccelerator(MSG* message, WORD command) override;

    // IDocHostUIHandler, and EnableModeless of the frame
    HRESULT STDMETHODCALLTYPE EnableModeless(BOOL enable) override;
    HRESULT STDMETHODCALLTYPE ShowContextMenu(DWORD menu, POINT* position, IUnknown* commands,
                                              IDispatch* object) override;
    HRESULT STDMETHODCALLTYPE GetHostInfo(DOCHOSTUIINFO* info) override;
    HRESULT STDMETHODCALLTYPE ShowUI(DWORD kind, IOleInPlaceActiveObject* object,
                                     IOleCommandTarget* commands, IOleInPlaceFrame* frame,
                                     IOleInPlaceUIWindow* document) override;
    HRESULT STDMETHODCALLTYPE HideUI() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE UpdateUI() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnDocWindowActivate(BOOL activate) override;
    HRESULT STDMETHODCALLTYPE OnFrameWindowActivate(BOOL activate) override;
    HRESULT STDMETHODCALLTYPE ResizeBorder(const RECT* border, IOleInPlaceUIWindow* window,
                                           BOOL isFrame) override;
    HRESULT STDMETHODCALLTYPE TranslateAccelerator(MSG* message, const GUID* commandGroup,
                                                   DWORD command) override;
    HRESULT STDMETHODCALLTYPE GetOptionKeyPath(LPOLESTR* key, DWORD reserved) override;
    HRESULT STDMETHODCALLTYPE GetDropTarget(IDropTarget* proposed, IDropTarget** target) override;
    HRESULT STDMETHODCALLTYPE GetExternal(IDispatch** external) override;
    HRESULT STDMETHODCALLTYPE TranslateUrl(DWORD reserved, LPWSTR url, LPWSTR* translated) override;
    HRESULT STDMETHODCALLTYPE FilterDataObject(IDataObject* object,
                                               IDataObject** filtered) override;

    // IDispatch: the ambient properties, which tell the control what the page may load
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale,
                                            DISPID* ids) override;
    HRESULT STDMETHODCALLTYPE Invoke(DISPID property, REFIID iid, LCID locale, WORD flags,
                                     DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                                     UINT* argumentError) override;

private:
    ~BrowserSite() override = default;

    CDHtmlDialog* m_dialog; // null once detached
};
