// A small host for the browser control, as the dialog of the launcher is one: a window, a site with
// a handler for keys, and sinks that write down what they hear.
#pragma once

#include <windows.h>

#include <docobj.h>
#include <exdisp.h>
#include <mshtmhst.h>
#include <mshtml.h>
#include <ole2.h>
#include <urlmon.h>
#include <wrl/client.h>

#include <functional>
#include <string>
#include <vector>

#include "HostStubs.h"

namespace test {

using Microsoft::WRL::ComPtr;

// One event of the document, with what the sink could ask while it was fired.
struct HeardEvent {
    DISPID id = 0;
    std::wstring sourceId;
    std::wstring sourceTag;
    std::wstring type;
};

class BrowserHost;

// Without a life of its own: the host counts the references to see what is never released.
template <class Base>
class HostPart : public Base {
public:
    explicit HostPart(BrowserHost& host) : m_host(host) {}
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;

protected:
    ~HostPart() override = default;
    BrowserHost& m_host;
};

class HostClientSite final : public HostPart<html::IOleClientSiteStub> {
public:
    using HostPart::HostPart;
    ~HostClientSite() override = default;
    HRESULT STDMETHODCALLTYPE ShowObject() override { return S_OK; }
};

class HostInPlaceSite final : public HostPart<html::IOleInPlaceSiteStub> {
public:
    using HostPart::HostPart;
    ~HostInPlaceSite() override = default;
    HRESULT STDMETHODCALLTYPE GetWindow(HWND* window) override;
    HRESULT STDMETHODCALLTYPE CanInPlaceActivate() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnInPlaceActivate() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnUIActivate() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnUIDeactivate(BOOL) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnInPlaceDeactivate() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetWindowContext(IOleInPlaceFrame** frame,
                                               IOleInPlaceUIWindow** window, LPRECT area,
                                               LPRECT clip, LPOLEINPLACEFRAMEINFO info) override;
};

class HostFrame final : public HostPart<html::IOleInPlaceFrameStub> {
public:
    using HostPart::HostPart;
    ~HostFrame() override = default;
    HRESULT STDMETHODCALLTYPE GetWindow(HWND* window) override;
    HRESULT STDMETHODCALLTYPE SetActiveObject(IOleInPlaceActiveObject*, LPCOLESTR) override {
        return S_OK;
    }
};

class HostUiHandler final : public HostPart<html::IDocHostUIHandlerStub> {
public:
    using HostPart::HostPart;
    ~HostUiHandler() override = default;
    HRESULT STDMETHODCALLTYPE GetHostInfo(DOCHOSTUIINFO* info) override;
    HRESULT STDMETHODCALLTYPE ShowContextMenu(DWORD menu, POINT* at, IUnknown* commands,
                                              IDispatch* object) override;
    HRESULT STDMETHODCALLTYPE GetDropTarget(IDropTarget* proposed, IDropTarget** target) override;
    HRESULT STDMETHODCALLTYPE TranslateAccelerator(LPMSG message, const GUID* group,
                                                   DWORD command) override;
};

// Hears the control's and the document's events.
class HostSink final : public html::IDispatchStub {
public:
    using Function = std::function<void(DISPID id, DISPPARAMS& parameters)>;
    HostSink(REFIID iid, Function function) : m_iid(iid), m_function(std::move(function)) {}
    ~HostSink() override = default;
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() override { return --m_references; }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID iid, LCID locale, WORD flags,
                                     DISPPARAMS* parameters, VARIANT* answer, EXCEPINFO* exception,
                                     UINT* badArgument) override;
    ULONG References() const { return m_references; }

private:
    const IID m_iid;
    Function m_function;
    ULONG m_references = 0;
};

class BrowserHost {
public:
    explicit BrowserHost(SIZE client = {680, 600});
    BrowserHost(const BrowserHost&) = delete;
    BrowserHost& operator=(const BrowserHost&) = delete;
    ~BrowserHost() { Close(); }

    // Goes to the page of this program's resources and waits until it is complete.
    bool Open(const wchar_t* page = L"129");
    // The same without waiting.
    bool Start(const wchar_t* page = L"129");
    // Takes everything down in order; afterwards the number of references that others still hold.
    ULONG Close();
    // Handles messages until the condition holds; false after the deadline.
    static bool PumpUntil(const std::function<bool()>& condition, DWORD milliseconds = 10000);
    static void PumpPending();

    HWND Window() const { return m_window; }
    HWND DocumentWindow() const;
    IWebBrowser2& Browser() const { return *m_browser.Get(); }
    ComPtr<IHTMLDocument2> Document() const;
    ComPtr<IHTMLElement> Element(const wchar_t* id) const;
    void Write(const wchar_t* id, const std::wstring& markup) const;
    // What the control's TranslateAccelerator answers to a message of this kind.
    HRESULT Translate(UINT message, WPARAM key) const;
    bool CompletedInsideNavigate() const { return m_completedInsideNavigate; }
    void Resize(SIZE client) const;

    // Changes how the host behaves.
    DWORD hostFlags = DOCHOSTUIFLAG_FLAT_SCROLLBAR;
    HRESULT keyAnswer = S_FALSE;
    HRESULT menuAnswer = S_OK;
    ComPtr<IDropTarget> ownDropTarget = nullptr; // null: the engine's
    std::function<void(DISPID, DISPPARAMS&)> onBrowserEvent = nullptr;
    std::function<void(const HeardEvent&, IHTMLElement&)> onEvent = nullptr;
    // What happened.
    std::vector<HeardEvent> events;
    std::vector<UINT> keyMessages;
    std::vector<DISPID> browserEvents;
    ComPtr<IDropTarget> proposedDropTarget = nullptr;

private:
    friend class HostInPlaceSite;
    friend class HostFrame;
    friend class HostUiHandler;
    template <class Base>
    friend class HostPart;
    HRESULT Query(REFIID iid, void** object);
    void HearBrowser(DISPID id, DISPPARAMS& parameters);
    void HearDocument(DISPID id, DISPPARAMS& parameters);
    void ConnectDocument();
    static void Unadvise(ComPtr<IConnectionPoint>& point, DWORD cookie);

    HWND m_window = nullptr;
    ULONG m_references = 0;
    HostClientSite m_clientSite;
    HostInPlaceSite m_inPlaceSite;
    HostFrame m_frame;
    HostUiHandler m_uiHandler;
    HostSink m_browserSink;
    HostSink m_documentSink;
    ComPtr<IWebBrowser2> m_browser;
    ComPtr<IConnectionPoint> m_browserPoint;
    ComPtr<IConnectionPoint> m_documentPoint;
    DWORD m_browserCookie = 0;
    DWORD m_documentCookie = 0;
    bool m_complete = false;
    bool m_navigating = false;
    bool m_completedInsideNavigate = false;
};

// Text of a BSTR property: TextOf(element, &IHTMLElement::get_id).
template <class Interface>
std::wstring TextOf(Interface& object, HRESULT (STDMETHODCALLTYPE Interface::*getter)(BSTR*)) {
    BSTR text = nullptr;
    if (FAILED((object.*getter)(&text)) || text == nullptr) {
        return L"";
    }
    std::wstring copy(text, SysStringLen(text));
    SysFreeString(text);
    return copy;
}

} // namespace test
