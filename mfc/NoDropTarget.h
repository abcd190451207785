// A drop target that takes nothing.
#pragma once

#include <windows.h>

#include <oleidl.h>

// COM's interfaces have no virtual destructor: Release destroys.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

// Made by new, with one reference.
class NoDropTarget final : public IDropTarget {
public:
    NoDropTarget() = default;
    NoDropTarget(const NoDropTarget&) = delete;
    NoDropTarget& operator=(const NoDropTarget&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;
    HRESULT STDMETHODCALLTYPE DragEnter(IDataObject* data, DWORD keys, POINTL position,
                                        DWORD* effect) override;
    HRESULT STDMETHODCALLTYPE DragOver(DWORD keys, POINTL position, DWORD* effect) override;
    HRESULT STDMETHODCALLTYPE DragLeave() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE Drop(IDataObject* data, DWORD keys, POINTL position,
                                   DWORD* effect) override;

private:
    virtual ~NoDropTarget() = default;

    ULONG m_references = 1;
};

#pragma GCC diagnostic pop
