// What the dialog does when the mouse is on an item of the page.
#include "app/CkorcontrolcenterDlg.h"

#include <comdef.h>

#include "page/ShellCall.h"

namespace {

constexpr long HoverColor = 0xFF0000;
constexpr long PlainColor = 0x0000FF;

// As the style's colour is a variant, it may be a number.
void SetColor(IHTMLStyle* style, long color) {
    VARIANT value = {};
    value.vt = VT_I4;
    value.lVal = color;
    style->put_color(value);
}

} // namespace

BEGIN_DHTML_EVENT_MAP(CkorcontrolcenterDlg)
DHTML_EVENT_CLASS(DISPID_HTMLELEMENTEVENTS2_ONMOUSEOVER, ItemClass, OnItemMouseOver)
DHTML_EVENT_CLASS(DISPID_HTMLELEMENTEVENTS2_ONMOUSEOUT, ItemClass, OnItemMouseOut)
DHTML_EVENT_CLASS(DISPID_HTMLELEMENTEVENTS2_ONCLICK, ItemClass, OnItemClick)
END_DHTML_EVENT_MAP()

HRESULT CkorcontrolcenterDlg::OnItemMouseOver(IHTMLElement* element) {
    CComPtr<IHTMLStyle> style;
    element->get_style(&style);
    if (style != nullptr) {
        SetColor(style, HoverColor);
        style->put_cursor(_bstr_t(L"hand"));
        style.Release();
    }
    m_hoveredElement = element;
    return S_OK;
}

// The cursor stays as it is: docs/quirks.md.
HRESULT CkorcontrolcenterDlg::OnItemMouseOut(IHTMLElement* element) {
    CComPtr<IHTMLStyle> style;
    element->get_style(&style);
    if (style != nullptr) {
        SetColor(style, PlainColor);
        style.Release();
    }
    m_hoveredElement.Release();
    return S_OK;
}

HRESULT CkorcontrolcenterDlg::OnItemClick(IHTMLElement* element) {
    BSTR textReceived = nullptr;
    BSTR idReceived = nullptr;
    element->get_innerText(&textReceived);
    element->get_id(&idReceived);
    const _bstr_t text(textReceived, false);
    const _bstr_t id(idReceived, false);
    if (textReceived == nullptr || idReceived == nullptr) {
        return S_OK;
    }
    const ControlCenterItem* const item = Sections.FindItem(idReceived);
    if (item != nullptr && item->Path.Length() > 0) {
        // Copies: a message box lets the catalogue be built again.
        const CKORString path(item->Path);
        const CKORString arguments(item->Arguments);
        LaunchItem(path, arguments, item->Type);
    }
    return S_OK;
}

void CkorcontrolcenterDlg::LaunchItem(const CKORString& path, const CKORString& arguments,
                                      int type) {
    if (type == ItemElevatedProgram) {
        ShellExecuteElevated(path, arguments, true);
    } else if (const std::optional<ShellCall> call = CallOfItem(path, arguments, type)) {
        call->Make();
    } else {
        MessageBox(L"This item has an invalid type.", L"Invalid item type", MB_OK);
    }
}

bool CkorcontrolcenterDlg::ShellExecuteElevated(const CKORString& path, const CKORString& arguments,
                                                bool elevate) {
    return CallOfProgram(path, arguments, elevate).Make().IsStarted;
}
