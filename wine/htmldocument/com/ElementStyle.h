// The style object of an element: colour and cursor.
#pragma once

#include "Stubs.h"
#include "wine/htmldocument/com/LateBound.h"
#include "wine/htmldocument/engine/Node.h"

namespace html {

class Document;

// Lives and dies with its element, but is an object of its own.
class ElementStyle final : public LateBound<IHTMLStyleStub, IHTMLStyle> {
public:
    ElementStyle(IUnknown& element, Document& document, Node& node)
        : m_element(element), m_document(document), m_node(node) {}
    ElementStyle(const ElementStyle&) = delete;
    ElementStyle& operator=(const ElementStyle&) = delete;
    ~ElementStyle() override = default;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return m_element.AddRef(); }
    ULONG STDMETHODCALLTYPE Release() override { return m_element.Release(); }

    // A number is the colour as 0xRRGGBB, a text is a colour as style sheets write it.
    HRESULT STDMETHODCALLTYPE put_color(VARIANT value) override;
    HRESULT STDMETHODCALLTYPE get_color(VARIANT* value) override;
    HRESULT STDMETHODCALLTYPE put_cursor(BSTR value) override;
    HRESULT STDMETHODCALLTYPE get_cursor(BSTR* value) override;

private:
    std::wstring Value(std::wstring_view property) const;

    IUnknown& m_element;
    Document& m_document;
    Node& m_node;
};

} // namespace html
