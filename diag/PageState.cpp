#include "diag/PageState.h"

#include "app/page/InstallationQueries.h"

PageState::PageState(int dpi) : IsValid(IsValidInstallation()) {
    ScreenMetrics metrics = ReadScreenMetrics();
    if (dpi != 0) {
        metrics.Dpi = dpi;
    }
    Dpi = metrics.Dpi;
    static_cast<PageSizes&>(Page) = ComputePageSizes(metrics);
    Page.QueryInstallation();
    Page.BuildSections();
    Page.ComposePage(RowHeights);
}
