// Scroll bars, wheel and keys all end in ScrollTo.
#include "wine/htmldocument/com/ScrollState.h"

#include <algorithm>

namespace html {

// The bars are drawn when the window is painted, once for all that changed until then.
void ScrollState::Update(HWND window, SIZE page, SIZE view, bool vertical, bool horizontal) {
    m_page = page;
    m_view = view;
    ShowScrollBar(window, SB_VERT, vertical ? TRUE : FALSE);
    ShowScrollBar(window, SB_HORZ, horizontal ? TRUE : FALSE);
    SCROLLINFO info = {};
    info.cbSize = sizeof(info);
    info.fMask = SIF_RANGE | SIF_PAGE | SIF_DISABLENOSCROLL;
    if (vertical) {
        info.nMax = page.cy - 1;
        info.nPage = static_cast<UINT>(std::max<LONG>(view.cy, 0));
        SetScrollInfo(window, SB_VERT, &info, FALSE);
    }
    if (horizontal) {
        info.nMax = page.cx - 1;
        info.nPage = static_cast<UINT>(std::max<LONG>(view.cx, 0));
        SetScrollInfo(window, SB_HORZ, &info, FALSE);
    }
    RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_FRAME);
    ScrollTo(window, m_at.x, m_at.y);
}

bool ScrollState::ScrollTo(HWND window, int left, int top) {
    const POINT to = {std::clamp<LONG>(left, 0, std::max<LONG>(m_page.cx - m_view.cx, 0)),
                      std::clamp<LONG>(top, 0, std::max<LONG>(m_page.cy - m_view.cy, 0))};
    if (to.x == m_at.x && to.y == m_at.y) {
        return false;
    }
    m_at = to;
    SetScrollPos(window, SB_HORZ, to.x, TRUE);
    SetScrollPos(window, SB_VERT, to.y, TRUE);
    return true;
}

bool ScrollState::HandleBar(HWND window, int bar, WPARAM wParam, int line) {
    const bool vertical = bar == SB_VERT;
    const int view = vertical ? m_view.cy : m_view.cx;
    int to = vertical ? m_at.y : m_at.x;
    SCROLLINFO info = {};
    info.cbSize = sizeof(info);
    info.fMask = SIF_TRACKPOS;
    switch (LOWORD(wParam)) {
    case SB_LINEUP:
        to -= line;
        break;
    case SB_LINEDOWN:
        to += line;
        break;
    case SB_PAGEUP:
        to -= view;
        break;
    case SB_PAGEDOWN:
        to += view;
        break;
    case SB_TOP:
        to = 0;
        break;
    case SB_BOTTOM:
        to = vertical ? m_page.cy : m_page.cx;
        break;
    case SB_THUMBTRACK:
    case SB_THUMBPOSITION:
        // The message itself has only 16 bits of the position.
        to = GetScrollInfo(window, bar, &info) ? info.nTrackPos : HIWORD(wParam);
        break;
    default:
        return false;
    }
    return vertical ? ScrollTo(window, m_at.x, to) : ScrollTo(window, to, m_at.y);
}

bool ScrollState::HandleWheel(HWND window, WPARAM wParam, int line) {
    UINT lines = 3;
    SystemParametersInfoW(SPI_GETWHEELSCROLLLINES, 0, &lines, 0);
    const int notch =
        lines == WHEEL_PAGESCROLL ? static_cast<int>(m_view.cy) : static_cast<int>(lines) * line;
    m_wheelRest += GET_WHEEL_DELTA_WPARAM(wParam) * notch;
    const int distance = m_wheelRest / WHEEL_DELTA;
    m_wheelRest %= WHEEL_DELTA;
    return ScrollTo(window, m_at.x, m_at.y - distance);
}

bool ScrollState::HandleKey(HWND window, WPARAM key, int line, bool& taken) {
    int left = m_at.x;
    int top = m_at.y;
    taken = true;
    switch (key) {
    case VK_UP:
        top -= line;
        break;
    case VK_DOWN:
        top += line;
        break;
    case VK_LEFT:
        left -= line;
        break;
    case VK_RIGHT:
        left += line;
        break;
    case VK_PRIOR:
        top -= m_view.cy;
        break;
    case VK_NEXT:
    case VK_SPACE:
        top += m_view.cy;
        break;
    case VK_HOME:
        top = 0;
        break;
    case VK_END:
        top = m_page.cy;
        break;
    default:
        taken = false;
        return false;
    }
    return ScrollTo(window, left, top);
}

} // namespace html
