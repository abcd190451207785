#include "catalogue/Catalogue.h"

#include "catalogue/SectionBuilders.h"

namespace {

constexpr wchar_t NotDevelopment[] = L"this is no development installation";

} // namespace

Catalogue::~Catalogue() {
    DeleteAll(*this);
}

void Catalogue::Build(const Installation& installation, bool isDevelopment) {
    Omissions.SetSize(0, false);
    if (isDevelopment) {
        BuildQuickStartSection(*this, installation);
        BuildFoldersSection(*this, installation);
    } else {
        Omissions.Add({QuickStartTitle, L"", NotDevelopment, L"", PathBase::None});
        Omissions.Add({FoldersTitle, L"", NotDevelopment, L"", PathBase::None});
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
