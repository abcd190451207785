// Reads one resource through urlmon: the page itself and its images.
#pragma once

#include <functional>
#include <string>

#include "Stubs.h"
#include "wine/htmldocument/com/ComObjects.h"

namespace html {

// Data of "res:" comes only to those who ask with a callback: a blocking stream fails with
// INET_E_DATA_NOT_AVAILABLE.
class ResourceLoad final : public Counted<IBindStatusCallbackStub, IBindStatusCallback> {
public:
    // Called once, perhaps before Start returns; never after Forget.
    using Done = std::function<void(HRESULT result, const std::string& bytes)>;
    explicit ResourceLoad(Done done) : m_done(std::move(done)) {}

    void Start(IMoniker* moniker);
    void Forget() { m_done = nullptr; }

    HRESULT STDMETHODCALLTYPE OnStartBinding(DWORD reserved, IBinding* binding) override;
    HRESULT STDMETHODCALLTYPE GetPriority(LONG* priority) override;
    HRESULT STDMETHODCALLTYPE OnProgress(ULONG, ULONG, ULONG, LPCWSTR) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnStopBinding(HRESULT result, LPCWSTR error) override;
    HRESULT STDMETHODCALLTYPE GetBindInfo(DWORD* flags, BINDINFO* info) override;
    HRESULT STDMETHODCALLTYPE OnDataAvailable(DWORD kind, DWORD size, FORMATETC* format,
                                              STGMEDIUM* medium) override;

private:
    ~ResourceLoad() override = default;
    void Finish(HRESULT result);

    Done m_done;
    std::string m_bytes;
};

} // namespace html
