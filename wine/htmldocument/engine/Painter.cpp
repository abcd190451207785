// Draws a page: background, borders, images, texts.
#include "wine/htmldocument/engine/Painter.h"

#include <algorithm>
#include <cmath>

namespace html {
namespace {

RECT DeviceRect(const Area& area, int left, int top) {
    return {std::lround(area.x) - left, std::lround(area.y) - top,
            std::lround(area.x + area.width) - left, std::lround(area.y + area.height) - top};
}

void FillArea(HDC dc, const RECT& area, COLORREF color) {
    SetBkColor(dc, color);
    ExtTextOutW(dc, 0, 0, ETO_OPAQUE, &area, nullptr, 0, nullptr);
}

// A border that has a width is at least one pixel wide.
int BorderPixels(double width) {
    return width > 0 ? std::max(1, static_cast<int>(std::lround(width))) : 0;
}

void DrawBorder(HDC dc, const RECT& r, const BoxItem& box) {
    FillArea(dc, {r.left, r.top, r.right, r.top + BorderPixels(box.border.top)}, box.borderColor);
    FillArea(dc, {r.left, r.bottom - BorderPixels(box.border.bottom), r.right, r.bottom},
             box.borderColor);
    FillArea(dc, {r.left, r.top, r.left + BorderPixels(box.border.left), r.bottom},
             box.borderColor);
    FillArea(dc, {r.right - BorderPixels(box.border.right), r.top, r.right, r.bottom},
             box.borderColor);
}

} // namespace

void PaintPage(HDC dc, const RECT& clip, const Page& page, const Layout& layout, int left,
               int top) {
    FillArea(dc, clip, RGB(255, 255, 255));
    RECT shared = {};
    for (const BoxItem& box : layout.boxes) {
        const RECT area = DeviceRect(box.area, left, top);
        if (!IntersectRect(&shared, &area, &clip)) {
            continue;
        }
        DrawBorder(dc, area, box);
        if (const Picture* picture = page.ImageOf(*box.element)) {
            picture->Draw(dc, area);
        }
    }
    SetBkMode(dc, TRANSPARENT);
    SetTextAlign(dc, TA_BASELINE | TA_LEFT);
    const HGDIOBJ previous = GetCurrentObject(dc, OBJ_FONT);
    for (const TextItem& item : layout.texts) {
        const RECT area = DeviceRect(item.area, left, top);
        if (IntersectRect(&shared, &area, &clip)) {
            SelectObject(dc, item.font);
            SetTextColor(dc, item.color);
            ExtTextOutW(dc, area.left, static_cast<int>(std::lround(item.baseline)) - top, 0,
                        nullptr, item.text.c_str(), static_cast<UINT>(item.text.size()), nullptr);
        }
    }
    SelectObject(dc, previous);
}

} // namespace html
