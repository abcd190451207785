// The catalogue: the sections that this installation gives, in the order of the page.
#pragma once

#include "base/CTable1D.h"
#include "catalogue/ControlCenterSection.h"
#include "catalogue/Installation.h"

// Owns its sections.
class Catalogue : public CTable1D<ControlCenterSection*> {
public:
    Catalogue() = default;
    ~Catalogue() override;

    // Appends the sections that the installation gives. Quick Start and Folders belong to
    // development installations only.
    void Build(const Installation& installation, bool isDevelopment);

    // Gives each section its place, left to right, columnCount to a row. Returns the number of
    // rows, at least 1.
    std::int64_t PlaceOnGrid(std::int64_t columnCount);
};
