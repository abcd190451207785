// The tables of roots, and the searches in them.
#include "registry/RootTables.h"

#include <algorithm>
#include <iterator>

#include "registry/StringUtilities.h"

namespace kor {
namespace {

using Id = SymbolicRootId;

// The maker's keys; RTX and RTXUser hold the real-time extension's copies of the two halves.
#define KOR_KEY L"Software\\Vantrel\\"
#define KOR_LIBRARY L"Vantrel Imaging Library\\"
#define KOR_RTX KOR_KEY KOR_LIBRARY L"RTX\\"
#define KOR_RTX_USER KOR_KEY KOR_LIBRARY L"RTXUser\\"
#define KOR_KEY_32 L"Software\\Wow6432Node\\Vantrel\\"

// Roots 2, 4 and 6 to 8 break the pattern: docs/quirks.md.
constexpr SymbolicRoot SymbolicRoots[] = {
    {Id::LocalMachineRuntime,
     L"M_KOR_HKEY_LOCAL_MACHINE_RUNTIME",
     {PredefinedRoot::LocalMachine, KOR_KEY KOR_LIBRARY L"Runtime\\"},
     {PredefinedRoot::LocalMachine, KOR_RTX KOR_LIBRARY L"Runtime\\"},
     1,
     Id::LocalMachineRuntime},
    {Id::CurrentUserRuntime,
     L"M_KOR_HKEY_CURRENT_USER_RUNTIME",
     {PredefinedRoot::CurrentUser, KOR_KEY KOR_LIBRARY L"Runtime\\"},
     {PredefinedRoot::LocalMachine, KOR_RTX_USER KOR_LIBRARY L"Runtime\\"},
     2,
     Id::CurrentUserRuntime},
    {Id::LocalMachineDevelopment,
     L"M_KOR_HKEY_LOCAL_MACHINE_DEVELOPMENT",
     {PredefinedRoot::LocalMachine, KOR_KEY KOR_LIBRARY L"Development\\"},
     {PredefinedRoot::LocalMachine, KOR_RTX KOR_LIBRARY L"Development\\"},
     3,
     Id::LocalMachineDevelopment},
    {Id::CurrentUserDevelopment,
     L"M_KOR_HKEY_CURRENT_USER_DEVELOPMENT",
     {PredefinedRoot::CurrentUser, KOR_KEY KOR_LIBRARY L"Development\\"},
     {PredefinedRoot::LocalMachine, KOR_RTX_USER KOR_LIBRARY L"Development\\"},
     4,
     Id::CurrentUserDevelopment},
    {Id::LocalMachineImagingBoard,
     L"M_KOR_HKEY_LOCAL_MACHINE_IMAGING_BOARD",
     {PredefinedRoot::LocalMachine, KOR_KEY L"Imaging Board\\"},
     {PredefinedRoot::LocalMachine, KOR_RTX L"Imaging Board\\"},
     5,
     Id::LocalMachineImagingBoard},
    {Id::CurrentUserImagingBoard,
     nullptr,
     {PredefinedRoot::CurrentUser, KOR_KEY L"Imaging Board\\"},
     {PredefinedRoot::LocalMachine, KOR_RTX_USER L"Imaging Board\\"},
     0,
     Id::LocalMachineImagingBoard},
    {Id::CommonToolsFolder,
     L"M_KOR_HKEY_COMMON_TOOLS_FOLDER",
     {PredefinedRoot::LocalMachine, KOR_KEY_32 L"Vantrel Imaging Tools\\"},
     {PredefinedRoot::LocalMachine, KOR_KEY_32 KOR_LIBRARY L"RTX\\Vantrel Imaging Tools\\"},
     3,
     Id::CommonToolsFolder},
    {Id::LocalMachineRoot,
     L"M_KOR_HKEY_LOCAL_MACHINE_ROOT",
     {PredefinedRoot::LocalMachine, KOR_KEY KOR_LIBRARY},
     {PredefinedRoot::LocalMachine, KOR_RTX KOR_LIBRARY},
     7,
     Id::LocalMachineRoot},
};

constexpr RealRoot RealRoots[] = {
    {L"HKEY_CLASSES_ROOT", PredefinedRoot::ClassesRoot},
    {L"HKEY_CURRENT_USER", PredefinedRoot::CurrentUser},
    {L"HKEY_LOCAL_MACHINE", PredefinedRoot::LocalMachine},
    {L"HKEY_USERS", PredefinedRoot::Users},
    {L"HKEY_CURRENT_CONFIG", PredefinedRoot::CurrentConfig},
    {L"HKEY_DYN_DATA", PredefinedRoot::DynData},
    {L"HKEY_PERFORMANCE_DATA", PredefinedRoot::PerformanceData},
};

template <typename Row, std::size_t Size, typename Test>
const Row* FindRow(const Row (&rows)[Size], Test test) {
    const Row* const found = std::find_if(std::begin(rows), std::end(rows), test);
    return found != std::end(rows) ? found : nullptr;
}

} // namespace

HKEY HandleOf(PredefinedRoot root) {
    // The system's own definitions extend the sign of the 32-bit number.
    return reinterpret_cast<HKEY>(
        static_cast<LONG_PTR>(static_cast<std::int32_t>(static_cast<std::uint32_t>(root))));
}

const SymbolicRoot* FindSymbolicRoot(SymbolicRootId id) {
    return FindRow(SymbolicRoots, [id](const SymbolicRoot& root) { return root.Id == id; });
}

const SymbolicRoot* FindSymbolicRoot(const wchar_t* name) {
    return FindRow(SymbolicRoots, [name](const SymbolicRoot& root) {
        return root.Name != nullptr && EqualIgnoringCase(root.Name, name);
    });
}

const RealRoot* FindRealRoot(const wchar_t* name) {
    return FindRow(RealRoots,
                   [name](const RealRoot& root) { return EqualIgnoringCase(root.Name, name); });
}

const RealRoot* FindRealRoot(HKEY root) {
    return FindRow(RealRoots, [root](const RealRoot& row) { return HandleOf(row.Hive) == root; });
}

std::int32_t VolatileClassOf(SymbolicRootId id) {
    const SymbolicRoot* const root = FindSymbolicRoot(id);
    return root != nullptr ? root->VolatileClass : 0;
}

SymbolicRootId VolatileKeyRootOf(SymbolicRootId id) {
    const SymbolicRoot* const root = FindSymbolicRoot(id);
    return root != nullptr ? root->VolatileKeyIn : SymbolicRootId::None;
}

} // namespace kor
