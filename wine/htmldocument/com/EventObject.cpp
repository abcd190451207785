// The event's answers.
#include "wine/htmldocument/com/EventObject.h"

#include "wine/htmldocument/com/Document.h"
#include "wine/htmldocument/com/Element.h"

namespace html {
namespace {

template <class Value>
HRESULT Give(Value value, Value* p) {
    if (p == nullptr) {
        return E_POINTER;
    }
    *p = value;
    return S_OK;
}

VARIANT_BOOL IsDown(int key) {
    return GetKeyState(key) < 0 ? VARIANT_TRUE : VARIANT_FALSE;
}

} // namespace

EventObject::EventObject(Document& document, const MouseEvent& event)
    : m_document(&document), m_event(event) {}

HRESULT EventObject::get_srcElement(IHTMLElement** p) {
    return Element::Of(*m_document.Get(), m_event.source.get(), p);
}

HRESULT EventObject::get_fromElement(IHTMLElement** p) {
    return Element::Of(*m_document.Get(), m_event.from.get(), p);
}

HRESULT EventObject::get_toElement(IHTMLElement** p) {
    return Element::Of(*m_document.Get(), m_event.to.get(), p);
}

HRESULT EventObject::get_type(BSTR* p) {
    return GiveText(m_event.type, p);
}

HRESULT EventObject::get_altKey(VARIANT_BOOL* p) {
    return Give(IsDown(VK_MENU), p);
}

HRESULT EventObject::get_ctrlKey(VARIANT_BOOL* p) {
    return Give(IsDown(VK_CONTROL), p);
}

HRESULT EventObject::get_shiftKey(VARIANT_BOOL* p) {
    return Give(IsDown(VK_SHIFT), p);
}

HRESULT EventObject::get_button(LONG* p) {
    return Give(m_event.button, p);
}

HRESULT EventObject::get_clientX(LONG* p) {
    return Give(m_event.client.x, p);
}

HRESULT EventObject::get_clientY(LONG* p) {
    return Give(m_event.client.y, p);
}

HRESULT EventObject::put_cancelBubble(VARIANT_BOOL v) {
    m_cancelBubble = v;
    return S_OK;
}

HRESULT EventObject::get_cancelBubble(VARIANT_BOOL* p) {
    return Give(m_cancelBubble, p);
}

} // namespace html
