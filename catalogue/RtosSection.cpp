#include "catalogue/ItemTable.h"
#include "catalogue/SectionBuilders.h"
#include "registry/CRegistryKey.h"

namespace {

constexpr wchar_t RtxKey[] = L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantrel\\Vantrel Imaging Library\\RTX";

using I = Installation;

constexpr ItemRow<I> Items[] = {
    // The program of General Tools in its other mode, written with a forward slash: intended.
    {L"KORConfig for RTOS", &I::InstallDir, L"Tools/KorConfig.exe", ItemProgram, L"-rtxmode"},
    {L"KOR RTOS Examples", &I::KorExamplesRoot, L"KORRTOS", ItemFolder, L"", nullptr,
     Join::PathPiece},
};

} // namespace

void BuildRtosSection(SectionTable& sections, const Installation& installation) {
    // The key's existence alone decides.
    CRegistryKey key;
    if (!key.Open(RtxKey, false)) {
        return;
    }
    AddItems(AddSection(sections, L"RT", L"KOR for RTOS"), Items, installation);
    key.Close(false);
}
