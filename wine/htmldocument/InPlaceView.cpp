// In-place activation, in the order that sites expect.
#include "wine/htmldocument/InPlaceView.h"

#include "wine/htmldocument/Document.h"

namespace html {
namespace {

// {DE4BA900-59CA-11CF-9592-444553540000}, which no import library has.
constexpr GUID MshtmlCommands = {
    0xde4ba900, 0x59ca, 0x11cf, {0x95, 0x92, 0x44, 0x45, 0x53, 0x54, 0x00, 0x00}};

} // namespace

InPlaceView::InPlaceView(Document& document) : m_document(document), m_window(document) {}

void InPlaceView::SetHost(IOleClientSite* site) {
    m_handler.Reset();
    if (site != nullptr &&
        SUCCEEDED(site->QueryInterface(IID_IDocHostUIHandler,
                                       reinterpret_cast<void**>(m_handler.GetAddressOf())))) {
        DOCHOSTUIINFO info = {};
        info.cbSize = sizeof(info);
        const bool known = SUCCEEDED(m_handler->GetHostInfo(&info));
        CoTaskMemFree(info.pchHostCss);
        CoTaskMemFree(info.pchHostNS);
        m_window.AllowScrollBars(!known || (info.dwFlags & DOCHOSTUIFLAG_SCROLL_NO) == 0);
    }
}

void InPlaceView::SetSite(IOleInPlaceSite* site) {
    if (site != m_site.Get()) {
        Deactivate();
        m_site = site;
    }
}

HRESULT InPlaceView::Show() {
    if (m_window.Handle() != nullptr) {
        m_window.Show(true);
        return S_OK;
    }
    const ComPtr<IOleInPlaceSite> site = m_site;
    if (site == nullptr || site->CanInPlaceActivate() != S_OK) {
        return E_FAIL;
    }
    HWND parent = nullptr;
    HRESULT result = site->GetWindow(&parent);
    if (SUCCEEDED(result)) {
        result = site->OnInPlaceActivate();
    }
    if (FAILED(result)) {
        return result;
    }
    ComPtr<IOleInPlaceUIWindow> uiWindow;
    RECT area = {};
    RECT clip = {};
    OLEINPLACEFRAMEINFO frameInfo = {};
    frameInfo.cb = sizeof(frameInfo);
    if (SUCCEEDED(site->GetWindowContext(m_frame.ReleaseAndGetAddressOf(), uiWindow.GetAddressOf(),
                                         &area, &clip, &frameInfo)) &&
        IsRectEmpty(&m_area)) {
        m_area = area;
    }
    return m_window.Create(parent, m_area) ? S_OK : E_FAIL;
}

void InPlaceView::Hide() {
    m_window.Show(false);
}

HRESULT InPlaceView::UIActivate(bool activate) {
    if (activate == m_uiActive) {
        return S_OK;
    }
    const ComPtr<IOleInPlaceSite> site = m_site;
    if (site == nullptr || (activate && m_window.Handle() == nullptr)) {
        return E_UNEXPECTED;
    }
    m_uiActive = activate;
    if (activate) {
        site->OnUIActivate();
    }
    if (m_frame != nullptr) {
        m_frame->SetActiveObject(activate ? &m_document.ActiveObject() : nullptr, nullptr);
    }
    if (activate) {
        SetFocus(m_window.Handle());
    } else {
        site->OnUIDeactivate(FALSE);
    }
    return S_OK;
}

void InPlaceView::Deactivate() {
    UIActivate(false);
    m_frame.Reset();
    if (m_window.Handle() != nullptr) {
        m_window.Destroy();
        const ComPtr<IOleInPlaceSite> site = m_site;
        site->OnInPlaceDeactivate();
    }
}

void InPlaceView::SetArea(const RECT& area) {
    m_area = area;
    m_window.Move(area);
}

void InPlaceView::Close() {
    SetSite(nullptr);
    m_handler.Reset();
}

HRESULT InPlaceView::TranslateKey(MSG& message) {
    const ComPtr<IDocHostUIHandler> handler = m_handler;
    if (handler != nullptr && handler->TranslateAccelerator(&message, &MshtmlCommands, 0) == S_OK) {
        return S_OK;
    }
    return message.message == WM_KEYDOWN && m_window.HandleKey(message.wParam) ? S_OK : S_FALSE;
}

} // namespace html
