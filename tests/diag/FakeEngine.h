// An HTML engine for test programs, whose prefixes have none.
#pragma once

#include <windows.h>

#include <objbase.h>

#include "tests/support/ImportHook.h"

// COM's interfaces have no virtual destructor: Release destroys.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

namespace test {

// While it lives, every object of a class can be created.
class FakeEngine {
public:
    FakeEngine()
        : m_create("CoCreateInstance", [this](REFCLSID, LPUNKNOWN, DWORD, REFIID, LPVOID* object) {
              *object = &m_object;
              return S_OK;
          }) {}
    FakeEngine(const FakeEngine&) = delete;
    FakeEngine& operator=(const FakeEngine&) = delete;
    ~FakeEngine() = default;

private:
    class Object : public IUnknown {
    public:
        HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
        ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
        ULONG STDMETHODCALLTYPE Release() override { return 1; }
    };

    Object m_object; // goes with this one
    ImportHook<struct CoCreateInstance_HookTag, decltype(&CoCreateInstance)> m_create;
};

} // namespace test

#pragma GCC diagnostic pop
