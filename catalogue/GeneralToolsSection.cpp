// The section of the tools that everybody needs.
#include <windows.h>

#include <shlwapi.h>

#include "catalogue/ItemTable.h"
#include "catalogue/SectionBuilders.h"

namespace {

bool IsFilledDirectory(const CKORString& target) {
    return IsExistingDirectory(target.Text()) && PathIsDirectoryEmptyW(target.Text()) == FALSE;
}

using I = Installation;

constexpr ItemRow<I> Items[] = {
    {L"KORConfig", &I::InstallDir, L"Tools\\KorConfig.exe", ItemProgram},
    {L"Vantrel Framewright", &I::InstallDir, L"Framewright\\Framewright.exe", ItemProgram},
    // The other label is seen only when the target is a folder: docs/quirks.md.
    {L"Vantrel TimeScope",
     &I::InstallDir,
     L"Tools\\TimeScope.exe",
     ItemProgram,
     L"",
     {},
     Join::PathPiece,
     L"KORTimeScope"},
    {L"Vantrel Grab Studio", &I::InstallDir, L"Tools\\GrabStudio.exe", ItemProgram},
    {L"Tutorials directory",
     &I::InstallDir,
     L"Tutorial videos",
     ItemFolder,
     L"",
     {IsFilledDirectory, nullptr, L"the folder is missing or empty"},
     Join::PathPiece},
};

} // namespace

void BuildGeneralToolsSection(Catalogue& catalogue, const Installation& installation) {
    AddItems(catalogue, AddSection(catalogue, L"TOOLS", L"General Tools"), Items, installation);
}
