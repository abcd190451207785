// Says in words what of a path does not exist.
#pragma once

#include "base/CKORString.h"

// The first folder on the way that does not exist or is none, else the target itself. Empty when
// the path exists. Relative paths are looked up where the file system looks them up.
CKORString WhatIsMissingOf(const CKORString& path, bool isFolder);
