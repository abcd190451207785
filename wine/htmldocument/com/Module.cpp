// What COM calls in the library: it makes HTML documents and may go when none is left.
#include "wine/htmldocument/com/Module.h"

#include <mshtml.h>
#include <ole2.h>

#include "wine/htmldocument/com/ComObjects.h"
#include "wine/htmldocument/com/Document.h"
#include "wine/htmldocument/com/Modes.h"
#include "wine/htmldocument/com/Trace.h"
#include "wine/htmldocument/com/ViewWindow.h"

namespace html {
namespace {

HINSTANCE g_instance = nullptr;

class ClassFactory final : public Counted<IClassFactoryStub, IClassFactory> {
public:
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
        if (object == nullptr) {
            return E_POINTER;
        }
        *object = nullptr;
        if (Modes::CallFails()) {
            return E_OUTOFMEMORY;
        }
        return outer != nullptr ? CLASS_E_NOAGGREGATION : Document::Create(iid, object);
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
        ModuleLock::Lock(lock != FALSE);
        return S_OK;
    }

private:
    ~ClassFactory() override = default;
};

} // namespace

HINSTANCE ModuleInstance() {
    return g_instance;
}

} // namespace html

extern "C" {

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID processEnds) {
    if (reason == DLL_PROCESS_ATTACH) {
        html::g_instance = instance;
        DisableThreadLibraryCalls(instance);
    } else if (reason == DLL_PROCESS_DETACH) {
        html::Trace::WriteEnd();
        if (processEnds == nullptr) {
            html::ViewWindow::UnregisterWindowClass();
        }
    }
    return TRUE;
}

HRESULT WINAPI DllGetClassObject(REFCLSID id, REFIID iid, void** object) {
    if (object == nullptr) {
        return E_POINTER;
    }
    *object = nullptr;
    if (id != __uuidof(HTMLDocument) || html::Modes::CallFails()) {
        return CLASS_E_CLASSNOTAVAILABLE;
    }
    const html::ComPtr<html::ClassFactory> factory = html::Adopt(new html::ClassFactory);
    return factory->QueryInterface(iid, object);
}

HRESULT WINAPI DllCanUnloadNow() {
    return html::ModuleLock::IsIdle() ? S_OK : S_FALSE;
}

} // extern "C"
