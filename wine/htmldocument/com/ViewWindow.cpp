// Window class, painting, and where each message goes.
#include "wine/htmldocument/com/ViewWindow.h"

#include <windowsx.h>

#include <cmath>
#include <utility>

#include "wine/htmldocument/com/Document.h"
#include "wine/htmldocument/com/Module.h"
#include "wine/htmldocument/engine/Painter.h"

namespace html {
namespace {

constexpr wchar_t WindowClass[] = L"Internet Explorer_Server"; // as MSHTML names it
constexpr double LineStep = 20;                                // CSS pixels

int ScreenDpi() {
    const HDC screen = GetDC(nullptr);
    const int dpi = GetDeviceCaps(screen, LOGPIXELSY);
    ReleaseDC(nullptr, screen);
    return dpi;
}

} // namespace

ViewWindow::ViewWindow(Document& document)
    : m_document(document), m_dpi(static_cast<UINT>(ScreenDpi())), m_mouse(document) {}

bool ViewWindow::RegisterWindowClass() {
    WNDCLASSEXW windowClass = {};
    windowClass.cbSize = sizeof(windowClass);
    if (GetClassInfoExW(ModuleInstance(), WindowClass, &windowClass)) {
        return true;
    }
    windowClass.style = CS_DBLCLKS;
    windowClass.lpfnWndProc = Procedure;
    windowClass.hInstance = ModuleInstance();
    windowClass.lpszClassName = WindowClass;
    return RegisterClassExW(&windowClass) != 0;
}

void ViewWindow::UnregisterWindowClass() {
    UnregisterClassW(WindowClass, ModuleInstance());
}

bool ViewWindow::Create(HWND parent, const RECT& area) {
    if (!RegisterWindowClass()) {
        return false;
    }
    const HWND window = CreateWindowExW(m_borderAllowed ? WS_EX_CLIENTEDGE : 0, WindowClass, L"",
                                        WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN, area.left,
                                        area.top, area.right - area.left, area.bottom - area.top,
                                        parent, nullptr, ModuleInstance(), this);
    if (window != nullptr) {
        PageChanged();
        m_document.TraceState();
    }
    return window != nullptr;
}

void ViewWindow::Destroy() {
    if (m_window != nullptr) {
        const HWND window = std::exchange(m_window, nullptr);
        SetWindowLongPtrW(window, GWLP_USERDATA, 0);
        DestroyWindow(window);
    }
}

void ViewWindow::Show(bool show) {
    if (m_window != nullptr) {
        ShowWindow(m_window, show ? SW_SHOW : SW_HIDE);
    }
}

void ViewWindow::Move(const RECT& area) {
    if (m_window != nullptr) {
        SetWindowPos(m_window, nullptr, area.left, area.top, area.right - area.left,
                     area.bottom - area.top, SWP_NOZORDER | SWP_NOACTIVATE);
    }
}

LRESULT CALLBACK ViewWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE) {
        const auto* const create = reinterpret_cast<const CREATESTRUCTW*>(lParam);
        auto* const view = static_cast<ViewWindow*>(create->lpCreateParams);
        view->m_window = window;
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(view));
    }
    auto* const view = reinterpret_cast<ViewWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (view == nullptr) {
        return DefWindowProcW(window, message, wParam, lParam);
    }
    if (message == WM_NCDESTROY) { // the host destroyed its own window around this one
        view->m_window = nullptr;
        return 0;
    }
    // A sink may let go of the document in the middle of an event.
    const ComPtr<Document> document = &view->m_document;
    return view->HandleMessage(message, wParam, lParam);
}

LRESULT ViewWindow::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_ERASEBKGND:
        return 1;
    case WM_PAINT:
        Paint();
        return 0;
    case WM_SIZE:
        if (!m_updating) {
            PageChanged();
            m_document.TraceState();
        }
        return 0;
    case WM_GETDLGCODE:
        return DLGC_WANTARROWS | DLGC_WANTCHARS;
    case WM_KEYDOWN:
        if (HandleKey(wParam)) {
            return 0;
        }
        break;
    case WM_VSCROLL:
    case WM_HSCROLL:
        Scrolled(m_scroll.HandleBar(m_window, message == WM_VSCROLL ? SB_VERT : SB_HORZ, wParam,
                                    LineHeight()));
        return 0;
    case WM_MOUSEWHEEL:
        Scrolled(m_scroll.HandleWheel(m_window, wParam, LineHeight()));
        return 0;
    case WM_DESTROY: // the host destroys its own window around this one
        m_document.View().RefuseDrops();
        return 0;
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
        m_document.TraceState();
        break;
    case WM_APPCOMMAND:
        if (GET_APPCOMMAND_LPARAM(lParam) == APPCOMMAND_BROWSER_REFRESH &&
            m_document.View().RefreshByKey()) {
            return TRUE;
        }
        break;
    case WM_CONTEXTMENU:
        m_document.View().ShowContextMenu({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
        return 0;
    case WM_SETCURSOR:
        if (LOWORD(lParam) == HTCLIENT) {
            UpdateCursor();
            return TRUE;
        }
        break;
    default:
        if (HandleMouse(message, wParam, {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)})) {
            return 0;
        }
        break;
    }
    return DefWindowProcW(m_window, message, wParam, lParam);
}

