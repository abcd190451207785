// The builders of the page's sections, in the order in which the catalogue calls them. Each
// appends the sections of one product or subject, or notes why there is none.
#pragma once

#include "catalogue/Installation.h"
#include "catalogue/SectionTable.h"

// Of the two sections that the catalogue leaves out itself.
inline constexpr wchar_t QuickStartTitle[] = L"Quick Start";
inline constexpr wchar_t FoldersTitle[] = L"Folders";

void BuildQuickStartSection(SectionTable& sections, const Installation& installation);
void BuildFoldersSection(SectionTable& sections, const Installation& installation);
void BuildGeneralToolsSection(SectionTable& sections, const Installation& installation);
void BuildProcessingToolsSection(SectionTable& sections, const Installation& installation);
// One section for each version installed in the 64-bit or the 32-bit registry view.
void BuildFlowForgeVersionsSection(SectionTable& sections, bool is32Bit);
void BuildActiveKorSection(SectionTable& sections, const Installation& installation);
void BuildFlowForgeSection(SectionTable& sections, const Installation& installation);
void BuildRtosSection(SectionTable& sections, const Installation& installation);
