// The section of what somebody opens first.
#include "catalogue/ItemTable.h"
#include "catalogue/SectionBuilders.h"

namespace {

using I = Installation;

constexpr wchar_t HelpFile[] = L"KOR\\DOC\\help\\KORHelp.chm";
// The help file's redirect page leads to what is new.
constexpr wchar_t WhatsNewTopic[] =
    L"::/redirect.xhtm#z_KOR_Readme_whatsnew_processing.chm::/whatsnew_processing.htm";

constexpr ItemRow<I> Items[] = {
    // The argument begins with a blank: docs/quirks.md.
    {L"Vantrel Sample Gallery",
     &I::InstallDir,
     L"Tools\\SampleGallery.exe",
     ItemProgram,
     L" /KOR",
     {IsDirectory, &I::KorExamplesRoot, L"the examples root is not an existing folder"}},
    {L"KOR Help", &I::InstallDir, HelpFile, ItemHelpTopic},
    {L"KOR Release Notes", &I::InstallDir, HelpFile, ItemHelpTopic, WhatsNewTopic},
};

} // namespace

void BuildQuickStartSection(Catalogue& catalogue, const Installation& installation) {
    AddItems(catalogue, AddSection(catalogue, L"KOR", QuickStartTitle), Items, installation);
}
