// Reads and writes the inline style of one element.
#include "wine/htmldocument/com/ElementStyle.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "wine/htmldocument/com/Document.h"
#include "wine/htmldocument/com/Element.h"
#include "wine/htmldocument/engine/TextTools.h"

namespace html {
namespace {

constexpr std::wstring_view Cursors[] = {L"auto",      L"default",   L"hand",      L"pointer",
                                         L"crosshair", L"move",      L"text",      L"wait",
                                         L"help",      L"progress",  L"n-resize",  L"s-resize",
                                         L"e-resize",  L"w-resize",  L"ne-resize", L"nw-resize",
                                         L"se-resize", L"sw-resize", L"no-drop",   L"not-allowed"};

std::wstring ColorText(ULONG rgb) {
    constexpr wchar_t Digits[] = L"0123456789abcdef";
    std::wstring text = L"#";
    for (int shift = 20; shift >= 0; shift -= 4) {
        text += Digits[(rgb >> shift) & 0xF];
    }
    return text;
}

} // namespace

HRESULT ElementStyle::QueryInterface(REFIID iid, void** object) {
    if (object == nullptr) {
        return E_POINTER;
    }
    if (iid == IID_IUnknown || iid == IID_IDispatch || iid == IID_IHTMLStyle) {
        *object = this;
        AddRef();
        return S_OK;
    }
    *object = nullptr;
    return E_NOINTERFACE;
}

std::wstring ElementStyle::Value(std::wstring_view property) const {
    std::wstring value;
    for (const Declaration& declaration : m_node.InlineStyle()) {
        value = declaration.property == property ? declaration.value : value;
    }
    return value;
}

HRESULT ElementStyle::put_color(VARIANT value) {
    if (Modes::CallFails()) {
        return E_FAIL;
    }
    std::wstring text;
    if (V_VT(&value) == VT_I4) {
        text = ColorText(static_cast<ULONG>(V_I4(&value)));
    } else if (V_VT(&value) == VT_BSTR) {
        text = Trim(ViewOf(V_BSTR(&value)));
        COLORREF color = 0;
        if (!text.empty() && !ParseColor(text, color)) {
            return E_INVALIDARG;
        }
    } else {
        return DISP_E_TYPEMISMATCH;
    }
    m_document.SetInlineStyle(m_node, L"color", std::move(text));
    return S_OK;
}

HRESULT ElementStyle::get_color(VARIANT* value) {
    if (value == nullptr) {
        return E_POINTER;
    }
    VariantInit(value);
    V_VT(value) = VT_BSTR;
    return GiveText(Value(L"color"), &V_BSTR(value));
}

HRESULT ElementStyle::put_cursor(BSTR value) {
    if (Modes::CallFails()) {
        return E_FAIL;
    }
    const std::wstring text = LowerAscii(Trim(ViewOf(value)));
    if (!text.empty() &&
        std::find(std::begin(Cursors), std::end(Cursors), text) == std::end(Cursors)) {
        return E_INVALIDARG;
    }
    m_document.SetInlineStyle(m_node, L"cursor", text);
    return S_OK;
}

HRESULT ElementStyle::get_cursor(BSTR* value) {
    return GiveText(Value(L"cursor"), value);
}

} // namespace html
