// Receives the events of a COM object, such as the browser control or its document.
#include "mfc/EventSink.h"

#include "mfc/AnswerSystem.h"
#include "mfc/afxdhtml.h"

HRESULT EventSink::Connect(IUnknown* source) {
    Disconnect();
    CComPtr<IConnectionPointContainer> container;
    HRESULT result = source->QueryInterface(IID_PPV_ARGS(&container));
    if (FAILED(result)) {
        return result;
    }
    result = container->FindConnectionPoint(m_events, &m_connection);
    if (FAILED(result)) {
        return result;
    }
    result = m_connection->Advise(this, &m_cookie);
    if (FAILED(result)) {
        m_connection.Release();
    }
    return result;
}

// From the first line on nothing is answered, not even what the source tells while it lets go.
void EventSink::Disconnect() {
    CComPtr<IConnectionPoint> connection;
    connection = m_connection.p;
    m_connection.Release();
    if (connection != nullptr) {
        connection->Unadvise(m_cookie);
    }
}

HRESULT STDMETHODCALLTYPE EventSink::QueryInterface(REFIID iid, void** object) {
    if (iid != IID_IUnknown && iid != IID_IDispatch && iid != m_events) {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    *object = static_cast<IDispatch*>(this);
    AddRef();
    return S_OK;
}

HRESULT STDMETHODCALLTYPE EventSink::GetTypeInfoCount(UINT* count) {
    *count = 0;
    return S_OK;
}

HRESULT STDMETHODCALLTYPE EventSink::GetTypeInfo(UINT /*index*/, LCID /*locale*/,
                                                 ITypeInfo** /*info*/) {
    return E_NOTIMPL;
}

HRESULT STDMETHODCALLTYPE EventSink::GetIDsOfNames(REFIID /*iid*/, LPOLESTR* /*names*/,
                                                   UINT /*count*/, LCID /*locale*/,
                                                   DISPID* /*ids*/) {
    return E_NOTIMPL;
}

HRESULT STDMETHODCALLTYPE EventSink::Invoke(DISPID event, REFIID /*iid*/, LCID /*locale*/,
                                            WORD /*flags*/, DISPPARAMS* parameters,
                                            VARIANT* /*result*/, EXCEPINFO* /*exception*/,
                                            UINT* /*argumentError*/) {
    if (parameters == nullptr) {
        return E_POINTER;
    }
    if (m_connection == nullptr) {
        return S_OK;
    }
    return AnswerSystem([&] {
        (m_dialog.*m_handler)(event, *parameters);
        return S_OK;
    });
}
