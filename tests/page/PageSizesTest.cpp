// The sizes at each resolution.
#include "page/PageSizes.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <vector>

#include "tests/support/ImportHook.h"

namespace {

struct SizesCase {
    int dpi;
    std::int64_t sectionBaseHeight;
    std::int64_t itemHeight;
    std::int64_t baseWidth;
    std::int64_t windowWidth;
};

// With a vertical scroll bar of 17 and a frame height of 5: 17 + 2 x (5 + 320) = 667.
constexpr SizesCase Cases[] = {
    {72, 45, 20, 667, 667},    {95, 45, 20, 667, 667},    {96, 45, 20, 667, 667},
    {97, 45, 20, 1405, 1405},  {120, 56, 25, 1405, 1405}, {143, 67, 29, 1405, 1405},
    {144, 67, 30, 1405, 1404}, {145, 67, 30, 1405, 1405}, {192, 90, 40, 1405, 1405},
};

TEST(PageSizes, FollowTheDpi) {
    for (const SizesCase& c : Cases) {
        SCOPED_TRACE(c.dpi);
        const PageSizes sizes = ComputePageSizes({3, 5, 16, 17, 19, c.dpi});
        EXPECT_EQ(sizes.SectionBaseHeight, c.sectionBaseHeight);
        EXPECT_EQ(sizes.ItemHeight, c.itemHeight);
        EXPECT_EQ(sizes.BaseWidth, c.baseWidth);
        EXPECT_EQ(sizes.WindowWidth, c.windowWidth);
        // The menu's 19, twice the frame width of 3, 234, the scroll bar's 16.
        EXPECT_EQ(sizes.BaseHeight, 275);
        EXPECT_EQ(sizes.WindowHeight, 275);
    }
}

TEST(ScreenMetrics, AreReadInTheirOrder) {
    std::vector<int> asked;
    int released = 0;
    HOOK_IMPORT(metrics, GetSystemMetrics, [&](int index) {
        asked.push_back(index);
        return 100 + index;
    });
    const HDC context = reinterpret_cast<HDC>(0x1234);
    HOOK_IMPORT(get, GetDC, [&](HWND window) {
        EXPECT_EQ(window, nullptr);
        asked.push_back(-1);
        return context;
    });
    HOOK_IMPORT(capability, GetDeviceCaps, [&](HDC dc, int index) {
        EXPECT_EQ(dc, context);
        EXPECT_EQ(index, 88);
        EXPECT_EQ(released, 0);
        return 120;
    });
    HOOK_IMPORT(release, ReleaseDC, [&](HWND window, HDC dc) {
        EXPECT_EQ(window, nullptr);
        EXPECT_EQ(dc, context);
        ++released;
        return 1;
    });
    const ScreenMetrics read = ReadScreenMetrics();
    EXPECT_EQ(asked, (std::vector<int>{7, 8, 3, 2, 15, -1}));
    EXPECT_EQ(released, 1);
    EXPECT_EQ(read.DialogFrameWidth, 107);
    EXPECT_EQ(read.DialogFrameHeight, 108);
    EXPECT_EQ(read.HorizontalScrollBarHeight, 103);
    EXPECT_EQ(read.VerticalScrollBarWidth, 102);
    EXPECT_EQ(read.MenuHeight, 115);
    EXPECT_EQ(read.Dpi, 120);
}

TEST(ScreenMetrics, WithoutADeviceContextTheScreenIsUnscaled) {
    HOOK_IMPORT(get, GetDC, [](HWND) { return HDC{nullptr}; });
    HOOK_IMPORT(capability, GetDeviceCaps, [](auto...) {
        ADD_FAILURE() << "asked without a device context";
        return 0;
    });
    EXPECT_EQ(ReadScreenMetrics().Dpi, 96);
}

} // namespace
