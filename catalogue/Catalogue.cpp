#include "catalogue/Catalogue.h"

#include "catalogue/SectionBuilders.h"

Catalogue::~Catalogue() {
    DeleteAll(*this);
}

void Catalogue::Build(const Installation& installation, bool isDevelopment) {
    if (isDevelopment) {
        BuildQuickStartSection(*this, installation);
        BuildFoldersSection(*this, installation);
    }
    BuildGeneralToolsSection(*this, installation);
    BuildProcessingToolsSection(*this, installation);
    BuildFlowForgeVersionsSection(*this, false);
    BuildFlowForgeVersionsSection(*this, true);
    BuildActiveKorSection(*this, installation);
    BuildFlowForgeSection(*this, installation);
    BuildRtosSection(*this, installation);
}

std::int64_t Catalogue::PlaceOnGrid(std::int64_t columnCount) {
    std::int64_t column = 0;
    std::int64_t row = 0;
    for (ControlCenterSection* const section : *this) {
        if (column == columnCount) {
            ++row;
            column = 0;
        }
        section->Column = column;
        section->Row = row;
        ++column;
    }
    return row + 1;
}
