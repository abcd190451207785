// The sections whose rows do not depend on the registry's lists. The tables here are written by
// hand; they are not derived from the product's.
#include <gtest/gtest.h>
#include <windows.h>

#include "tests/catalogue/ExpectedItem.h"
#include "tests/support/TestInstallation.h"

namespace {

using test::ExpectSection;

enum { Program = 0, Folder = 1, Document = 2, HelpTopic = 4 };

constexpr wchar_t Topic[] =
    L"::/redirect.xhtm#z_KOR_Readme_whatsnew_processing.chm::/whatsnew_processing.htm";

Installation AtTestFolder() {
    Installation installation;
    installation.InstallDir = L"C:\\KorTest\\";
    installation.KorExamplesRoot = L"C:\\KorTest\\Ex";
    installation.ActiveKorExamplesRoot = L"C:\\KorTest\\AEx";
    installation.FlowForgeInstallDir = L"C:\\KorTest\\FF\\";
    return installation;
}

TEST(QuickStartSection, WithExamples) {
    const test::TestInstallation files;
    files.MakeFolder(L"C:\\KorTest\\Ex");
    Catalogue sections;
    BuildQuickStartSection(sections, AtTestFolder());
    ASSERT_EQ(sections.Count(), 1);
    ExpectSection(
        *sections[0], L"KOR", L"Quick Start",
        {{L"Vantrel Sample Gallery", L"C:\\KorTest\\Tools\\SampleGallery.exe", Program, L" /KOR",
          L"KOR_0"},
         {L"KOR Help", L"C:\\KorTest\\KOR\\DOC\\help\\KORHelp.chm", HelpTopic, L"", L"KOR_1"},
         {L"KOR Release Notes", L"C:\\KorTest\\KOR\\DOC\\help\\KORHelp.chm", HelpTopic, Topic,
          L"KOR_2"}});
}

TEST(QuickStartSection, WithoutExamplesTheHelpTakesTheFirstId) {
    const test::TestInstallation files;
    for (const bool isFile : {false, true}) {
        if (isFile) {
            files.MakeFile(L"C:\\KorTest\\Ex");
        }
        Catalogue sections;
        BuildQuickStartSection(sections, AtTestFolder());
        ASSERT_EQ(sections.Count(), 1);
        ExpectSection(
            *sections[0], L"KOR", L"Quick Start",
            {{L"KOR Help", L"C:\\KorTest\\KOR\\DOC\\help\\KORHelp.chm", HelpTopic, L"", L"KOR_0"},
             {L"KOR Release Notes", L"C:\\KorTest\\KOR\\DOC\\help\\KORHelp.chm", HelpTopic, Topic,
              L"KOR_1"}});
    }
}

TEST(QuickStartSection, AnInstallFolderWithoutBackslashIsNotRepaired) {
    const test::TestInstallation files;
    files.MakeFolder(L"C:\\KorTest\\Ex");
    Installation installation = AtTestFolder();
    installation.InstallDir = L"C:\\Lib";
    Catalogue sections;
    BuildQuickStartSection(sections, installation);
    EXPECT_STREQ((*sections[0])[0]->Path.Text(), L"C:\\LibTools\\SampleGallery.exe");
}

TEST(FoldersSection, HasTheLibrarysFolders) {
    Catalogue sections;
    BuildFoldersSection(sections, AtTestFolder());
    ASSERT_EQ(sections.Count(), 1);
    ExpectSection(
        *sections[0], L"FOLDERS", L"Folders",
        {{L"KOR", L"C:\\KorTest\\KOR", Folder, L"", L"FOLDERS_0"},
         {L"KOR examples", L"C:\\KorTest\\Ex", Folder, L"", L"FOLDERS_1"},
         {L"KOR images", L"C:\\KorTest\\Images", Folder, L"", L"FOLDERS_2"},
         {L"KOR predefined Contexts", L"C:\\KorTest\\contexts", Folder, L"", L"FOLDERS_3"},
         {L"Corvane DTK directory", L"C:\\KorTest\\Ex/CorvaneDTK", Folder, L"", L"FOLDERS_4"},
         {L"Sorbel DTK directory", L"C:\\KorTest\\Ex/SorbelDTK", Folder, L"", L"FOLDERS_5"}});
}

TEST(FoldersSection, WithoutAnExamplesRoot) {
    Installation installation = AtTestFolder();
    installation.KorExamplesRoot = L"";
    Catalogue sections;
    BuildFoldersSection(sections, installation);
    const ControlCenterSection& section = *sections[0];
    EXPECT_STREQ(section[1]->Path.Text(), L"");
    EXPECT_STREQ(section[4]->Path.Text(), L"/CorvaneDTK");
    EXPECT_STREQ(section[5]->Path.Text(), L"/SorbelDTK");
}

TEST(GeneralToolsSection, WithEverything) {
    const test::TestInstallation files;
    files.MakeFile(L"C:\\KorTest\\Tools\\TimeScope.exe");
    files.MakeFile(L"C:\\KorTest\\Tutorial videos\\one.mp4");
    Catalogue sections;
    BuildGeneralToolsSection(sections, AtTestFolder());
    ASSERT_EQ(sections.Count(), 1);
    ExpectSection(
        *sections[0], L"TOOLS", L"General Tools",
        {{L"KORConfig", L"C:\\KorTest\\Tools\\KorConfig.exe", Program, L"", L"TOOLS_0"},
         {L"Vantrel Framewright", L"C:\\KorTest\\Framewright\\Framewright.exe", Program, L"",
          L"TOOLS_1"},
         {L"Vantrel TimeScope", L"C:\\KorTest\\Tools\\TimeScope.exe", Program, L"", L"TOOLS_2"},
         {L"Vantrel Grab Studio", L"C:\\KorTest\\Tools\\GrabStudio.exe", Program, L"", L"TOOLS_3"},
         {L"Tutorials directory", L"C:\\KorTest\\Tutorial videos", Folder, L"", L"TOOLS_4"}});
}

TEST(GeneralToolsSection, WithNothing) {
    const test::TestInstallation files;
    Catalogue sections;
    BuildGeneralToolsSection(sections, AtTestFolder());
    ExpectSection(
        *sections[0], L"TOOLS", L"General Tools",
        {{L"KORConfig", L"C:\\KorTest\\Tools\\KorConfig.exe", Program, L"", L"TOOLS_0"},
         {L"Vantrel Framewright", L"C:\\KorTest\\Framewright\\Framewright.exe", Program, L"",
          L"TOOLS_1"},
         {L"KORTimeScope", L"C:\\KorTest\\Tools\\TimeScope.exe", Program, L"", L"TOOLS_2"},
         {L"Vantrel Grab Studio", L"C:\\KorTest\\Tools\\GrabStudio.exe", Program, L"",
          L"TOOLS_3"}});
}

TEST(GeneralToolsSection, AFolderInTimeScopesPlaceGetsTheOtherLabel) {
    const test::TestInstallation files;
    files.MakeFolder(L"C:\\KorTest\\Tools\\TimeScope.exe");
    Catalogue sections;
    BuildGeneralToolsSection(sections, AtTestFolder());
    EXPECT_STREQ((*sections[0])[2]->Label.Text(), L"KORTimeScope");
}

TEST(GeneralToolsSection, TutorialsNeedAFolderThatHoldsSomething) {
    {
        const test::TestInstallation files;
        files.MakeFolder(L"C:\\KorTest\\Tutorial videos");
        Catalogue sections;
        BuildGeneralToolsSection(sections, AtTestFolder());
        EXPECT_EQ(sections[0]->Count(), 4) << "an empty folder";
    }
    const test::TestInstallation files;
    files.MakeFile(L"C:\\KorTest\\Tutorial videos");
    Catalogue sections;
    BuildGeneralToolsSection(sections, AtTestFolder());
    EXPECT_EQ(sections[0]->Count(), 4) << "a file of that name";
}

TEST(GeneralToolsSection, WithoutABackslashOnlyTheJoinedRowsFindTheirTargets) {
    const test::TestInstallation files;
    files.MakeFile(L"C:\\KorTest\\Tools\\TimeScope.exe");
    files.MakeFile(L"C:\\KorTest\\Tutorial videos\\one.mp4");
    Installation installation = AtTestFolder();
    installation.InstallDir = L"C:\\KorTest";
    Catalogue sections;
    BuildGeneralToolsSection(sections, installation);
    ExpectSection(
        *sections[0], L"TOOLS", L"General Tools",
        {{L"KORConfig", L"C:\\KorTestTools\\KorConfig.exe", Program, L"", L"TOOLS_0"},
         {L"Vantrel Framewright", L"C:\\KorTestFramewright\\Framewright.exe", Program, L"",
          L"TOOLS_1"},
         {L"Vantrel TimeScope", L"C:\\KorTest\\Tools\\TimeScope.exe", Program, L"", L"TOOLS_2"},
         {L"Vantrel Grab Studio", L"C:\\KorTestTools\\GrabStudio.exe", Program, L"", L"TOOLS_3"},
         {L"Tutorials directory", L"C:\\KorTest\\Tutorial videos", Folder, L"", L"TOOLS_4"}});
}

TEST(ProcessingToolsSection, ListsTheVisionTools) {
    Catalogue sections;
    BuildProcessingToolsSection(sections, AtTestFolder());
    ASSERT_EQ(sections.Count(), 1);
    ExpectSection(
        *sections[0], L"GUI", L"Processing Tools",
        {{L"KOR Wingman", L"C:\\KorTest\\KOR Wingman/korwingman.exe", Program, L"", L"GUI_0"},
         {L"Vantrel Symbol Decoder", L"C:\\KorTest\\Tools/SymbolDecoder.exe", Program, L"",
          L"GUI_1"},
         {L"Vantrel Hue Survey", L"C:\\KorTest\\Tools/HueSurvey.exe", Program, L"", L"GUI_2"},
         {L"Vantrel Contour Tracer", L"C:\\KorTest\\Tools/ContourTracer.exe", Program, L"",
          L"GUI_3"},
         {L"Vantrel GaugeBench", L"C:\\KorTest\\Tools/GaugeBench.exe", Program, L"", L"GUI_4"},
         {L"Vantrel Shape Locator", L"C:\\KorTest\\Tools/ShapeLocator.exe", Program, L"", L"GUI_5"},
         {L"Vantrel Glyph Scanner", L"C:\\KorTest\\Tools/GlyphScanner.exe", Program, L"", L"GUI_6"},
         {L"Vantrel Text Spotter", L"C:\\KorTest\\Tools/TextSpotter.exe", Program, L"", L"GUI_7"},
         {L"Vantrel Lookout", L"C:\\KorTest\\Lookout/Lkout32.exe", Program, L"", L"GUI_8"}});
}

TEST(ActiveKorSection, WithExamples) {
    const test::TestInstallation files;
    files.MakeFile(L"C:\\KorTest\\ActiveKOR\\Controls\\kor.ocx");
    files.MakeFolder(L"C:\\KorTest\\AEx");
    Catalogue sections;
    BuildActiveKorSection(sections, AtTestFolder());
    ASSERT_EQ(sections.Count(), 1);
    ExpectSection(
        *sections[0], L"ACTIVEKOR", L"ActiveKOR",
        {{L"Sample Gallery", L"C:\\KorTest\\Tools/SampleGallery.exe", Program, L" /ActiveKOR",
          L"ACTIVEKOR_0"},
         {L"ActiveKOR Help file", L"C:\\KorTest\\ActiveKOR/Help/ActiveKORHelp.chm", Document, L"",
          L"ACTIVEKOR_1"},
         {L"ActiveKOR directory", L"C:\\KorTest\\ActiveKOR", Folder, L"", L"ACTIVEKOR_2"},
         {L"ActiveKOR examples directory", L"C:\\KorTest\\AEx", Folder, L"", L"ACTIVEKOR_3"},
         {L"Debugging session demo", L"C:\\KorTest\\ActiveKOR/Demos/AKORDebug.exe", Program, L"",
          L"ACTIVEKOR_4"},
         {L"Processing session demo", L"C:\\KorTest\\ActiveKOR/Demos/AKORGMFProject.exe", Program,
          L"", L"ACTIVEKOR_5"},
         {L"Read me file", L"C:\\KorTest\\ActiveKOR/ReadMe.html", Document, L"", L"ACTIVEKOR_6"}});
}

TEST(ActiveKorSection, WithoutExamplesItHoldsSixItems) {
    const test::TestInstallation files;
    files.MakeFile(L"C:\\KorTest\\ActiveKOR\\Controls\\kor.ocx");
    Catalogue sections;
    BuildActiveKorSection(sections, AtTestFolder());
    ASSERT_EQ(sections.Count(), 1);
    ASSERT_EQ(sections[0]->Count(), 6);
    EXPECT_STREQ((*sections[0])[0]->Label.Text(), L"ActiveKOR Help file");
    EXPECT_STREQ((*sections[0])[0]->Id.Text(), L"ACTIVEKOR_0");
}

TEST(ActiveKorSection, OfNothingButItsControlFileTheDirectoryIsShown) {
    const test::TestInstallation files;
    files.MakeFile(L"C:\\KorTest\\ActiveKOR\\Controls\\kor.ocx");
    Catalogue sections;
    BuildActiveKorSection(sections, AtTestFolder());
    ASSERT_EQ(sections.Count(), 1);
    std::vector<std::wstring> shown;
    for (const ControlCenterItem* const item : *sections[0]) {
        if (item->IsShown()) {
            shown.emplace_back(item->Label.Text());
        }
    }
    EXPECT_EQ(shown, std::vector<std::wstring>{L"ActiveKOR directory"})
        << "the control file's own folder exists";
}

TEST(ActiveKorSection, NeedsTheControlFile) {
    const test::TestInstallation files;
    files.MakeFile(L"C:\\KorTest\\ActiveKOR\\Help\\ActiveKORHelp.chm");
    Catalogue sections;
    BuildActiveKorSection(sections, AtTestFolder());
    EXPECT_EQ(sections.Count(), 0);
}

TEST(RtosSection, NeedsTheKeyOnly) {
    const test::TestInstallation installed;
    installed.MakeKey(L"Vantrel\\Vantrel Imaging Library\\RTX");
    Catalogue sections;
    BuildRtosSection(sections, AtTestFolder());
    ASSERT_EQ(sections.Count(), 1);
    ExpectSection(*sections[0], L"RT", L"KOR for RTOS",
                  {{L"KORConfig for RTOS", L"C:\\KorTest\\Tools/KorConfig.exe", Program,
                    L"-rtxmode", L"RT_0"},
                   {L"KOR RTOS Examples", L"C:\\KorTest\\Ex\\KORRTOS", Folder, L"", L"RT_1"}});
}

TEST(RtosSection, WithoutAnExamplesRootTheTargetIsRelative) {
    const test::TestInstallation installed;
    installed.MakeKey(L"Vantrel\\Vantrel Imaging Library\\RTX");
    Installation installation = AtTestFolder();
    installation.KorExamplesRoot = L"";
    Catalogue sections;
    BuildRtosSection(sections, installation);
    EXPECT_STREQ((*sections[0])[1]->Path.Text(), L"KORRTOS");
}

TEST(RtosSection, WithoutTheKeyThereIsNoSection) {
    const test::TestInstallation installed;
    installed.MakeFile(L"C:\\KorTest\\Tools\\KorConfig.exe");
    Catalogue sections;
    BuildRtosSection(sections, AtTestFolder());
    EXPECT_EQ(sections.Count(), 0);
}

TEST(FlowForgeSection, ListsTheSingleInstallation) {
    const test::TestInstallation files;
    files.MakeFile(L"C:\\KorTest\\FF\\FlowForge.exe");
    Catalogue sections;
    BuildFlowForgeSection(sections, AtTestFolder());
    ASSERT_EQ(sections.Count(), 1);
    ExpectSection(
        *sections[0], L"FLOWFORGE", L"Flow Forge",
        {{L"Vantrel Flow Forge", L"C:\\KorTest\\FF\\FlowForge.exe", Program, L"", L"FLOWFORGE_0"},
         {L"Vantrel Flow Forge Help file", L"C:\\KorTest\\FF\\Documentation/FlowForgeUserGuide.chm",
          Document, L"", L"FLOWFORGE_1"},
         {L"Vantrel Orvex 40 Installation and Technical Reference",
          L"C:\\KorTest\\FF\\/Documentation/Orvex40_FF_TechRef.pdf", Document, L"", L"FLOWFORGE_2"},
         {L"List of tutorials", L"C:\\KorTest\\FF\\/StartPage/Tutorials.html", Document, L"",
          L"FLOWFORGE_3"}});
}

TEST(FlowForgeSection, NeedsTheProgram) {
    const test::TestInstallation files;
    Catalogue sections;
    BuildFlowForgeSection(sections, AtTestFolder());
    EXPECT_EQ(sections.Count(), 0);
}

// The process's current folder while it lives.
class CurrentFolder {
public:
    explicit CurrentFolder(const wchar_t* folder) {
        GetCurrentDirectoryW(MAX_PATH, m_previous);
        EXPECT_TRUE(SetCurrentDirectoryW(folder));
    }
    CurrentFolder(const CurrentFolder&) = delete;
    CurrentFolder& operator=(const CurrentFolder&) = delete;
    ~CurrentFolder() { SetCurrentDirectoryW(m_previous); }

private:
    wchar_t m_previous[MAX_PATH] = {};
};

TEST(FlowForgeSection, WithoutAFolderThereIsNoneWhateverTheCurrentFolderHolds) {
    const test::TestInstallation files;
    files.MakeFile(L"C:\\KorTest\\FlowForge.exe");
    const CurrentFolder current(L"C:\\KorTest");
    Installation installation = AtTestFolder();
    installation.FlowForgeInstallDir = L"";
    Catalogue sections;
    BuildFlowForgeSection(sections, installation);
    EXPECT_EQ(sections.Count(), 0);
    ASSERT_EQ(sections.Omissions.Count(), 1);
    EXPECT_STREQ(sections.Omissions[0].Path.Text(), L"") << "nothing was looked for";
}

} // namespace
