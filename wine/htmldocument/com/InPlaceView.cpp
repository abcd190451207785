// In-place activation, in the order that sites expect.
#include "wine/htmldocument/com/InPlaceView.h"

#include "wine/htmldocument/com/Document.h"

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
        const DWORD flags = known ? info.dwFlags : 0;
        m_window.AllowScrollBars((flags & DOCHOSTUIFLAG_SCROLL_NO) == 0);
        m_window.AllowBorder((flags & DOCHOSTUIFLAG_NO3DBORDER) == 0);
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
    if (!m_window.Create(parent, m_area)) {
        return E_FAIL;
    }
    TakeDrops();
    return S_OK;
}

// The host may give a target of its own in place of the engine's.
void InPlaceView::TakeDrops() {
    if (!m_document.Has(Mode::Drops)) {
        return;
    }
    m_dropTarget = Adopt(new DropTarget(m_document.GetControl()));
    const ComPtr<IDocHostUIHandler> handler = m_document.GetControl().HostHandler();
    ComPtr<IDropTarget> own;
    if (handler == nullptr ||
        FAILED(handler->GetDropTarget(m_dropTarget.Get(), own.GetAddressOf())) || own == nullptr) {
        own = m_dropTarget.Get();
    }
    RegisterDragDrop(m_window.Handle(), own.Get());
}

void InPlaceView::RefuseDrops() {
    if (m_dropTarget != nullptr) {
        RevokeDragDrop(m_window.Handle());
        m_dropTarget->Forget();
        m_dropTarget.Reset();
    }
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
        RefuseDrops();
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
    const ComPtr<Document> self = &m_document;
    const ComPtr<IDocHostUIHandler> handler = m_handler;
    const bool isKeyUp = message.message == WM_KEYUP || message.message == WM_SYSKEYUP;
    const bool asks = (m_clicked || !m_document.Has(Mode::AskedAfterClick)) &&
                      !(isKeyUp && m_document.Has(Mode::NoKeyUps));
    if (asks && handler != nullptr &&
        handler->TranslateAccelerator(&message, &MshtmlCommands, 0) == S_OK) {
        return S_OK;
    }
    const bool isRefresh = message.wParam == VK_F5 || message.wParam == VK_BROWSER_REFRESH;
    if (message.message == WM_KEYDOWN && isRefresh && RefreshByKey()) {
        return S_OK;
    }
    return message.message == WM_KEYDOWN && m_window.HandleKey(message.wParam) ? S_OK : S_FALSE;
}

bool InPlaceView::RefreshByKey() {
    if (!m_document.Has(Mode::OwnRefreshKey) || m_document.Moniker() == nullptr) {
        return false;
    }
    m_document.Reload();
    return true;
}

void InPlaceView::ShowContextMenu(POINT at) {
    const ComPtr<Document> self = &m_document;
    const ComPtr<IDocHostUIHandler> handler = m_handler;
    ComPtr<IOleCommandTarget> commands;
    ComPtr<IDispatch> page;
    self->QueryInterface(IID_IOleCommandTarget, reinterpret_cast<void**>(commands.GetAddressOf()));
    self->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(page.GetAddressOf()));
    if (!m_document.Has(Mode::ContextMenu) ||
        (handler != nullptr &&
         handler->ShowContextMenu(CONTEXT_MENU_DEFAULT, &at, commands.Get(), page.Get()) == S_OK)) {
        return;
    }
    m_document.CountMenu();
    constexpr UINT_PTR Refresh = 1;
    const HMENU menu = CreatePopupMenu();
    AppendMenuW(menu, MF_STRING | MF_GRAYED, 2, L"&Back");
    AppendMenuW(menu, MF_STRING, Refresh, L"&Refresh");
    const BOOL chosen =
        TrackPopupMenu(menu, TPM_RETURNCMD, at.x, at.y, 0, m_window.Handle(), nullptr);
    DestroyMenu(menu);
    if (chosen == static_cast<BOOL>(Refresh) && m_document.Moniker() != nullptr) {
        m_document.Reload();
    }
}

} // namespace html
