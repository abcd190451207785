// Draws a page.
#pragma once

#include <windows.h>

#include "wine/htmldocument/engine/Page.h"

namespace html {

// The page's point (left, top) comes to the device's origin; clip is in device pixels.
void PaintPage(HDC dc, const RECT& clip, const Page& page, const Layout& layout, int left, int top);

} // namespace html
