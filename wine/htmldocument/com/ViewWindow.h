// The window that shows the page inside the host.
#pragma once

#include <windows.h>

#include "wine/htmldocument/com/MouseTracker.h"
#include "wine/htmldocument/com/ScrollState.h"
#include "wine/htmldocument/engine/Layout.h"
#include "wine/htmldocument/engine/Node.h"

namespace html {

class Document;

class ViewWindow {
public:
    explicit ViewWindow(Document& document);
    ViewWindow(const ViewWindow&) = delete;
    ViewWindow& operator=(const ViewWindow&) = delete;
    ~ViewWindow() { Destroy(); }
    // Before the library goes: no window of it is left.
    static void UnregisterWindowClass();

    bool Create(HWND parent, const RECT& area);
    void Destroy();
    HWND Handle() const { return m_window; } // null before Create and after Destroy
    void Show(bool show);
    void Move(const RECT& area);
    // Both before Create. A vertical bar that is allowed is always there.
    void AllowScrollBars(bool allow) { m_scrollBarsAllowed = allow; }
    void AllowBorder(bool allow) { m_borderAllowed = allow; }

    // The page is laid out anew and shown.
    void PageChanged();
    // Whether the key is one that moves the page.
    bool HandleKey(WPARAM key);
    // The innermost element at a point of the client area; null outside.
    NodePtr ElementAt(POINT client);

    UINT Dpi() const { return m_dpi; }
    const ScrollState& Scroll() const { return m_scroll; }
    // Of the page as it is shown; there must be a window.
    const Layout& CurrentLayout();

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    static bool RegisterWindowClass();
    LRESULT HandleMessage(UINT message, WPARAM wParam, LPARAM lParam);
    bool HandleMouse(UINT message, WPARAM wParam, POINT client);
    void Paint();
    void UpdateScrollBars();
    void Scrolled(bool changed);
    void UpdateCursor() const;
    double Scale() const { return m_dpi / 96.0; }
    int LineHeight() const;

    Document& m_document;
    HWND m_window = nullptr;
    UINT m_dpi = 96;
    int m_layoutWidth = 0;
    bool m_scrollBarsAllowed = true;
    bool m_borderAllowed = true;
    bool m_updating = false;
    ScrollState m_scroll;
    MouseTracker m_mouse;
};

} // namespace html
