// What the catalogue knows of the installation: four folders, each empty when it is not known.
#pragma once

#include "base/CKORString.h"

// The texts are used as prefixes as they stand; an install folder is expected to end in a
// backslash.
struct Installation {
    CKORString InstallDir;
    CKORString ActiveKorExamplesRoot;
    CKORString KorExamplesRoot;
    CKORString FlowForgeInstallDir;
};

// The one of the texts that a path begins with; null when it begins with none, as the paths of a
// Flow Forge version do.
using PathBase = CKORString Installation::*;
