// What the catalogue knows of the installation: four folders, each empty when it is not known.
#pragma once

#include "base/CKORString.h"

// What the path of an item begins with. The last three belong to one version of Flow Forge.
enum class PathBase {
    None,
    InstallDir,
    ActiveKorExamplesRoot,
    KorExamplesRoot,
    FlowForgeInstallDir,
    VersionInstallFolder,
    VersionExamplesFolder,
    RuntimeManager,
};

// The texts are used as prefixes as they stand; an install folder is expected to end in a
// backslash.
struct Installation {
    CKORString InstallDir;
    CKORString ActiveKorExamplesRoot;
    CKORString KorExamplesRoot;
    CKORString FlowForgeInstallDir;
};
