// The page as the launcher would show it now, with what the launcher does not keep.
#pragma once

#include "page/ControlCenterPage.h"

struct PageState {
    // Starts the page with the sizes of this machine; a DPI of 0 is the screen's.
    explicit PageState(int dpi = 0);

    ControlCenterPage Page;
    CTable1D<std::int64_t> RowHeights;
    int Dpi;
};
