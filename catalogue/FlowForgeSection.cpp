// The section of the one Flow Forge that the installation names.
#include "catalogue/ItemTable.h"
#include "catalogue/SectionBuilders.h"

namespace {

constexpr wchar_t Title[] = L"Flow Forge";

using I = Installation;

constexpr ItemRow<I> Items[] = {
    {L"Vantrel Flow Forge", &I::FlowForgeInstallDir, L"FlowForge.exe", ItemProgram},
    {L"Vantrel Flow Forge Help file", &I::FlowForgeInstallDir,
     L"Documentation/FlowForgeUserGuide.chm", ItemDocument},
    {L"Vantrel Orvex 40 Installation and Technical Reference", &I::FlowForgeInstallDir,
     L"/Documentation/Orvex40_FF_TechRef.pdf", ItemDocument},
    {L"List of tutorials", &I::FlowForgeInstallDir, L"/StartPage/Tutorials.html", ItemDocument},
};

} // namespace

void BuildFlowForgeSection(Catalogue& catalogue, const Installation& installation) {
    // Without a folder the program's name would be looked up in the current one.
    const CKORString& folder = installation.FlowForgeInstallDir;
    const CKORString program = folder.Length() > 0 ? folder + L"FlowForge.exe" : CKORString();
    if (program.Length() > 0 && kor::PathExists(program.Text())) {
        AddItems(catalogue, AddSection(catalogue, L"FLOWFORGE", Title), Items, installation);
    } else {
        catalogue.Omissions.Add({Title, L"", L"the program does not exist", Looked::AtFile, program,
                                 &I::FlowForgeInstallDir});
    }
}
