// Finding the control, firing its events, asking its host.
#include "wine/htmldocument/com/Control.h"

#include <docobj.h>
#include <exdispid.h>
#include <mshtmdid.h>
#include <servprov.h>
#include <shlguid.h>

#include <iterator>
#include <vector>

#include "Stubs.h"

namespace html {
namespace {

template <class Interface>
ComPtr<Interface> Query(IUnknown* object) {
    ComPtr<Interface> found;
    if (object != nullptr) {
        object->QueryInterface(__uuidof(Interface), reinterpret_cast<void**>(found.GetAddressOf()));
    }
    return found;
}

ULONG ReferencesOf(IUnknown& object) {
    object.AddRef();
    return object.Release();
}

// Hears nothing. It is connected to see how connections are told.
class ProbeSink final : public Counted<IDispatchStub, IDispatch, DWebBrowserEvents2> {
private:
    ~ProbeSink() override = default;
};

// Everybody who is connected to the point. An enumeration gives a reference to each, by COM's
// rules; Wine's (seen: 8.0) gives none. A sink of our own among them tells which it is.
std::vector<ComPtr<IUnknown>> SinksOf(IConnectionPoint& point) {
    std::vector<ComPtr<IUnknown>> sinks;
    const ComPtr<ProbeSink> probe = Adopt(new ProbeSink);
    DWORD cookie = 0;
    ComPtr<IEnumConnections> connections;
    if (FAILED(point.Advise(probe.Get(), &cookie))) {
        return sinks;
    }
    const ULONG before = ReferencesOf(*probe.Get());
    if (SUCCEEDED(point.EnumConnections(connections.GetAddressOf()))) {
        CONNECTDATA connection = {};
        while (connections->Next(1, &connection, nullptr) == S_OK) {
            sinks.push_back(Adopt(connection.pUnk));
        }
        if (ReferencesOf(*probe.Get()) == before) {
            for (const ComPtr<IUnknown>& sink : sinks) {
                sink->AddRef();
            }
        }
    }
    point.Unadvise(cookie);
    return sinks;
}

class Text {
public:
    explicit Text(const std::wstring& text) : m_text(SysAllocString(text.c_str())) {}
    Text(const Text&) = delete;
    Text& operator=(const Text&) = delete;
    ~Text() { SysFreeString(m_text); }
    BSTR Get() const { return m_text; }

private:
    BSTR m_text;
};

// What MSHTML looks for in its host, beside what a host must have. A host may decline any of it.
struct OptionalInterface {
    const char* name;
    IID iid;
};
constexpr OptionalInterface OptionalInterfaces[] = {
    {"IDispatch", {0x00020400, 0, 0, {0xc0, 0, 0, 0, 0, 0, 0, 0x46}}},
    {"IOleControlSite", {0xb196b289, 0xbab4, 0x101a, {0xb6, 0x9c, 0, 0xaa, 0, 0x34, 0x1d, 0x07}}},
    {"IOleCommandTarget", {0xb722bccb, 0x4e68, 0x101b, {0xa2, 0xbc, 0, 0xaa, 0, 0x40, 0x47, 0x70}}},
    {"IOleDocumentSite", {0xb722bcc7, 0x4e68, 0x101b, {0xa2, 0xbc, 0, 0xaa, 0, 0x40, 0x47, 0x70}}},
    {"IServiceProvider", {0x6d5140c1, 0x7436, 0x11ce, {0x80, 0x34, 0, 0xaa, 0, 0x60, 0x09, 0xfa}}},
    {"IDocHostUIHandler2",
     {0x3050f6d0, 0x98b5, 0x11cf, {0xbb, 0x82, 0, 0xaa, 0, 0xbd, 0xce, 0x0b}}},
    {"IDocHostShowUI", {0xc4d244b0, 0xd43e, 0x11cf, {0x89, 0x3b, 0, 0xaa, 0, 0xbd, 0xce, 0x1a}}},
    {"IOleInPlaceSiteEx", {0x9c2cad80, 0x3424, 0x11cf, {0xb6, 0x70, 0, 0xaa, 0, 0x4c, 0xd6, 0xd8}}},
    {"IOleInPlaceSiteWindowless",
     {0x922eada0, 0x3424, 0x11cf, {0xb6, 0x70, 0, 0xaa, 0, 0x4c, 0xd6, 0xd8}}},
    {"IInternetSecurityManager",
     {0x79eac9ee, 0xbaf9, 0x11ce, {0x8c, 0x82, 0, 0xaa, 0, 0x4b, 0xa9, 0x0b}}},
    {"INewWindowManager",
     {0xd2bc4c84, 0x3f72, 0x4a52, {0xa6, 0x04, 0x7b, 0xcb, 0xf3, 0x98, 0x2c, 0xbb}}},
};

} // namespace

void Control::Attach(IOleClientSite* site) {
    m_browser.Reset();
    const ComPtr<IServiceProvider> services = Query<IServiceProvider>(site);
    if (services != nullptr) {
        services->QueryService(SID_SWebBrowserApp, IID_IWebBrowser2,
                               reinterpret_cast<void**>(m_browser.GetAddressOf()));
    }
}

ComPtr<IOleClientSite> Control::HostSite() const {
    ComPtr<IOleClientSite> site;
    const ComPtr<IOleObject> object = Query<IOleObject>(m_browser.Get());
    if (object != nullptr) {
        object->GetClientSite(site.GetAddressOf());
    }
    return site;
}

ComPtr<IDocHostUIHandler> Control::HostHandler() const {
    return Query<IDocHostUIHandler>(HostSite().Get());
}

void Control::Navigate(const std::wstring& url) const {
    if (m_browser != nullptr) {
        m_browser->Navigate(Text(url).Get(), nullptr, nullptr, nullptr, nullptr);
    }
}

// Only the control knows its sinks: they are asked of its connection point.
void Control::Fire(DISPID id, DISPPARAMS& parameters) const {
    const ComPtr<IWebBrowser2> browser = m_browser; // a sink may close everything
    ComPtr<IConnectionPoint> point;
    const ComPtr<IConnectionPointContainer> container =
        Query<IConnectionPointContainer>(browser.Get());
    if (container == nullptr ||
        FAILED(container->FindConnectionPoint(DIID_DWebBrowserEvents2, point.GetAddressOf()))) {
        return;
    }
    for (const ComPtr<IUnknown>& sink : SinksOf(*point.Get())) {
        const ComPtr<IDispatch> dispatch = Query<IDispatch>(sink.Get());
        if (dispatch != nullptr) {
            dispatch->Invoke(id, IID_NULL, LOCALE_SYSTEM_DEFAULT, DISPATCH_METHOD, &parameters,
                             nullptr, nullptr, nullptr);
        }
    }
}

void Control::FireDownload(bool begins) const {
    DISPPARAMS none = {};
    Fire(begins ? DISPID_DOWNLOADBEGIN : DISPID_DOWNLOADCOMPLETE, none);
}

// The arguments of an event stand last first.
bool Control::FireNavigateError(const std::wstring& url, LONG status) const {
    VARIANT_BOOL cancel = VARIANT_FALSE;
    const Text address(url);
    VARIANT urlValue = {};
    V_VT(&urlValue) = VT_BSTR;
    V_BSTR(&urlValue) = address.Get();
    VARIANT frame = {};
    VARIANT statusValue = {};
    V_VT(&statusValue) = VT_I4;
    V_I4(&statusValue) = status;
    VARIANTARG arguments[5] = {};
    V_VT(&arguments[0]) = VT_BYREF | VT_BOOL;
    V_BOOLREF(&arguments[0]) = &cancel;
    VARIANT* const values[] = {&statusValue, &frame, &urlValue};
    for (size_t i = 0; i < std::size(values); ++i) {
        V_VT(&arguments[i + 1]) = VT_BYREF | VT_VARIANT;
        V_VARIANTREF(&arguments[i + 1]) = values[i];
    }
    V_VT(&arguments[4]) = VT_DISPATCH;
    V_DISPATCH(&arguments[4]) = m_browser.Get();
    DISPPARAMS parameters = {arguments, nullptr, static_cast<UINT>(std::size(arguments)), 0};
    Fire(DISPID_NAVIGATEERROR, parameters);
    return cancel != VARIANT_FALSE;
}

bool Control::FireNewWindow() const {
    VARIANT_BOOL cancel = VARIANT_FALSE;
    IDispatch* window = nullptr;
    VARIANTARG arguments[2] = {};
    V_VT(&arguments[0]) = VT_BYREF | VT_BOOL;
    V_BOOLREF(&arguments[0]) = &cancel;
    V_VT(&arguments[1]) = VT_BYREF | VT_DISPATCH;
    V_DISPATCHREF(&arguments[1]) = &window;
    DISPPARAMS parameters = {arguments, nullptr, static_cast<UINT>(std::size(arguments)), 0};
    Fire(DISPID_NEWWINDOW2, parameters);
    const ComPtr<IDispatch> given = Adopt(window);
    return cancel != VARIANT_FALSE;
}

std::string Control::AskForEverything() const {
    std::string oddities;
    const ComPtr<IOleClientSite> site = HostSite();
    if (site == nullptr) {
        return oddities;
    }
    for (const OptionalInterface& optional : OptionalInterfaces) {
        IUnknown* const untouched = reinterpret_cast<IUnknown*>(&oddities);
        IUnknown* answer = untouched;
        const HRESULT result =
            site->QueryInterface(optional.iid, reinterpret_cast<void**>(&answer));
        const bool answered = answer != nullptr && answer != untouched;
        if (SUCCEEDED(result) ? !answered : answer != nullptr) {
            oddities += std::string(oddities.empty() ? "" : " ") + optional.name;
        }
        if (SUCCEEDED(result) && answered) {
            answer->Release();
        }
    }
    return oddities;
}

LONG Control::DownloadControl() const {
    const ComPtr<IOleClientSite> site = HostSite();
    const ComPtr<IDispatch> ambient = Query<IDispatch>(site.Get());
    if (ambient == nullptr) {
        return -1;
    }
    DISPPARAMS none = {};
    VARIANT answer = {};
    const HRESULT result =
        ambient->Invoke(DISPID_AMBIENT_DLCONTROL, IID_NULL, LOCALE_SYSTEM_DEFAULT,
                        DISPATCH_PROPERTYGET, &none, &answer, nullptr, nullptr);
    const LONG flags = SUCCEEDED(result) && V_VT(&answer) == VT_I4 ? V_I4(&answer) : -1;
    VariantClear(&answer);
    return flags;
}

} // namespace html
