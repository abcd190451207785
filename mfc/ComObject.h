// The counting of references that every COM object of the host shares.
#pragma once

#include <windows.h>

#include <unknwn.h>

// COM's interfaces have no virtual destructor: Release destroys.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

// Made by new, with one reference, and deleted with the last one.
template <typename... Interfaces>
class ComObject : public Interfaces... {
public:
    ComObject() = default;
    ComObject(const ComObject&) = delete;
    ComObject& operator=(const ComObject&) = delete;

    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG references = --m_references;
        if (references == 0) {
            delete this;
        }
        return references;
    }

protected:
    virtual ~ComObject() = default;

private:
    ULONG m_references = 1;
};

#pragma GCC diagnostic pop
