// IHTMLDocument2 and IHTMLDocument3.
#include "wine/htmldocument/com/DocumentDom.h"

#include <iterator>

#include "wine/htmldocument/com/Document.h"
#include "wine/htmldocument/com/Element.h"

namespace html {

Document2::Document2(Document& document) : LateBound(document), m_document(document) {}

HRESULT Document2::Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* parameters,
                          VARIANT* answer, EXCEPINFO* exception, UINT* badArgument) {
    if (id == DISPID_READYSTATE && (flags & DISPATCH_PROPERTYGET) != 0) {
        if (answer == nullptr) {
            return E_POINTER;
        }
        if (Modes::CallFails()) {
            return E_FAIL;
        }
        V_VT(answer) = VT_I4;
        V_I4(answer) = m_document.ReadyState();
        return S_OK;
    }
    return LateBound::Invoke(id, iid, locale, flags, parameters, answer, exception, badArgument);
}

HRESULT Document2::get_body(IHTMLElement** p) {
    return Element::Of(m_document, m_document.GetPage().Body(), p);
}

HRESULT Document2::get_title(BSTR* p) {
    Node* const title = m_document.GetPage().Root().FindByTag(L"title");
    return GiveText(title != nullptr ? title->InnerText() : std::wstring(), p);
}

HRESULT Document2::get_readyState(BSTR* p) {
    constexpr const wchar_t* Names[] = {L"uninitialized", L"loading", L"loaded", L"interactive",
                                        L"complete"};
    return GiveText(Names[static_cast<size_t>(m_document.ReadyState()) % std::size(Names)], p);
}

HRESULT Document2::get_URL(BSTR* p) {
    return GiveText(m_document.Url(), p);
}

HRESULT Document2::elementFromPoint(LONG x, LONG y, IHTMLElement** element) {
    const NodePtr node = m_document.View().Window().ElementAt({x, y});
    return Element::Of(m_document, node.get(), element);
}

Document3::Document3(Document& document) : LateBound(document), m_document(document) {}

HRESULT Document3::get_documentElement(IHTMLElement** p) {
    return Element::Of(m_document, &m_document.GetPage().Root(), p);
}

HRESULT Document3::getElementById(BSTR id, IHTMLElement** element) {
    return Element::Of(m_document, m_document.GetPage().Root().FindById(ViewOf(id)), element);
}

} // namespace html
