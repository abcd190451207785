// The builders of the page's sections, in the order in which the catalogue calls them. Each
// appends the sections of one product or subject, or notes why there is none.
#pragma once

#include "catalogue/Catalogue.h"
#include "catalogue/Installation.h"

// Of the two sections that the catalogue leaves out itself.
inline constexpr wchar_t QuickStartTitle[] = L"Quick Start";
inline constexpr wchar_t FoldersTitle[] = L"Folders";

void BuildQuickStartSection(Catalogue& catalogue, const Installation& installation);
void BuildFoldersSection(Catalogue& catalogue, const Installation& installation);
void BuildGeneralToolsSection(Catalogue& catalogue, const Installation& installation);
void BuildProcessingToolsSection(Catalogue& catalogue, const Installation& installation);
// One section for each version installed in the 64-bit or the 32-bit registry view.
void BuildFlowForgeVersionsSection(Catalogue& catalogue, bool is32Bit);
void BuildActiveKorSection(Catalogue& catalogue, const Installation& installation);
void BuildFlowForgeSection(Catalogue& catalogue, const Installation& installation);
void BuildRtosSection(Catalogue& catalogue, const Installation& installation);
