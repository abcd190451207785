// The section of the real-time variant, which is there when its registry key is.
#include "catalogue/ItemTable.h"
#include "catalogue/SectionBuilders.h"
#include "registry/CRegistryKey.h"

namespace {

constexpr wchar_t RtxKey[] = L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantrel\\Vantrel Imaging Library\\RTX";

constexpr wchar_t Title[] = L"KOR for RTOS";

using I = Installation;

constexpr ItemRow<I> Items[] = {
    // The program of General Tools in its other mode, with a forward slash: docs/quirks.md.
    {L"KORConfig for RTOS", &I::InstallDir, L"Tools/KorConfig.exe", ItemProgram, L"-rtxmode"},
    {L"KOR RTOS Examples", &I::KorExamplesRoot, L"KORRTOS", ItemFolder, L"", {}, Join::PathPiece},
};

} // namespace

void BuildRtosSection(Catalogue& catalogue, const Installation& installation) {
    // The key's existence alone decides.
    CRegistryKey key;
    if (!key.Open(RtxKey, false)) {
        catalogue.Omissions.Add({Title, L"", L"the registry key does not exist or cannot be read",
                                 Looked::AtRegistryKey, RtxKey, nullptr});
        return;
    }
    AddItems(catalogue, AddSection(catalogue, L"RT", Title), Items, installation);
    key.Close(false);
}
