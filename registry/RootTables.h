// The names that may stand at the front of a registry path: symbolic roots, which are the library's
// own key trees in two layouts, and the system's real roots. Not installed.
#pragma once

#include <windows.h>

#include <cstdint>

#include "registry/SymbolicRoots.h"

namespace kor {

// A predefined root as a number: a handle cannot be a constant expression.
enum class Hive : std::uint32_t {
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
    Hive hive;
    const wchar_t* prefix;
};

struct SymbolicRoot {
    SymbolicRootId id;
    const wchar_t* name; // null when the root can be reached by its id only
    RootLocation plain;
    RootLocation rtx;
    std::int32_t volatileClass;   // 0: the root has no volatile keys of its own
    SymbolicRootId volatileKeyIn; // the root that gets the stamped key "volatile"

    const RootLocation& In(bool rtxLayout) const { return rtxLayout ? rtx : plain; }
};

struct RealRoot {
    const wchar_t* name;
    Hive hive;
};

HKEY HandleOf(Hive hive);

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
