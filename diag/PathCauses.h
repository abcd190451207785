// Why the target of an item is not there.
#pragma once

#include <vector>

#include "catalogue/ControlCenterItem.h"
#include "catalogue/Installation.h"
#include "diag/Cause.h"

// From the symptom to what lies deepest; empty when the path exists and its beginning is sound.
std::vector<Cause> CausesOfPath(const CKORString& path, PathBase base, bool isFolder,
                                const Installation& installation);
