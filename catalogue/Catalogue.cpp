// Builds the catalogue, places its sections, and finds an item by its id.
#include "catalogue/Catalogue.h"

#include <cwchar>

#include "catalogue/SectionBuilders.h"
#include "registry/StringUtilities.h"

namespace {

constexpr wchar_t NotDevelopment[] = L"this is not a development installation";

std::int64_t FindLast(const CKORString& text, wchar_t character) {
    std::int64_t position = text.Length() - 1;
    while (position >= 0 && text[position] != character) {
        --position;
    }
    return position;
}

} // namespace

Catalogue::~Catalogue() {
    DeleteAll(*this);
}

void Catalogue::Build(const Installation& installation, bool isDevelopment) {
    DeleteAll(*this);
    Omissions.SetSize(0, false);
    if (isDevelopment) {
        BuildQuickStartSection(*this, installation);
        BuildFoldersSection(*this, installation);
    } else {
        Omissions.Add(
            {QuickStartTitle, L"", NotDevelopment, Looked::AtInstallationType, L"", nullptr});
        Omissions.Add(
            {FoldersTitle, L"", NotDevelopment, Looked::AtInstallationType, L"", nullptr});
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

// Takes apart what the item's constructor made: the section's key, '_' and the item's index.
const ControlCenterItem* Catalogue::FindItem(const CKORString& id) const {
    const std::int64_t separator = FindLast(id, L'_');
    if (separator < 0) {
        return nullptr;
    }
    const long index = _wtol(id.Text() + separator + 1);
    // No item has such an index; an element of the page may say anything, and nothing may be read
    // before a section's first item.
    if (index < 0) {
        return nullptr;
    }
    const CKORString key = id.Left(separator);
    for (const ControlCenterSection* const section : *this) {
        if (kor::EqualIgnoringCase(section->Key.Text(), key.Text()) && section->Count() > index &&
            (*section)[index] != nullptr) {
            return (*section)[index];
        }
    }
    return nullptr;
}
