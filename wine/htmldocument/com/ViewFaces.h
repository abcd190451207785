// The view as its host sees it.
#pragma once

#include "Stubs.h"
#include "wine/htmldocument/com/ComObjects.h"

namespace html {

class Document;

class DocumentView final : public Face<IOleDocumentViewStub> {
public:
    explicit DocumentView(Document& document);
    ~DocumentView() override = default;
    HRESULT STDMETHODCALLTYPE SetInPlaceSite(IOleInPlaceSite* site) override;
    HRESULT STDMETHODCALLTYPE GetInPlaceSite(IOleInPlaceSite** site) override;
    HRESULT STDMETHODCALLTYPE GetDocument(IUnknown** document) override;
    HRESULT STDMETHODCALLTYPE SetRect(LPRECT area) override;
    HRESULT STDMETHODCALLTYPE GetRect(LPRECT area) override;
    HRESULT STDMETHODCALLTYPE Show(BOOL show) override;
    HRESULT STDMETHODCALLTYPE UIActivate(BOOL activate) override;
    HRESULT STDMETHODCALLTYPE CloseView(DWORD reserved) override;

private:
    Document& m_document;
};

class InPlaceObject final : public Face<IOleInPlaceObjectStub> {
public:
    explicit InPlaceObject(Document& document);
    ~InPlaceObject() override = default;
    HRESULT STDMETHODCALLTYPE GetWindow(HWND* window) override;
    HRESULT STDMETHODCALLTYPE InPlaceDeactivate() override;
    HRESULT STDMETHODCALLTYPE UIDeactivate() override;
    HRESULT STDMETHODCALLTYPE SetObjectRects(LPCRECT area, LPCRECT clip) override;

private:
    Document& m_document;
};

class InPlaceActiveObject final : public Face<IOleInPlaceActiveObjectStub> {
public:
    explicit InPlaceActiveObject(Document& document);
    ~InPlaceActiveObject() override = default;
    HRESULT STDMETHODCALLTYPE GetWindow(HWND* window) override;
    HRESULT STDMETHODCALLTYPE TranslateAccelerator(LPMSG message) override;
    HRESULT STDMETHODCALLTYPE OnFrameWindowActivate(BOOL) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnDocWindowActivate(BOOL) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE ResizeBorder(LPCRECT, IOleInPlaceUIWindow*, BOOL) override {
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE EnableModeless(BOOL) override { return S_OK; }

private:
    Document& m_document;
};

} // namespace html
