// How large the window and the rows of the page are, in pixels.
#pragma once

#include <cstdint>

// The figures of the screen that the sizes depend on.
struct ScreenMetrics {
    int DialogFrameWidth;
    int DialogFrameHeight;
    int HorizontalScrollBarHeight;
    int VerticalScrollBarWidth;
    int MenuHeight;
    int Dpi;
};

// Asks the system. Without a device context of the screen the DPI is taken as 96.
ScreenMetrics ReadScreenMetrics();

struct PageSizes {
    std::int64_t SectionBaseHeight = 45; // what a section adds besides its items
    std::int64_t ItemHeight = 20;        // what one shown item adds
    std::int64_t BaseWidth = 0;          // of the window before any row is added
    std::int64_t BaseHeight = 0;
    std::int64_t WindowWidth = 0; // to which the window is set once the page is filled
    std::int64_t WindowHeight = 0;
};

PageSizes ComputePageSizes(const ScreenMetrics& metrics);
