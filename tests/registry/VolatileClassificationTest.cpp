// Which paths lie in a volatile location.
#include "registry/VolatileClassification.h"

#include <gtest/gtest.h>

#include <string>

using namespace kor;

namespace {

struct Row {
    const wchar_t* subPath;
    const wchar_t* rootName;
    std::uint32_t id;
    bool create;
    bool rtx;
    int kind;
    std::uint32_t idAfter;
};

constexpr wchar_t LocalMachine[] = L"HKEY_LOCAL_MACHINE";
constexpr wchar_t CurrentUser[] = L"HKEY_CURRENT_USER";
#define LIBRARY L"Software\\Vantrel\\Vantrel Imaging Library\\"

constexpr Row Rows[] = {
    // Paths that do not say "volatile" at all.
    {L"", L"", 1, true, false, 0, 1},
    {L"install", L"", 1, true, false, 0, 1},
    {L"Software", LocalMachine, 0, true, false, 0, 0},
    // Below symbolic roots only the first component counts.
    {L"volatile", L"", 1, true, false, 1, 1},
    {L"VOLATILE", L"", 2, false, false, 1, 2},
    {L"volatile\\a", L"", 2, true, false, 1, 2},
    {L"volatile/a", L"", 2, true, false, 1, 2},
    {L"Volatile\\a\\volatile", L"", 6, true, false, 1, 6},
    {L"volatile\\", L"", 3, true, false, 1, 3},
    {L"volatile\\\\\\", L"", 3, true, false, 1, 3},
    {L"a\\volatile", L"", 2, true, false, -1, 2},
    {L"Settings\\volatile", L"", 2, false, false, -1, 2},
    {L"NonVolatile", L"", 2, true, false, -1, 2},
    {L"volatile2", L"", 2, true, false, -1, 2},
    {L"volatile2\\a", L"", 2, true, false, -1, 2},
    {L"volatile a", L"", 99, true, false, -1, 99},
    {L"volatile", L"", 99, true, false, 1, 99},
    // The separator is looked for where the path as it was passed has it.
    {L"\\volatile", L"", 1, true, false, 1, 1},
    {L"\\volatile\\", L"", 1, true, false, 1, 1},
    {L"\\\\volatile\\\\\\", L"", 1, true, false, 1, 1},
    {L"\\volatile\\a", L"", 1, true, false, -1, 1},
    {L"\\\\volatile\\a", L"", 1, true, false, -1, 1},
    {L"\\volatil\\volatile", L"", 1, true, false, -1, 1},
    // Below real roots the symbolic roots' own locations are found.
    {LIBRARY L"Runtime\\Volatile\\x", LocalMachine, 0, true, false, 1, 1},
    {LIBRARY L"Runtime\\volatile", L"hkey_local_machine", 0, false, false, 1, 1},
    {L"\\\\" LIBRARY L"Runtime\\VOLATILE\\\\", LocalMachine, 0, true, false, 1, 1},
    {LIBRARY L"Runtime\\volatile/x", LocalMachine, 0, true, false, 1, 1},
    {LIBRARY L"Development\\volatile\\x", LocalMachine, 0, true, false, 1, 3},
    {L"SOFTWARE\\VANTREL\\IMAGING BOARD\\VOLATILE", LocalMachine, 0, true, false, 1, 5},
    {LIBRARY L"volatile\\x", LocalMachine, 0, true, false, 1, 8},
    {L"Software\\Wow6432Node\\Vantrel\\Vantrel Imaging Tools\\volatile", LocalMachine, 0, true,
     false, 1, 7},
    {LIBRARY L"Runtime\\volatile", CurrentUser, 0, true, false, 1, 2},
    {LIBRARY L"Runtime\\volatile", L"hkey_current_user", 0, true, false, 1, 2},
    {LIBRARY L"Development\\volatile\\x", CurrentUser, 0, true, false, 1, 4},
    // The current user's imaging board is no candidate.
    {L"Software\\Vantrel\\Imaging Board\\volatile", CurrentUser, 0, true, false, -1, 0},
    {L"Software\\Vantrel\\Imaging Board\\volatile", CurrentUser, 0, false, false, 2, 0},
    // Everything else is refused when something would be created.
    {LIBRARY L"Runtime\\volatile2", LocalMachine, 0, true, false, -1, 0},
    {LIBRARY L"Runtime\\volatile2", LocalMachine, 0, false, false, 2, 0},
    {LIBRARY L"Runtime\\a\\volatile", LocalMachine, 0, true, false, -1, 0},
    {LIBRARY L"Runtime\\a\\volatile", LocalMachine, 0, false, false, 2, 0},
    {L"x\\volatile", L"HKEY_USERS", 0, true, false, -1, 0},
    {L"x\\volatile", L"HKEY_USERS", 0, false, false, 2, 0},
    {L"x\\volatile", L"HKLM", 0, true, false, -1, 0},
    {L"x\\volatile", L"HKLM", 0, false, false, 2, 0},
    {L"x\\volatile", L"", 0, true, false, -1, 0},
    {L"x\\volatile", L"", 0, false, false, 2, 0},
    // At the very front it is refused in any case.
    {L"volatile", LocalMachine, 0, false, false, -1, 0},
    {L"\\volatile\\x", LocalMachine, 0, false, false, -1, 0},
    {L"volatile2", CurrentUser, 0, false, false, -1, 0},
    // The real-time layout has its own locations; those of the current user are compared below the
    // current user although they lie below the local machine.
    {LIBRARY L"RTX\\Vantrel Imaging Library\\Runtime\\volatile", LocalMachine, 0, true, true, 1, 1},
    {LIBRARY L"RTX\\Vantrel Imaging Library\\Development\\volatile\\x", LocalMachine, 0, true, true,
     1, 3},
    {LIBRARY L"RTX\\Imaging Board\\volatile", LocalMachine, 0, true, true, 1, 5},
    {LIBRARY L"RTX\\Vantrel Imaging Library\\volatile\\x", LocalMachine, 0, true, true, 1, 8},
    {L"Software\\Wow6432Node\\Vantrel\\Vantrel Imaging Library\\RTX\\Vantrel Imaging "
     L"Tools\\volatile",
     LocalMachine, 0, true, true, 1, 7},
    {LIBRARY L"RTXUser\\Vantrel Imaging Library\\Runtime\\volatile", CurrentUser, 0, true, true, 1,
     2},
    {LIBRARY L"RTXUser\\Vantrel Imaging Library\\Development\\volatile", CurrentUser, 0, true, true,
     1, 4},
    {LIBRARY L"RTXUser\\Vantrel Imaging Library\\Runtime\\volatile", LocalMachine, 0, true, true,
     -1, 0},
    {LIBRARY L"Runtime\\volatile", LocalMachine, 0, false, true, 2, 0},
};

TEST(VolatileClassification, FollowsTheTable) {
    for (const Row& row : Rows) {
        SCOPED_TRACE(testing::Message()
                     << "path " << testing::PrintToString(std::wstring(row.subPath)) << " root "
                     << row.id << " create " << row.create);
        auto id = static_cast<SymbolicRootId>(row.id);
        const VolatileKind kind =
            ClassifyVolatile(row.subPath, row.rootName, id, row.create, row.rtx);
        EXPECT_EQ(static_cast<int>(kind), row.kind);
        EXPECT_EQ(static_cast<std::uint32_t>(id), row.idAfter);
    }
}

TEST(VolatileClassification, TakesATextWithoutStorage) {
    CKORString nothing;
    nothing.SetSize(0, false);
    SymbolicRootId id = SymbolicRootId::LocalMachineRuntime;
    EXPECT_EQ(ClassifyVolatile(nothing, L"", id, true, false), VolatileKind::Ordinary);
}

} // namespace
