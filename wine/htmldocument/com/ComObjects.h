// The two ways in which a class here is a COM object: with a life of its own, or as one face of
// another object.
#pragma once

#include <windows.h>

#include <wrl/client.h>

#include <atomic>

namespace html {

using Microsoft::WRL::ComPtr;

// Owns a reference that the caller already has. The tool chain's ComPtr::Attach adds another one.
template <class Interface>
ComPtr<Interface> Adopt(Interface* object) {
    ComPtr<Interface> pointer;
    *pointer.GetAddressOf() = object;
    return pointer;
}

// Counts everything that keeps the library in memory.
class ModuleLock {
public:
    ModuleLock() { ++s_count; }
    ModuleLock(const ModuleLock&) = delete;
    ModuleLock& operator=(const ModuleLock&) = delete;
    ~ModuleLock() { --s_count; }
    static void Lock(bool lock) { s_count += lock ? 1 : -1; }
    static bool IsIdle() { return s_count == 0; }
    static long Count() { return s_count; }

private:
    inline static std::atomic<long> s_count = 0;
};

// An object of its own that answers for the interfaces named. It begins with one reference, which
// belongs to its maker, and deletes itself.
template <class Base, class... Interfaces>
class Counted : public Base {
public:
    Counted() = default;
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (object == nullptr) {
            return E_POINTER;
        }
        if (iid == IID_IUnknown || ((iid == __uuidof(Interfaces)) || ...)) {
            *object = static_cast<Base*>(this);
            AddRef();
            return S_OK;
        }
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --m_references;
        if (left == 0) {
            delete this;
        }
        return left;
    }

protected:
    ~Counted() override = default;

private:
    ModuleLock m_lock;
    std::atomic<ULONG> m_references = 1;
};

// One face of the object that owns it: same identity, same life.
template <class Base>
class Face : public Base {
public:
    explicit Face(IUnknown& owner) : m_owner(owner) {}
    Face(const Face&) = delete;
    Face& operator=(const Face&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        return m_owner.QueryInterface(iid, object);
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return m_owner.AddRef(); }
    ULONG STDMETHODCALLTYPE Release() override { return m_owner.Release(); }

protected:
    ~Face() override = default;

private:
    IUnknown& m_owner;
};

} // namespace html
