// The symbolic roots, which may stand at the front of a registry path: the library's own key trees.
#pragma once

#include <cstdint>

// The numeric identity of a symbolic root. Any other number names no root.
enum class SymbolicRootId : std::uint32_t {
    None = 0,
    LocalMachineRuntime = 1,
    CurrentUserRuntime = 2,
    LocalMachineDevelopment = 3,
    CurrentUserDevelopment = 4,
    LocalMachineImagingBoard = 5,
    CurrentUserImagingBoard = 6,
    CommonToolsFolder = 7,
    LocalMachineRoot = 8,
};
