// A drop target that takes nothing.
#pragma once

#include <windows.h>

#include <oleidl.h>

#include "mfc/ComObject.h"

class NoDropTarget final : public ComObject<IDropTarget> {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
    HRESULT STDMETHODCALLTYPE DragEnter(IDataObject* data, DWORD keys, POINTL position,
                                        DWORD* effect) override;
    HRESULT STDMETHODCALLTYPE DragOver(DWORD keys, POINTL position, DWORD* effect) override;
    HRESULT STDMETHODCALLTYPE DragLeave() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE Drop(IDataObject* data, DWORD keys, POINTL position,
                                   DWORD* effect) override;

private:
    ~NoDropTarget() override = default;
};
