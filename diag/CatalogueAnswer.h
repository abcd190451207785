// What the page shows, what it does not, and why: asked once, when the page has been composed, so
// that no answer contradicts another one.
#pragma once

#include <vector>

#include "diag/PageState.h"

struct CatalogueAnswer {
    explicit CatalogueAnswer(const PageState& state);

    struct Item {
        const ControlCenterItem* Item;
        bool IsShown;
        CKORString Why; // empty for an item that is shown
    };
    struct Section {
        const ControlCenterSection* Section;
        std::vector<Item> Items;
    };
    struct NotBuilt {
        const Omission* Note;
        CKORString Why;
    };

    // What they point to belongs to the page.
    std::vector<Section> Sections;
    std::vector<NotBuilt> Omitted;
};
