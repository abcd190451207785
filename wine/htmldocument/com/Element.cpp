// What scripts and hosts may ask of an element here: its names, its text, its markup, its style.
#include "wine/htmldocument/com/Element.h"

#include "wine/htmldocument/com/Document.h"

namespace html {
namespace {

// What MSHTML says where content cannot be put.
constexpr auto InvalidTarget = static_cast<HRESULT>(0x800A0258);

} // namespace

HRESULT GiveText(const std::wstring& text, BSTR* value) {
    if (value == nullptr) {
        return E_POINTER;
    }
    *value = nullptr;
    if (Modes::CallFails()) {
        return E_OUTOFMEMORY;
    }
    if (!text.empty()) {
        *value = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    }
    return text.empty() || *value != nullptr ? S_OK : E_OUTOFMEMORY;
}

std::wstring_view ViewOf(BSTR text) {
    return {text != nullptr ? text : L"", SysStringLen(text)};
}

Element::Element(Document& document, NodePtr node)
    : m_document(&document), m_node(std::move(node)), m_style(*this, document, *m_node) {
    m_node->SetWrapper(this);
}

Element::~Element() {
    m_node->SetWrapper(nullptr);
}

HRESULT Element::Of(Document& document, Node* node, IHTMLElement** element) {
    if (element == nullptr) {
        return E_POINTER;
    }
    *element = nullptr;
    if (Modes::CallFails()) {
        return E_FAIL;
    }
    if (node == nullptr) {
        return S_OK;
    }
    if (node->Wrapper() != nullptr) {
        *element = static_cast<Element*>(node->Wrapper());
        (*element)->AddRef();
    } else {
        *element = new Element(document, node->shared_from_this());
    }
    return S_OK;
}

HRESULT Element::GetAttribute(std::wstring_view name, BSTR* value) const {
    return GiveText(m_node->AttributeOr(name, L""), value);
}

HRESULT Element::PutAttribute(std::wstring_view name, BSTR value) {
    m_document->SetAttribute(*m_node, name, std::wstring(ViewOf(value)));
    return S_OK;
}

HRESULT Element::put_className(BSTR value) {
    return PutAttribute(L"class", value);
}

HRESULT Element::get_className(BSTR* value) {
    return GetAttribute(L"class", value);
}

HRESULT Element::put_id(BSTR value) {
    return PutAttribute(L"id", value);
}

HRESULT Element::get_id(BSTR* value) {
    return GetAttribute(L"id", value);
}

HRESULT Element::get_tagName(BSTR* value) {
    std::wstring name = m_node->Tag();
    for (wchar_t& c : name) {
        c = c >= L'a' && c <= L'z' ? static_cast<wchar_t>(c - (L'a' - L'A')) : c;
    }
    return GiveText(name, value);
}

HRESULT Element::get_parentElement(IHTMLElement** parent) {
    return Of(*m_document.Get(), m_node->Parent(), parent);
}

HRESULT Element::get_style(IHTMLStyle** style) {
    if (style == nullptr) {
        return E_POINTER;
    }
    *style = nullptr;
    if (Modes::CallFails()) {
        return E_FAIL;
    }
    *style = &m_style;
    m_style.AddRef();
    return S_OK;
}

HRESULT Element::get_document(IDispatch** document) {
    if (document == nullptr) {
        return E_POINTER;
    }
    return m_document->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(document));
}

HRESULT Element::contains(IHTMLElement* child, VARIANT_BOOL* result) {
    if (child == nullptr || result == nullptr) {
        return E_POINTER;
    }
    // Up from the child: it may be anybody's element.
    *result = VARIANT_FALSE;
    ComPtr<IHTMLElement> current = child;
    while (current != nullptr && *result == VARIANT_FALSE) {
        *result = current.Get() == this ? VARIANT_TRUE : VARIANT_FALSE;
        ComPtr<IHTMLElement> parent;
        if (FAILED(current->get_parentElement(parent.GetAddressOf()))) {
            break;
        }
        current = parent;
    }
    return S_OK;
}

HRESULT Element::put_innerHTML(BSTR value) {
    if (IsVoidTag(m_node->Tag())) {
        return InvalidTarget;
    }
    if (Modes::CallFails()) {
        return E_OUTOFMEMORY;
    }
    m_document->WriteInnerHtml(*m_node, ViewOf(value));
    return S_OK;
}

HRESULT Element::get_innerHTML(BSTR* value) {
    return GiveText(m_node->InnerHtml(), value);
}

HRESULT Element::get_innerText(BSTR* value) {
    return GiveText(m_node->InnerText(), value);
}

HRESULT Element::get_outerHTML(BSTR* value) {
    return GiveText(m_node->OuterHtml(), value);
}

} // namespace html
