// The section of the library's folders.
#include "catalogue/ItemTable.h"
#include "catalogue/SectionBuilders.h"

namespace {

using I = Installation;

constexpr ItemRow<I> Items[] = {
    {L"KOR", &I::InstallDir, L"KOR", ItemFolder},
    {L"KOR examples", &I::KorExamplesRoot, L"", ItemFolder},
    {L"KOR images", &I::InstallDir, L"Images", ItemFolder},
    {L"KOR predefined Contexts", &I::InstallDir, L"contexts", ItemFolder},
    // The last two have forward slashes: docs/quirks.md.
    {L"Corvane DTK directory", &I::KorExamplesRoot, L"/CorvaneDTK", ItemFolder},
    {L"Sorbel DTK directory", &I::KorExamplesRoot, L"/SorbelDTK", ItemFolder},
};

} // namespace

void BuildFoldersSection(Catalogue& catalogue, const Installation& installation) {
    AddItems(catalogue, AddSection(catalogue, L"FOLDERS", FoldersTitle), Items, installation);
}
