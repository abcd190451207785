// The callback side of a binding.
#include "wine/htmldocument/com/ResourceLoad.h"

#include <array>

namespace html {

void ResourceLoad::Start(IMoniker* moniker) {
    const ComPtr<ResourceLoad> self = this;
    ComPtr<IBindCtx> context;
    ComPtr<IUnknown> storage;
    HRESULT result = CreateAsyncBindCtx(0, this, nullptr, context.GetAddressOf());
    if (SUCCEEDED(result)) {
        result = moniker->BindToStorage(context.Get(), nullptr, IID_IStream,
                                        reinterpret_cast<void**>(storage.GetAddressOf()));
    }
    // A binding that never began does not stop either.
    if (FAILED(result)) {
        Finish(result);
    }
}

void ResourceLoad::Finish(HRESULT result) {
    if (m_done) {
        const Done done = std::move(m_done);
        m_done = nullptr;
        done(result, m_bytes);
    }
}

HRESULT ResourceLoad::OnStartBinding(DWORD, IBinding*) {
    return S_OK;
}

HRESULT ResourceLoad::GetPriority(LONG* priority) {
    *priority = THREAD_PRIORITY_NORMAL;
    return S_OK;
}

HRESULT ResourceLoad::OnStopBinding(HRESULT result, LPCWSTR) {
    Finish(result);
    return S_OK;
}

HRESULT ResourceLoad::GetBindInfo(DWORD* flags, BINDINFO* info) {
    *flags = BINDF_ASYNCHRONOUS | BINDF_ASYNCSTORAGE | BINDF_PULLDATA;
    const DWORD size = info->cbSize;
    ZeroMemory(info, size);
    info->cbSize = size;
    return S_OK;
}

HRESULT ResourceLoad::OnDataAvailable(DWORD, DWORD, FORMATETC*, STGMEDIUM* medium) {
    if (medium == nullptr || medium->tymed != TYMED_ISTREAM || medium->pstm == nullptr) {
        return S_OK;
    }
    std::array<char, 16384> piece{};
    ULONG read = 0;
    do {
        read = 0;
        if (FAILED(medium->pstm->Read(piece.data(), static_cast<ULONG>(piece.size()), &read))) {
            break; // E_PENDING: the rest comes with the next notification
        }
        m_bytes.append(piece.data(), read);
    } while (read != 0);
    return S_OK;
}

} // namespace html
