// What the builders of the page's sections append to: the sections, and a note on each section or
// item that was left out, for whoever is asked why it is missing.
#pragma once

#include "base/CKORString.h"
#include "base/CTable1D.h"
#include "catalogue/ControlCenterSection.h"
#include "catalogue/Installation.h"

struct Omission {
    CKORString Title;      // of the section
    CKORString Label;      // of the item; empty when the whole section was left out
    const wchar_t* Reason; // in words; not owned
    CKORString Tested;     // the path that was tested, empty when none was
    PathBase Base;         // what that path begins with; None for a registry path
};

// Does not own its sections: the catalogue does.
class SectionTable : public CTable1D<ControlCenterSection*> {
public:
    CTable1D<Omission> Omissions;
};
