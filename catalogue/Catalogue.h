// The catalogue: the sections that this installation gives, in the order of the page.
#pragma once

#include "catalogue/SectionTable.h"

// Owns its sections.
class Catalogue : public SectionTable {
public:
    Catalogue() = default;
    ~Catalogue() override;

    // Appends the sections that the installation gives; the notes are those of this call. Quick
    // Start and Folders belong to development installations only.
    void Build(const Installation& installation, bool isDevelopment);

    // Gives each section its place, left to right, columnCount to a row. Returns the number of
    // rows, at least 1.
    std::int64_t PlaceOnGrid(std::int64_t columnCount);
};
