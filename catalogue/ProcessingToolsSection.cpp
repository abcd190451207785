// The section of the tools for processing images.
#include "catalogue/ItemTable.h"
#include "catalogue/SectionBuilders.h"

namespace {

using I = Installation;

// With forward slashes: docs/quirks.md.
constexpr ItemRow<I> Items[] = {
    {L"KOR Wingman", &I::InstallDir, L"KOR Wingman/korwingman.exe", ItemProgram},
    {L"Vantrel Symbol Decoder", &I::InstallDir, L"Tools/SymbolDecoder.exe", ItemProgram},
    {L"Vantrel Hue Survey", &I::InstallDir, L"Tools/HueSurvey.exe", ItemProgram},
    {L"Vantrel Contour Tracer", &I::InstallDir, L"Tools/ContourTracer.exe", ItemProgram},
    {L"Vantrel GaugeBench", &I::InstallDir, L"Tools/GaugeBench.exe", ItemProgram},
    {L"Vantrel Shape Locator", &I::InstallDir, L"Tools/ShapeLocator.exe", ItemProgram},
    {L"Vantrel Glyph Scanner", &I::InstallDir, L"Tools/GlyphScanner.exe", ItemProgram},
    {L"Vantrel Text Spotter", &I::InstallDir, L"Tools/TextSpotter.exe", ItemProgram},
    {L"Vantrel Lookout", &I::InstallDir, L"Lookout/Lkout32.exe", ItemProgram},
};

} // namespace

void BuildProcessingToolsSection(Catalogue& catalogue, const Installation& installation) {
    AddItems(catalogue, AddSection(catalogue, L"GUI", L"Processing Tools"), Items, installation);
}
