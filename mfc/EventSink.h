// Receives the events of a COM object, such as the browser control or its document.
#pragma once

#include <windows.h>

#include <comdef.h>
#include <ocidl.h>

#include "mfc/atlcomcli.h"

class CDHtmlDialog;

// Runs what COM or the window manager called. An exception must not unwind through the caller,
// which may not even be C++: it is turned into the error that it stands for.
template <typename Function>
HRESULT AnswerSystem(const Function& function) noexcept {
    try {
        return function();
    } catch (const _com_error& error) {
        return error.Error();
    } catch (...) {
        return E_UNEXPECTED;
    }
}

// COM's interfaces have no virtual destructor: Release destroys.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

// Connected to one outgoing dispatch interface at a time; events that come while it is not are
// passed over. Made by new, with one reference; the dialog must live until Disconnect.
class EventSink final : public IDispatch {
public:
    using Handler = void (CDHtmlDialog::*)(DISPID event, const DISPPARAMS& parameters);

    EventSink(REFIID events, CDHtmlDialog& dialog, Handler handler)
        : m_events(events), m_dialog(dialog), m_handler(handler) {}
    EventSink(const EventSink&) = delete;
    EventSink& operator=(const EventSink&) = delete;

    HRESULT Connect(IUnknown* source);
    void Disconnect();

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale,
                                            DISPID* ids) override;
    HRESULT STDMETHODCALLTYPE Invoke(DISPID event, REFIID iid, LCID locale, WORD flags,
                                     DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                                     UINT* argumentError) override;

private:
    virtual ~EventSink() = default;

    ULONG m_references = 1;
    IID m_events;
    CDHtmlDialog& m_dialog;
    Handler m_handler;
    CComPtr<IConnectionPoint> m_connection;
    DWORD m_cookie = 0;
};

#pragma GCC diagnostic pop
