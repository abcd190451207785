// The page without its window: what is installed, the catalogue that follows from it, and the
// markup and the window's size that follow from that.
#pragma once

#include "app/page/PageSizes.h"
#include "base/CKORString.h"
#include "catalogue/Catalogue.h"
#include "catalogue/Installation.h"

class ControlCenterPage : public Installation, public PageSizes {
public:
    // Takes the sizes from the screen.
    void MeasureScreen();

    // Asks the registry for the installation's four folders.
    void QueryInstallation();

    // Builds the catalogue from scratch and places its sections on the grid.
    void BuildSections();

    // Writes the catalogue's markup to PageHtml and adds the rows' heights to WindowHeight. An
    // installation that is not valid gives a message instead, and no height.
    void ComposePage();
    // Leaves the rows' heights, too, none for an installation that is not valid.
    void ComposePage(CTable1D<std::int64_t>& rowHeights);

    CKORString PageHtml;
    Catalogue Sections; // behind the texts, so that it is destroyed before them
    std::int64_t ColumnCount = 2;
    std::int64_t RowCount = 1;

private:
    // Appends the cell to the row's markup and raises the row's height to what the cell needs.
    void ComposeCell(std::int64_t row, std::int64_t column, CKORString& html,
                     std::int64_t& rowHeight);
    ControlCenterSection* FindSection(std::int64_t row, std::int64_t column) const;
};
