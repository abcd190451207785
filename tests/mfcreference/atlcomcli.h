// What app/ uses of ATL's smart pointer, declared as the public reference declares it.
#pragma once

#include <windows.h>

#include <unknwn.h>

template <class T>
class CComPtrBase {
public:
    ~CComPtrBase();

    void Release();
    operator T*() const;
    T** operator&(); // of a null pointer only
    T* operator->() const;

    T* p;

protected:
    CComPtrBase();
};

template <class T>
class CComPtr : public CComPtrBase<T> {
public:
    CComPtr();
    CComPtr(T* lp);
    T* operator=(T* lp);
};
