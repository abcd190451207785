// Measures the screen and computes the sizes.
#include "page/PageSizes.h"

#include <windows.h>

namespace {

constexpr int UnscaledDpi = 96;
constexpr std::int64_t ScaledBaseWidth = 1405;
// Fixed: a banner of another size does not change them.
constexpr std::int64_t HalfPageWidth = 320;
constexpr std::int64_t HeightAboveTheRows = 234;

int ScreenDpi() {
    const HDC screen = GetDC(nullptr);
    if (screen == nullptr) {
        return UnscaledDpi;
    }
    const int dpi = GetDeviceCaps(screen, LOGPIXELSX);
    ReleaseDC(nullptr, screen);
    return dpi;
}

} // namespace

ScreenMetrics ReadScreenMetrics() {
    ScreenMetrics metrics = {};
    metrics.DialogFrameWidth = GetSystemMetrics(SM_CXDLGFRAME);
    metrics.DialogFrameHeight = GetSystemMetrics(SM_CYDLGFRAME);
    metrics.HorizontalScrollBarHeight = GetSystemMetrics(SM_CYHSCROLL);
    metrics.VerticalScrollBarWidth = GetSystemMetrics(SM_CXVSCROLL);
    metrics.MenuHeight = GetSystemMetrics(SM_CYMENU);
    metrics.Dpi = ScreenDpi();
    return metrics;
}

PageSizes ComputePageSizes(const ScreenMetrics& metrics) {
    PageSizes sizes;
    if (metrics.Dpi > UnscaledDpi) {
        sizes.SectionBaseHeight = sizes.SectionBaseHeight * metrics.Dpi / UnscaledDpi;
        sizes.ItemHeight = sizes.ItemHeight * metrics.Dpi / UnscaledDpi;
        sizes.BaseWidth = ScaledBaseWidth;
    } else {
        // The frame's height in a width, and its width in the height below: docs/quirks.md.
        sizes.BaseWidth =
            metrics.VerticalScrollBarWidth + 2 * (metrics.DialogFrameHeight + HalfPageWidth);
    }
    sizes.BaseHeight = metrics.MenuHeight + std::int64_t{2} * metrics.DialogFrameWidth +
                       HeightAboveTheRows + metrics.HorizontalScrollBarHeight;
    // One pixel less at exactly 144 DPI: docs/quirks.md.
    sizes.WindowWidth = metrics.Dpi == 144 ? sizes.BaseWidth - 1 : sizes.BaseWidth;
    sizes.WindowHeight = sizes.BaseHeight;
    return sizes;
}
