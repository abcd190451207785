// The section of ActiveKOR, which is there when its control is installed.
#include "catalogue/ItemTable.h"
#include "catalogue/SectionBuilders.h"

namespace {

constexpr wchar_t Title[] = L"ActiveKOR";

using I = Installation;

constexpr ItemRow<I> Items[] = {
    // Written unlike the one in Quick Start: docs/quirks.md.
    {L"Sample Gallery",
     &I::InstallDir,
     L"Tools/SampleGallery.exe",
     ItemProgram,
     L" /ActiveKOR",
     {IsDirectory, &I::ActiveKorExamplesRoot, L"the examples root is not an existing folder"}},
    // Opened by its association, not in the help viewer.
    {L"ActiveKOR Help file", &I::InstallDir, L"ActiveKOR/Help/ActiveKORHelp.chm", ItemDocument},
    {L"ActiveKOR directory", &I::InstallDir, L"ActiveKOR", ItemFolder},
    {L"ActiveKOR examples directory", &I::ActiveKorExamplesRoot, L"", ItemFolder},
    {L"Debugging session demo", &I::InstallDir, L"ActiveKOR/Demos/AKORDebug.exe", ItemProgram},
    {L"Processing session demo", &I::InstallDir, L"ActiveKOR/Demos/AKORGMFProject.exe",
     ItemProgram},
    {L"Read me file", &I::InstallDir, L"ActiveKOR/ReadMe.html", ItemDocument},
};

} // namespace

void BuildActiveKorSection(Catalogue& catalogue, const Installation& installation) {
    const CKORString control = installation.InstallDir + L"ActiveKOR/Controls/kor.ocx";
    if (kor::PathExists(control.Text())) {
        AddItems(catalogue, AddSection(catalogue, L"ACTIVEKOR", Title), Items, installation);
    } else {
        catalogue.Omissions.Add({Title, L"", L"the control file does not exist", Looked::AtFile,
                                 control, &I::InstallDir});
    }
}
