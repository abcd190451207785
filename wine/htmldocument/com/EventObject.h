// What a sink gets with an event of the mouse.
#pragma once

#include "Stubs.h"
#include "wine/htmldocument/com/ComObjects.h"
#include "wine/htmldocument/com/LateBound.h"
#include "wine/htmldocument/engine/Node.h"

namespace html {

class Document;

struct MouseEvent {
    DISPID id = 0;
    const wchar_t* type = L""; // without "on"
    NodePtr source;
    NodePtr from; // null where the mouse comes from outside
    NodePtr to;   // null where the mouse leaves the page
    POINT client = {};
    LONG button = 0;
};

class EventObject final
    : public LateBound<Counted<IHTMLEventObjStub, IDispatch, IHTMLEventObj>, IHTMLEventObj> {
public:
    EventObject(Document& document, const MouseEvent& event);

    HRESULT STDMETHODCALLTYPE get_srcElement(IHTMLElement** p) override;
    HRESULT STDMETHODCALLTYPE get_fromElement(IHTMLElement** p) override;
    HRESULT STDMETHODCALLTYPE get_toElement(IHTMLElement** p) override;
    HRESULT STDMETHODCALLTYPE get_type(BSTR* p) override;
    HRESULT STDMETHODCALLTYPE get_altKey(VARIANT_BOOL* p) override;
    HRESULT STDMETHODCALLTYPE get_ctrlKey(VARIANT_BOOL* p) override;
    HRESULT STDMETHODCALLTYPE get_shiftKey(VARIANT_BOOL* p) override;
    HRESULT STDMETHODCALLTYPE get_button(LONG* p) override;
    HRESULT STDMETHODCALLTYPE get_clientX(LONG* p) override;
    HRESULT STDMETHODCALLTYPE get_clientY(LONG* p) override;
    HRESULT STDMETHODCALLTYPE put_cancelBubble(VARIANT_BOOL v) override;
    HRESULT STDMETHODCALLTYPE get_cancelBubble(VARIANT_BOOL* p) override;

private:
    ~EventObject() override = default;

    ComPtr<Document> m_document;
    MouseEvent m_event;
    VARIANT_BOOL m_cancelBubble = VARIANT_FALSE;
};

} // namespace html
