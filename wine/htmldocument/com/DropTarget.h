// Takes files and links that are dropped on the page: the browser goes to them, as MSHTML's does
// when its host does not object.
#pragma once

#include "Stubs.h"
#include "wine/htmldocument/com/ComObjects.h"
#include "wine/htmldocument/com/Control.h"

namespace html {

class DropTarget final : public Counted<IDropTargetStub, IDropTarget> {
public:
    // The control must live until Forget.
    explicit DropTarget(const Control& control) : m_control(&control) {}
    void Forget() { m_control = nullptr; }

    HRESULT STDMETHODCALLTYPE DragEnter(IDataObject* data, DWORD keys, POINTL at,
                                        DWORD* effect) override;
    HRESULT STDMETHODCALLTYPE DragOver(DWORD keys, POINTL at, DWORD* effect) override;
    HRESULT STDMETHODCALLTYPE DragLeave() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE Drop(IDataObject* data, DWORD keys, POINTL at,
                                   DWORD* effect) override;

private:
    ~DropTarget() override = default;

    const Control* m_control;
};

} // namespace html
