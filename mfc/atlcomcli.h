// The smart pointer to COM interfaces that MFC takes from ATL, as far as the dialog uses it.
#pragma once

#include <windows.h>

#include <unknwn.h>

// Holds one reference. Failures leave it null.
template <typename T>
class CComPtr {
public:
    CComPtr() = default;
    CComPtr(const CComPtr&) = delete;
    CComPtr& operator=(const CComPtr&) = delete;
    ~CComPtr() { Release(); }

    // The old object is released last: its end may run code that comes back here, and finds a
    // pointer whose reference is held.
    CComPtr& operator=(T* pointer) {
        if (p != pointer) {
            if (pointer != nullptr) {
                pointer->AddRef();
            }
            T* const previous = p;
            p = pointer;
            if (previous != nullptr) {
                previous->Release();
            }
        }
        return *this;
    }

    // The pointer is null before its object is released.
    void Release() {
        T* const previous = p;
        p = nullptr;
        if (previous != nullptr) {
            previous->Release();
        }
    }

    HRESULT CoCreateInstance(REFCLSID rclsid) {
        return ::CoCreateInstance(rclsid, nullptr, CLSCTX_INPROC_SERVER, __uuidof(T),
                                  reinterpret_cast<void**>(&p));
    }
    template <typename Q>
    HRESULT QueryInterface(Q** pp) const {
        return p->QueryInterface(__uuidof(Q), reinterpret_cast<void**>(pp));
    }

    operator T*() const { return p; }
    T* operator->() const { return p; }
    // For output arguments; only of a pointer that is null.
    T** operator&() { return &p; }

    T* p = nullptr;
};