bool ViewWindow::HandleMouse(UINT message, WPARAM, POINT client) {
    switch (message) {
    case WM_MOUSEMOVE: {
        TRACKMOUSEEVENT track = {sizeof(track), TME_LEAVE, m_window, 0};
        TrackMouseEvent(&track);
        m_mouse.Move(ElementAt(client), client);
        UpdateCursor();
        return true;
    }
    case WM_MOUSELEAVE:
        m_mouse.Move(nullptr, {-1, -1});
        return true;
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
        m_document.View().NoteClick();
        SetFocus(m_window);
        SetCapture(m_window);
        m_mouse.Press(ElementAt(client));
        return true;
    case WM_LBUTTONUP:
        ReleaseCapture();
        m_mouse.Unpress(ElementAt(client), client);
        return true;
    default:
        return false;
    }
}

NodePtr ViewWindow::ElementAt(POINT client) {
    RECT area = {};
    if (m_window == nullptr || !GetClientRect(m_window, &area) || !PtInRect(&area, client)) {
        return nullptr;
    }
    const Node* const found =
        CurrentLayout().HitTest(client.x + m_scroll.Left(), client.y + m_scroll.Top());
    Node* const body = m_document.GetPage().Body();
    const Node* const element = found != nullptr ? found : body;
    return std::const_pointer_cast<Node>(element->shared_from_this());
}

void ViewWindow::UpdateCursor() const {
    const NodePtr& hovered = m_mouse.Hovered();
    const std::wstring cursor =
        hovered != nullptr ? m_document.GetPage().StyleOf(*hovered).cursor : std::wstring();
    const bool hand = cursor == L"hand" || cursor == L"pointer";
    SetCursor(LoadCursorW(nullptr, hand ? IDC_HAND : IDC_ARROW));
}

int ViewWindow::LineHeight() const {
    return static_cast<int>(std::lround(LineStep * Scale()));
}

bool ViewWindow::HandleKey(WPARAM key) {
    bool taken = false;
    if (m_window != nullptr) {
        Scrolled(m_scroll.HandleKey(m_window, key, LineHeight(), taken));
    }
    return taken;
}

void ViewWindow::Scrolled(bool changed) {
    if (changed) {
        InvalidateRect(m_window, nullptr, FALSE);
        m_document.TraceState();
    }
}

const Layout& ViewWindow::CurrentLayout() {
    return m_document.GetPage().LayoutFor(m_layoutWidth, Scale());
}

void ViewWindow::PageChanged() {
    if (m_window != nullptr && !m_updating) {
        m_updating = true; // bars that come and go change the window's size
        UpdateScrollBars();
        m_updating = false;
        InvalidateRect(m_window, nullptr, FALSE);
    }
}

void ViewWindow::UpdateScrollBars() {
    RECT window = {};
    GetWindowRect(m_window, &window);
    const int edges = m_borderAllowed ? 2 : 0;
    SIZE view = {window.right - window.left - edges * GetSystemMetrics(SM_CXEDGE),
                 window.bottom - window.top - edges * GetSystemMetrics(SM_CYEDGE)};
    if (m_scrollBarsAllowed) {
        view.cx -= GetSystemMetrics(SM_CXVSCROLL);
    }
    view.cx = std::max<LONG>(view.cx, 0);
    m_layoutWidth = view.cx;
    const Layout& layout = CurrentLayout();
    const SIZE page = {std::lround(std::ceil(layout.width)), std::lround(std::ceil(layout.height))};
    const bool horizontal = m_scrollBarsAllowed && page.cx > view.cx;
    if (horizontal) {
        view.cy -= GetSystemMetrics(SM_CYHSCROLL);
    }
    m_scroll.Update(m_window, page, view, m_scrollBarsAllowed, horizontal);
}

void ViewWindow::Paint() {
    PAINTSTRUCT paint = {};
    const HDC dc = BeginPaint(m_window, &paint);
    RECT area = {};
    GetClientRect(m_window, &area);
    // Drawn beside the screen first: nothing flickers.
    const HDC memory = CreateCompatibleDC(dc);
    const HBITMAP bitmap = CreateCompatibleBitmap(dc, area.right, area.bottom);
    const HGDIOBJ previous = SelectObject(memory, bitmap);
    PaintPage(memory, area, m_document.GetPage(), CurrentLayout(), m_scroll.Left(), m_scroll.Top());
    BitBlt(dc, 0, 0, area.right, area.bottom, memory, 0, 0, SRCCOPY);
    SelectObject(memory, previous);
    DeleteObject(bitmap);
    DeleteDC(memory);
    EndPaint(m_window, &paint);
}

} // namespace html
