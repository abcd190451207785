// Which part of the page the window shows, and the window's scroll bars.
#pragma once

#include <windows.h>

namespace html {

class ScrollState {
public:
    // Sizes in device pixels. A vertical bar that has nothing to scroll stands there disabled.
    void Update(HWND window, SIZE page, SIZE view, bool vertical, bool horizontal);

    int Left() const { return m_at.x; }
    int Top() const { return m_at.y; }

    // Each returns whether the position changed. What is asked for is brought into range.
    bool ScrollTo(HWND window, int left, int top);
    bool HandleBar(HWND window, int bar, WPARAM wParam, int line);
    bool HandleWheel(HWND window, WPARAM wParam, int line);
    // taken: whether the key is one that scrolls.
    bool HandleKey(HWND window, WPARAM key, int line, bool& taken);

private:
    SIZE m_page = {};
    SIZE m_view = {};
    POINT m_at = {};
    int m_wheelRest = 0; // of a wheel finer than one line
};

} // namespace html
