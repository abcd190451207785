// Starts the page as the launcher does.
#include "diag/PageState.h"

PageState::PageState(int dpi) {
    ScreenMetrics metrics = ReadScreenMetrics();
    metrics.Dpi = dpi != 0 ? dpi : metrics.Dpi;
    Dpi = metrics.Dpi;
    Page.Start(metrics, &RowHeights);
}
