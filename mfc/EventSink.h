// Receives the events of a COM object, such as the browser control or its document.
#pragma once

#include <windows.h>

#include <ocidl.h>

#include "mfc/ComObject.h"
#include "mfc/atlcomcli.h"

class CDHtmlDialog;

// Connected to one outgoing dispatch interface at a time; events that come while it is not are
// passed over. The dialog must live until Disconnect.
class EventSink final : public ComObject<IDispatch> {
public:
    using Handler = void (CDHtmlDialog::*)(DISPID event, const DISPPARAMS& parameters);

    EventSink(REFIID events, CDHtmlDialog& dialog, Handler handler)
        : m_events(events), m_dialog(dialog), m_handler(handler) {}

    HRESULT Connect(IUnknown* source);
    void Disconnect();

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale,
                                            DISPID* ids) override;
    HRESULT STDMETHODCALLTYPE Invoke(DISPID event, REFIID iid, LCID locale, WORD flags,
                                     DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                                     UINT* argumentError) override;

private:
    ~EventSink() override = default;

    IID m_events;
    CDHtmlDialog& m_dialog;
    Handler m_handler;
    CComPtr<IConnectionPoint> m_connection;
    DWORD m_cookie = 0;
};
