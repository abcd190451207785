// A drop target that takes nothing.
#include "mfc/NoDropTarget.h"

HRESULT STDMETHODCALLTYPE NoDropTarget::QueryInterface(REFIID iid, void** object) {
    if (iid != IID_IUnknown && iid != IID_IDropTarget) {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    *object = static_cast<IDropTarget*>(this);
    AddRef();
    return S_OK;
}

HRESULT STDMETHODCALLTYPE NoDropTarget::DragEnter(IDataObject* /*data*/, DWORD /*keys*/,
                                                  POINTL /*position*/, DWORD* effect) {
    *effect = DROPEFFECT_NONE;
    return S_OK;
}

HRESULT STDMETHODCALLTYPE NoDropTarget::DragOver(DWORD /*keys*/, POINTL /*position*/,
                                                 DWORD* effect) {
    *effect = DROPEFFECT_NONE;
    return S_OK;
}

HRESULT STDMETHODCALLTYPE NoDropTarget::Drop(IDataObject* /*data*/, DWORD /*keys*/,
                                             POINTL /*position*/, DWORD* effect) {
    *effect = DROPEFFECT_NONE;
    return S_OK;
}
