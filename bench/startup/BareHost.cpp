// What a start costs at least: a window with the browser control in it that shows a page of its own
// resources, and nothing else. Arguments: the window's width and height.
#include <windows.h>

#include <exdisp.h>
#include <oleidl.h>

#include <cstdlib>
#include <cwchar>

namespace {

HWND g_window = nullptr;

// COM's interfaces have no virtual destructor; the site is never deleted.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

// Refuses all that the control can do without.
class Site final : public IOleClientSite, public IOleInPlaceSite, public IOleInPlaceFrame {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (iid == IID_IUnknown || iid == IID_IOleClientSite) {
            *object = static_cast<IOleClientSite*>(this);
        } else if (iid == IID_IOleWindow || iid == IID_IOleInPlaceSite) {
            *object = static_cast<IOleInPlaceSite*>(this);
        } else if (iid == IID_IOleInPlaceUIWindow || iid == IID_IOleInPlaceFrame) {
            *object = static_cast<IOleInPlaceFrame*>(this);
        } else {
            *object = nullptr;
            return E_NOINTERFACE;
        }
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }

    HRESULT STDMETHODCALLTYPE SaveObject() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetMoniker(DWORD /*assign*/, DWORD /*which*/,
                                         IMoniker** moniker) override {
        *moniker = nullptr;
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetContainer(IOleContainer** container) override {
        *container = nullptr;
        return E_NOINTERFACE;
    }
    HRESULT STDMETHODCALLTYPE ShowObject() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnShowWindow(BOOL /*show*/) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE RequestNewObjectLayout() override { return E_NOTIMPL; }

    HRESULT STDMETHODCALLTYPE GetWindow(HWND* window) override {
        *window = g_window;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL /*enter*/) override { return E_NOTIMPL; }

    HRESULT STDMETHODCALLTYPE CanInPlaceActivate() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnInPlaceActivate() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnUIActivate() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetWindowContext(IOleInPlaceFrame** frame,
                                               IOleInPlaceUIWindow** document, RECT* position,
                                               RECT* clip, OLEINPLACEFRAMEINFO* info) override {
        *frame = this;
        *document = nullptr;
        GetClientRect(g_window, position);
        *clip = *position;
        info->fMDIApp = FALSE;
        info->hwndFrame = g_window;
        info->haccel = nullptr;
        info->cAccelEntries = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Scroll(SIZE /*extent*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE OnUIDeactivate(BOOL /*undoable*/) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnInPlaceDeactivate() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE DiscardUndoState() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE DeactivateAndUndo() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE OnPosRectChange(const RECT* /*position*/) override { return S_OK; }

    HRESULT STDMETHODCALLTYPE GetBorder(RECT* /*border*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE RequestBorderSpace(const BORDERWIDTHS* /*widths*/) override {
        return INPLACE_E_NOTOOLSPACE;
    }
    HRESULT STDMETHODCALLTYPE SetBorderSpace(const BORDERWIDTHS* /*widths*/) override {
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SetActiveObject(IOleInPlaceActiveObject* /*object*/,
                                              LPCOLESTR /*name*/) override {
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE InsertMenus(HMENU /*menu*/, OLEMENUGROUPWIDTHS* /*widths*/) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE SetMenu(HMENU /*menu*/, HOLEMENU /*oleMenu*/,
                                      HWND /*activeObject*/) override {
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE RemoveMenus(HMENU /*menu*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetStatusText(LPCOLESTR /*text*/) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE EnableModeless(BOOL /*enable*/) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE TranslateAccelerator(MSG* /*message*/, WORD /*command*/) override {
        return S_FALSE;
    }
};
#pragma GCC diagnostic pop

Site g_site;

bool ShowPage() {
    IWebBrowser2* browser = nullptr;
    IOleObject* object = nullptr;
    if (FAILED(CoCreateInstance(CLSID_WebBrowser, nullptr, CLSCTX_INPROC_SERVER,
                                __uuidof(IWebBrowser2), reinterpret_cast<void**>(&browser))) ||
        FAILED(browser->QueryInterface(IID_PPV_ARGS(&object)))) {
        return false;
    }
    RECT client = {};
    GetClientRect(g_window, &client);
    object->SetClientSite(&g_site);
    object->DoVerb(OLEIVERB_UIACTIVATE, nullptr, &g_site, 0, g_window, &client);
    wchar_t url[MAX_PATH + 16] = L"res://";
    GetModuleFileNameW(nullptr, url + 6, MAX_PATH);
    std::wcscat(url, L"/129");
    BSTR address = SysAllocString(url);
    const HRESULT result = browser->Navigate(address, nullptr, nullptr, nullptr, nullptr);
    SysFreeString(address);
    return SUCCEEDED(result);
}

} // namespace

// Both objects live to the end of the process, which takes them along.
int main(int argc, char** argv) {
    if (argc != 3 || FAILED(OleInitialize(nullptr))) {
        return 2;
    }
    g_window =
        CreateWindowExW(WS_EX_APPWINDOW, L"STATIC", L"Bare host",
                        WS_POPUP | WS_VISIBLE | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME, 0, 0,
                        std::atoi(argv[1]), std::atoi(argv[2]), nullptr, nullptr, nullptr, nullptr);
    if (!ShowPage()) {
        return 1;
    }
    MSG message = {};
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return 0;
}
