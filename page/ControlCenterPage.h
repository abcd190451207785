// The page without its window: what is installed, the catalogue that follows from it, and the
// markup and the window's size that follow from that.
#pragma once

#include "base/CKORString.h"
#include "catalogue/Catalogue.h"
#include "catalogue/Installation.h"
#include "page/PageSizes.h"

class ControlCenterPage : public Installation, public PageSizes {
public:
    // What happens once: takes the sizes that the metrics give, asks the registry for the
    // installation's four folders, and fills the page.
    void Start(const ScreenMetrics& metrics, CTable1D<std::int64_t>* rowHeights = nullptr);

    // Builds and composes everything from scratch, in a window that is as tall as it is without
    // rows. The four folders stay those of the start.
    void Refill(CTable1D<std::int64_t>* rowHeights = nullptr);

    // The steps of these two.
    void QueryInstallation();
    // Builds the catalogue and places its sections on the grid.
    void BuildSections();
    // Writes the catalogue's markup to PageHtml and adds the rows' heights to WindowHeight. An
    // installation that is not valid gives a message instead, and no height. Leaves the heights in
    // rowHeights, if there is one.
    void ComposePage(CTable1D<std::int64_t>* rowHeights = nullptr);

    CKORString PageHtml;
    bool IsValid = false; // whether PageHtml shows the sections, not the message
    Catalogue Sections;   // behind the texts, so that it is destroyed before them
    std::int64_t ColumnCount = 2;
    std::int64_t RowCount = 1;

private:
    // Appends the cell to the row's markup and raises the row's height to what the cell needs.
    void ComposeCell(std::int64_t row, std::int64_t column, CKORString& html,
                     std::int64_t& rowHeight);
    ControlCenterSection* FindSection(std::int64_t row, std::int64_t column) const;
};
