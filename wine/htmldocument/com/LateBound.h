// Late-bound calls by way of the type library that is registered for MSHTML.
#pragma once

#include <windows.h>

#include <oaidl.h>

#include "wine/htmldocument/com/ComObjects.h"

namespace html {

HRESULT TypeInfoOf(REFIID iid, ITypeInfo** info);

// IDispatch for the interface, on top of a class that has its methods.
template <class Base, class Interface>
class LateBound : public Base {
public:
    using Base::Base;

    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        if (count == nullptr) {
            return E_POINTER;
        }
        *count = 1;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID, ITypeInfo** info) override {
        if (info == nullptr) {
            return E_POINTER;
        }
        *info = nullptr;
        return index == 0 ? TypeInfoOf(__uuidof(Interface), info) : DISP_E_BADINDEX;
    }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID,
                                            DISPID* ids) override {
        ComPtr<ITypeInfo> info;
        const HRESULT result = TypeInfoOf(__uuidof(Interface), info.GetAddressOf());
        return FAILED(result) ? result : info->GetIDsOfNames(names, count, ids);
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* parameters,
                                     VARIANT* answer, EXCEPINFO* exception,
                                     UINT* badArgument) override {
        ComPtr<ITypeInfo> info;
        const HRESULT result = TypeInfoOf(__uuidof(Interface), info.GetAddressOf());
        return FAILED(result) ? result
                              : info->Invoke(static_cast<Interface*>(this), id, flags, parameters,
                                             answer, exception, badArgument);
    }

protected:
    ~LateBound() override = default;
};

} // namespace html
