// Connecting sinks and calling them.
#include "wine/htmldocument/com/ConnectionPoints.h"

#include <mshtml.h>

#include <algorithm>

#include "wine/htmldocument/com/Document.h"

namespace html {

HRESULT ConnectionPoint::QueryInterface(REFIID iid, void** object) {
    if (object == nullptr) {
        return E_POINTER;
    }
    if (iid == IID_IUnknown || iid == IID_IConnectionPoint) {
        *object = this;
        AddRef();
        return S_OK;
    }
    *object = nullptr;
    return E_NOINTERFACE;
}

HRESULT ConnectionPoint::GetConnectionInterface(IID* iid) {
    if (iid == nullptr) {
        return E_POINTER;
    }
    *iid = m_sinkInterface;
    return S_OK;
}

HRESULT ConnectionPoint::GetConnectionPointContainer(IConnectionPointContainer** p) {
    if (p == nullptr) {
        return E_POINTER;
    }
    *p = &m_container;
    m_container.AddRef();
    return S_OK;
}

HRESULT ConnectionPoint::Advise(IUnknown* sink, DWORD* cookie) {
    if (sink == nullptr || cookie == nullptr) {
        return E_POINTER;
    }
    *cookie = 0;
    if (Modes::CallFails()) {
        return E_OUTOFMEMORY;
    }
    ComPtr<IUnknown> connected;
    void** const out = reinterpret_cast<void**>(connected.GetAddressOf());
    if (FAILED(sink->QueryInterface(m_sinkInterface, out)) &&
        (m_sinkInterface == IID_IPropertyNotifySink ||
         FAILED(sink->QueryInterface(IID_IDispatch, out)))) {
        return CONNECT_E_CANNOTCONNECT;
    }
    *cookie = ++m_lastCookie;
    m_sinks[*cookie] = connected;
    m_stale.erase(std::remove(m_stale.begin(), m_stale.end(), connected), m_stale.end());
    return S_OK;
}

HRESULT ConnectionPoint::Unadvise(DWORD cookie) {
    const auto found = m_sinks.find(cookie);
    if (found == m_sinks.end()) {
        return CONNECT_E_NOCONNECTION;
    }
    // The sink may come back to this list when it is released.
    const ComPtr<IUnknown> sink = found->second;
    m_sinks.erase(found);
    if (m_keepsStale) {
        m_stale.push_back(sink);
    }
    return S_OK;
}

ConnectionPoints::ConnectionPoints(Document& owner)
    : Face(owner), m_document(owner), m_propertyNotify(*this, IID_IPropertyNotifySink, false),
      m_events(*this, __uuidof(HTMLDocumentEvents2), owner.Has(Mode::StaleSinks)) {}

HRESULT ConnectionPoints::FindConnectionPoint(REFIID iid, IConnectionPoint** point) {
    if (point == nullptr) {
        return E_POINTER;
    }
    *point = nullptr;
    if (Modes::CallFails() ||
        (iid == m_events.SinkInterface() && m_document.Has(Mode::RefusesOptional))) {
        return CONNECT_E_NOCONNECTION;
    }
    for (ConnectionPoint* known : {&m_propertyNotify, &m_events}) {
        if (iid == known->SinkInterface()) {
            *point = known;
            known->AddRef();
            return S_OK;
        }
    }
    return CONNECT_E_NOCONNECTION;
}

void ConnectionPoints::NotifyChanged(DISPID property) {
    m_propertyNotify.ForEach<IPropertyNotifySink>(
        [property](IPropertyNotifySink& sink) { sink.OnChanged(property); });
}

void ConnectionPoints::FireEvent(DISPID id, IDispatch& eventObject) {
    m_events.ForEach<IDispatch>([id, &eventObject](IDispatch& sink) {
        VARIANTARG argument;
        VariantInit(&argument);
        V_VT(&argument) = VT_DISPATCH;
        V_DISPATCH(&argument) = &eventObject; // the sink does not own it
        DISPPARAMS parameters = {&argument, nullptr, 1, 0};
        VARIANT answer;
        VariantInit(&answer);
        sink.Invoke(id, IID_NULL, LOCALE_SYSTEM_DEFAULT, DISPATCH_METHOD, &parameters, &answer,
                    nullptr, nullptr);
        VariantClear(&answer);
    });
}

} // namespace html
