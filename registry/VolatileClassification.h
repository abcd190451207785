// Tells which registry paths lie in a volatile location, one whose keys vanish when the system
// restarts. Such a location is the key "volatile" directly below a symbolic root, with everything
// in it.
#pragma once

#include "base/CKORString.h"
#include "registry/SymbolicRoots.h"

namespace kor {

enum class VolatileKind {
    Refused = -1,         // the path names "volatile" where no volatile location is
    Ordinary = 0,         // the path does not name "volatile"
    Volatile = 1,         // the path lies in a volatile location
    OrdinaryReadOnly = 2, // as Refused, but tolerated: nothing would be created there
};

// id is the symbolic root that the sub-path is below. With None, rootName is a real root's name,
// and a volatile location that the path reaches that way changes id to its symbolic root.
VolatileKind ClassifyVolatile(const CKORString& subPath, const wchar_t* rootName,
                              SymbolicRootId& id, bool create, bool rtxLayout);

} // namespace kor
