// The catalogue: the sections that this installation gives, in the order of the page, and a note on
// each section or item that was left out, for whoever is asked why it is missing.
#pragma once

#include "base/CKORString.h"
#include "base/CTable1D.h"
#include "catalogue/ControlCenterSection.h"
#include "catalogue/Installation.h"

// What was looked at before a section or an item was left out.
enum class Looked { AtInstallationType, AtRegistryKey, AtFile, AtFolder };

struct Omission {
    CKORString Title;      // of the section
    CKORString Label;      // of the item; empty when the whole section was left out
    const wchar_t* Reason; // in words; not owned
    Looked Where;
    CKORString Path; // of the registry key, the file or the folder
    PathBase Base;   // of the file or the folder
    // The registry key that tells a version's folder, of a file in it.
    CKORString VersionKey = CKORString();
};

// Owns its sections. The builders of the sections append to it.
class Catalogue : public CTable1D<ControlCenterSection*> {
public:
    Catalogue() = default;
    ~Catalogue() override;

    // Makes the sections that the installation gives, and the notes, in place of those of before.
    // Quick Start and Folders belong to development installations only.
    void Build(const Installation& installation, bool isDevelopment);

    // Gives each section its place, left to right, columnCount to a row. Returns the number of
    // rows, at least 1.
    std::int64_t PlaceOnGrid(std::int64_t columnCount);

    // The item that an element's id leads to, null when there is none. Several sections may have
    // the same key; one that has too few items is passed over.
    const ControlCenterItem* FindItem(const CKORString& id) const;

    CTable1D<Omission> Omissions;
};
