// What differs between two reports, whatever order their entries have and whenever they were made.
#pragma once

#include <string>
#include <vector>

#include "diag/JsonValue.h"

struct Difference {
    std::wstring Path;  // such as queries["install folder"].result
    const JsonValue* A; // in the report; null when it has no such value
    const JsonValue* B;
};

// In the order of a; what only b has comes behind what is beside it in a. The differences point
// into the reports.
std::vector<Difference> Compare(const JsonValue& a, const JsonValue& b);
