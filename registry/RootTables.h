// The names that may stand at the front of a registry path: symbolic roots, which are the library's
// own key trees in two layouts, and the system's real roots. Not installed.
#pragma once

#include <windows.h>

#include <cstdint>

#include "registry/SymbolicRoots.h"

namespace kor {

// A predefined root as a number: a handle cannot be a constant expression.
enum class PredefinedRoot : std::uint32_t {
    ClassesRoot = 0x80000000U,
    CurrentUser = 0x80000001U,
    LocalMachine = 0x80000002U,
    Users = 0x80000003U,
    PerformanceData = 0x80000004U,
    CurrentConfig = 0x80000005U,
    DynData = 0x80000006U,
};

// A hive and the subkey below it, which ends with a backslash.
struct RootLocation {
    PredefinedRoot Hive;
    const wchar_t* Prefix;
};

struct SymbolicRoot {
    SymbolicRootId Id;
    const wchar_t* Name; // null when the root can be reached by its id only
    RootLocation Plain;
    RootLocation Rtx;
    std::int32_t VolatileClass;   // 0: the root has no volatile keys of its own
    SymbolicRootId VolatileKeyIn; // the root that gets the stamped key "volatile"

    const RootLocation& In(bool rtxLayout) const { return rtxLayout ? Rtx : Plain; }
};

struct RealRoot {
    const wchar_t* Name;
    PredefinedRoot Hive;
};

HKEY HandleOf(PredefinedRoot root);

// Null when there is no such root. Names are compared without regard to case.
const SymbolicRoot* FindSymbolicRoot(SymbolicRootId id);
const SymbolicRoot* FindSymbolicRoot(const wchar_t* name);
const RealRoot* FindRealRoot(const wchar_t* name);
const RealRoot* FindRealRoot(HKEY root);

// The VolatileClass of a root, 0 for an id that names none.
std::int32_t VolatileClassOf(SymbolicRootId id);
// The root that gets the stamped key "volatile" of the root, None for an id that names none.
SymbolicRootId VolatileKeyRootOf(SymbolicRootId id);

} // namespace kor
