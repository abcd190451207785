// Who listens to the document: property notifications (its loading state) and its events.
#pragma once

#include <map>
#include <vector>

#include "Stubs.h"
#include "wine/htmldocument/com/ComObjects.h"

namespace html {

class Document;

// A connection point has its own identity, but lives as long as the document.
class ConnectionPoint final : public IConnectionPointStub {
public:
    // sinkInterface: what sinks must answer for; events also go to a sink that has IDispatch only.
    // keepsStale: sinks go on hearing events once they have left.
    ConnectionPoint(IConnectionPointContainer& container, REFIID sinkInterface, bool keepsStale)
        : m_container(container), m_sinkInterface(sinkInterface), m_keepsStale(keepsStale) {}
    ConnectionPoint(const ConnectionPoint&) = delete;
    ConnectionPoint& operator=(const ConnectionPoint&) = delete;
    ~ConnectionPoint() override = default;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return m_container.AddRef(); }
    ULONG STDMETHODCALLTYPE Release() override { return m_container.Release(); }
    HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID* iid) override;
    HRESULT STDMETHODCALLTYPE GetConnectionPointContainer(IConnectionPointContainer** p) override;
    HRESULT STDMETHODCALLTYPE Advise(IUnknown* sink, DWORD* cookie) override;
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD cookie) override;

    // Calls the function with each sink that is connected now and still is when its turn comes.
    template <class Interface, class Function>
    void ForEach(Function function) {
        const std::map<DWORD, ComPtr<IUnknown>> sinks = m_sinks;
        for (const auto& entry : sinks) {
            if (m_sinks.count(entry.first) != 0) {
                function(*static_cast<Interface*>(entry.second.Get()));
            }
        }
        const std::vector<ComPtr<IUnknown>> stale = m_stale;
        for (const ComPtr<IUnknown>& sink : stale) {
            function(*static_cast<Interface*>(sink.Get()));
        }
    }
    bool HasStale() const { return !m_stale.empty(); }
    void ForgetStale() { m_stale.clear(); }
    REFIID SinkInterface() const { return m_sinkInterface; }

private:
    IConnectionPointContainer& m_container;
    const IID m_sinkInterface;
    const bool m_keepsStale;
    std::map<DWORD, ComPtr<IUnknown>> m_sinks; // each the sink interface itself
    std::vector<ComPtr<IUnknown>> m_stale;     // those that left and did not come back
    DWORD m_lastCookie = 0;
};

class ConnectionPoints final : public Face<IConnectionPointContainerStub> {
public:
    explicit ConnectionPoints(Document& owner);
    ~ConnectionPoints() override = default;
    HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID iid, IConnectionPoint** point) override;

    // Tells that a property of the document changed.
    void NotifyChanged(DISPID property);
    // Fires an event of the document.
    void FireEvent(DISPID id, IDispatch& eventObject);
    bool HasStale() const { return m_events.HasStale(); }
    void ForgetStale() { m_events.ForgetStale(); }

private:
    Document& m_document;
    ConnectionPoint m_propertyNotify;
    ConnectionPoint m_events;
};

} // namespace html
