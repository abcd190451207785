// What the page shows, what it does not, and why: asked once, when the page has been composed, so
// that no answer contradicts another one.
#pragma once

#include <vector>

#include "diag/Cause.h"
#include "diag/PageState.h"

struct CatalogueAnswer {
    explicit CatalogueAnswer(const PageState& state);

    struct Item {
        const ControlCenterItem* Item;
        bool IsThere; // its target exists
        bool IsShown; // on a page that shows the sections, too
        // Of a target that does not exist, from the symptom to what lies deepest.
        std::vector<Cause> Causes;
        CKORString Why; // the causes in words; empty for an item that is shown
    };
    struct Section {
        const ControlCenterSection* Section;
        std::vector<Item> Items;
    };
    struct NotBuilt {
        const Omission* Note;
        std::vector<Cause> Causes; // of a file or folder
        CKORString Why;
    };

    // What they point to belongs to the page.
    std::vector<Section> Sections;
    std::vector<NotBuilt> Omitted;
};
