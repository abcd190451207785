// An element of the page as COM sees it. While anybody holds it there is one object for one node,
// and the node stays even when the page lets go of it.
#pragma once

#include <string>

#include "Stubs.h"
#include "wine/htmldocument/com/ComObjects.h"
#include "wine/htmldocument/com/ElementStyle.h"
#include "wine/htmldocument/com/LateBound.h"
#include "wine/htmldocument/engine/Node.h"

namespace html {

class Document;

class Element final
    : public LateBound<Counted<IHTMLElementStub, IDispatch, IHTMLElement>, IHTMLElement> {
public:
    // The object for the element; S_OK and null for no element.
    static HRESULT Of(Document& document, Node* node, IHTMLElement** element);

    HRESULT STDMETHODCALLTYPE put_className(BSTR value) override;
    HRESULT STDMETHODCALLTYPE get_className(BSTR* value) override;
    HRESULT STDMETHODCALLTYPE put_id(BSTR value) override;
    HRESULT STDMETHODCALLTYPE get_id(BSTR* value) override;
    HRESULT STDMETHODCALLTYPE get_tagName(BSTR* value) override;
    HRESULT STDMETHODCALLTYPE get_parentElement(IHTMLElement** parent) override;
    HRESULT STDMETHODCALLTYPE get_style(IHTMLStyle** style) override;
    HRESULT STDMETHODCALLTYPE get_document(IDispatch** document) override;
    HRESULT STDMETHODCALLTYPE contains(IHTMLElement* child, VARIANT_BOOL* result) override;
    HRESULT STDMETHODCALLTYPE put_innerHTML(BSTR value) override;
    HRESULT STDMETHODCALLTYPE get_innerHTML(BSTR* value) override;
    HRESULT STDMETHODCALLTYPE get_innerText(BSTR* value) override;
    HRESULT STDMETHODCALLTYPE get_outerHTML(BSTR* value) override;

private:
    Element(Document& document, NodePtr node);
    ~Element() override;
    HRESULT GetAttribute(std::wstring_view name, BSTR* value) const;
    HRESULT PutAttribute(std::wstring_view name, BSTR value);

    ComPtr<Document> m_document;
    NodePtr m_node;
    ElementStyle m_style;
};

// A copy of the text for the caller: null for an empty one.
HRESULT GiveText(const std::wstring& text, BSTR* value);
// The characters of a BSTR, which may be null and may hold null characters.
std::wstring_view ViewOf(BSTR text);

} // namespace html
