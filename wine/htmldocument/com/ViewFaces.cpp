// IOleDocumentView, IOleInPlaceObject and IOleInPlaceActiveObject.
#include "wine/htmldocument/com/ViewFaces.h"

#include "wine/htmldocument/com/Document.h"

namespace html {
namespace {

HRESULT GiveWindow(Document& document, HWND* window) {
    if (window == nullptr) {
        return E_POINTER;
    }
    *window = Modes::CallFails() ? nullptr : document.View().Window().Handle();
    return *window != nullptr ? S_OK : E_FAIL;
}

} // namespace

DocumentView::DocumentView(Document& document) : Face(document), m_document(document) {}

HRESULT DocumentView::SetInPlaceSite(IOleInPlaceSite* site) {
    if (site != nullptr && Modes::CallFails()) {
        return E_FAIL;
    }
    m_document.View().SetSite(site);
    return S_OK;
}

HRESULT DocumentView::GetInPlaceSite(IOleInPlaceSite** site) {
    if (site == nullptr) {
        return E_POINTER;
    }
    *site = m_document.View().Site();
    if (*site != nullptr) {
        (*site)->AddRef();
    }
    return S_OK;
}

HRESULT DocumentView::GetDocument(IUnknown** document) {
    if (document == nullptr) {
        return E_POINTER;
    }
    return m_document.QueryInterface(IID_IUnknown, reinterpret_cast<void**>(document));
}

HRESULT DocumentView::SetRect(LPRECT area) {
    if (area == nullptr) {
        return E_POINTER;
    }
    if (Modes::CallFails()) {
        return E_FAIL;
    }
    m_document.View().SetArea(*area);
    return S_OK;
}

HRESULT DocumentView::GetRect(LPRECT area) {
    if (area == nullptr) {
        return E_POINTER;
    }
    *area = m_document.View().Area();
    return S_OK;
}

HRESULT DocumentView::Show(BOOL show) {
    if (show) {
        return Modes::CallFails() ? E_FAIL : m_document.View().Show();
    }
    m_document.View().Hide();
    return S_OK;
}

HRESULT DocumentView::UIActivate(BOOL activate) {
    return activate != FALSE && Modes::CallFails()
               ? E_FAIL
               : m_document.View().UIActivate(activate != FALSE);
}

HRESULT DocumentView::CloseView(DWORD) {
    m_document.View().Deactivate();
    return S_OK;
}

InPlaceObject::InPlaceObject(Document& document) : Face(document), m_document(document) {}

HRESULT InPlaceObject::GetWindow(HWND* window) {
    return GiveWindow(m_document, window);
}

HRESULT InPlaceObject::InPlaceDeactivate() {
    m_document.View().Deactivate();
    return S_OK;
}

HRESULT InPlaceObject::UIDeactivate() {
    return m_document.View().UIActivate(false);
}

HRESULT InPlaceObject::SetObjectRects(LPCRECT area, LPCRECT) {
    if (area == nullptr) {
        return E_POINTER;
    }
    if (Modes::CallFails()) {
        return E_FAIL;
    }
    m_document.View().SetArea(*area);
    return S_OK;
}

InPlaceActiveObject::InPlaceActiveObject(Document& document)
    : Face(document), m_document(document) {}

HRESULT InPlaceActiveObject::GetWindow(HWND* window) {
    return GiveWindow(m_document, window);
}

HRESULT InPlaceActiveObject::TranslateAccelerator(LPMSG message) {
    if (message == nullptr) {
        return E_POINTER;
    }
    return Modes::CallFails() ? E_FAIL : m_document.View().TranslateKey(*message);
}

} // namespace html
