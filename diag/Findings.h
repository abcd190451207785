// What is wrong with this installation, one finding for each cause.
#pragma once

#include <vector>

#include "diag/CatalogueAnswer.h"

enum class Severity { Warning, Error };

struct Finding {
    Severity How;
    Cause What;
    // The ids of the items, or the sections and questions in words, that suffer from it.
    std::vector<CKORString> Subjects;
};

// Errors are: the launcher shows its message or an empty window, or a link or a section of a
// product that is installed is missing. Everything else is a warning. In the order of the page.
std::vector<Finding> FindFaults(const PageState& state, const CatalogueAnswer& catalogue);
