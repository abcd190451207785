// The sections whose rows do not depend on the registry's lists. The tables here are written by
// hand; they are not derived from the product's.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

#include "tests/catalogue/ExpectedItem.h"
#include "tests/support/TestInstallation.h"

namespace {

using test::Document;
using test::ExpectOneSection;
using test::Folder;
using test::HelpTopic;
using test::Program;

constexpr wchar_t Topic[] =
    L"::/redirect.xhtm#z_KOR_Readme_whatsnew_processing.chm::/whatsnew_processing.htm";

// An installation in the tests' folder, of which nothing is there yet.
class FixedSections : public testing::Test {
protected:
    FixedSections() {
        m_installation.InstallDir = L"C:\\KorTest\\";
        m_installation.KorExamplesRoot = L"C:\\KorTest\\Ex";
        m_installation.ActiveKorExamplesRoot = L"C:\\KorTest\\AEx";
        m_installation.FlowForgeInstallDir = L"C:\\KorTest\\FF\\";
    }

    test::TestInstallation m_files;
    Installation m_installation;
    Catalogue m_sections;
};

using QuickStartSection = FixedSections;
using FoldersSection = FixedSections;
using GeneralToolsSection = FixedSections;
using ProcessingToolsSection = FixedSections;
using ActiveKorSection = FixedSections;
using RtosSection = FixedSections;
using FlowForgeSection = FixedSections;

TEST_F(QuickStartSection, WithExamples) {
    m_files.MakeFolder(L"C:\\KorTest\\Ex");
    BuildQuickStartSection(m_sections, m_installation);
    ExpectOneSection(m_sections, L"KOR", L"Quick Start", L"C:\\KorTest\\",
                     {{L"Vantrel Sample Gallery", L"Tools\\SampleGallery.exe", Program, L" /KOR"},
                      {L"KOR Help", L"KOR\\DOC\\help\\KORHelp.chm", HelpTopic},
                      {L"KOR Release Notes", L"KOR\\DOC\\help\\KORHelp.chm", HelpTopic, Topic}});
}

TEST_F(QuickStartSection, WithoutExamplesTheHelpTakesTheFirstId) {
    for (const bool isFile : {false, true}) {
        if (isFile) {
            m_files.MakeFile(L"C:\\KorTest\\Ex");
        }
        Catalogue sections;
        BuildQuickStartSection(sections, m_installation);
        ExpectOneSection(
            sections, L"KOR", L"Quick Start", L"C:\\KorTest\\",
            {{L"KOR Help", L"KOR\\DOC\\help\\KORHelp.chm", HelpTopic},
             {L"KOR Release Notes", L"KOR\\DOC\\help\\KORHelp.chm", HelpTopic, Topic}});
    }
}

TEST_F(QuickStartSection, AnInstallFolderWithoutBackslashIsNotRepaired) {
    m_files.MakeFolder(L"C:\\KorTest\\Ex");
    m_installation.InstallDir = L"C:\\Lib";
    BuildQuickStartSection(m_sections, m_installation);
    EXPECT_STREQ((*m_sections[0])[0]->Path.Text(), L"C:\\LibTools\\SampleGallery.exe");
}

TEST_F(FoldersSection, HasTheLibrarysFolders) {
    BuildFoldersSection(m_sections, m_installation);
    ExpectOneSection(m_sections, L"FOLDERS", L"Folders", L"C:\\KorTest\\",
                     {{L"KOR", L"KOR", Folder},
                      {L"KOR examples", L"Ex", Folder},
                      {L"KOR images", L"Images", Folder},
                      {L"KOR predefined Contexts", L"contexts", Folder},
                      {L"Corvane DTK directory", L"Ex/CorvaneDTK", Folder},
                      {L"Sorbel DTK directory", L"Ex/SorbelDTK", Folder}});
}

TEST_F(FoldersSection, WithoutAnExamplesRoot) {
    m_installation.KorExamplesRoot = L"";
    BuildFoldersSection(m_sections, m_installation);
    const ControlCenterSection& section = *m_sections[0];
    EXPECT_STREQ(section[1]->Path.Text(), L"");
    EXPECT_STREQ(section[4]->Path.Text(), L"/CorvaneDTK");
    EXPECT_STREQ(section[5]->Path.Text(), L"/SorbelDTK");
}

TEST_F(GeneralToolsSection, WithEverything) {
    m_files.MakeFile(L"C:\\KorTest\\Tools\\TimeScope.exe");
    m_files.MakeFile(L"C:\\KorTest\\Tutorial videos\\one.mp4");
    BuildGeneralToolsSection(m_sections, m_installation);
    ExpectOneSection(m_sections, L"TOOLS", L"General Tools", L"C:\\KorTest\\",
                     {{L"KORConfig", L"Tools\\KorConfig.exe"},
                      {L"Vantrel Framewright", L"Framewright\\Framewright.exe"},
                      {L"Vantrel TimeScope", L"Tools\\TimeScope.exe"},
                      {L"Vantrel Grab Studio", L"Tools\\GrabStudio.exe"},
                      {L"Tutorials directory", L"Tutorial videos", Folder}});
}

TEST_F(GeneralToolsSection, WithNothing) {
    BuildGeneralToolsSection(m_sections, m_installation);
    ExpectOneSection(m_sections, L"TOOLS", L"General Tools", L"C:\\KorTest\\",
                     {{L"KORConfig", L"Tools\\KorConfig.exe"},
                      {L"Vantrel Framewright", L"Framewright\\Framewright.exe"},
                      {L"KORTimeScope", L"Tools\\TimeScope.exe"},
                      {L"Vantrel Grab Studio", L"Tools\\GrabStudio.exe"}});
}

TEST_F(GeneralToolsSection, AFolderInTimeScopesPlaceGetsTheOtherLabel) {
    m_files.MakeFolder(L"C:\\KorTest\\Tools\\TimeScope.exe");
    BuildGeneralToolsSection(m_sections, m_installation);
    EXPECT_STREQ((*m_sections[0])[2]->Label.Text(), L"KORTimeScope");
}

TEST_F(GeneralToolsSection, TutorialsNeedAFolderThatHoldsSomething) {
    {
        const test::TestInstallation files;
        files.MakeFolder(L"C:\\KorTest\\Tutorial videos");
        Catalogue sections;
        BuildGeneralToolsSection(sections, m_installation);
        EXPECT_EQ(sections[0]->Count(), 4) << "an empty folder";
    }
    m_files.MakeFile(L"C:\\KorTest\\Tutorial videos");
    BuildGeneralToolsSection(m_sections, m_installation);
    EXPECT_EQ(m_sections[0]->Count(), 4) << "a file of that name";
}

TEST_F(GeneralToolsSection, WithoutABackslashOnlyTheJoinedRowsFindTheirTargets) {
    m_files.MakeFile(L"C:\\KorTest\\Tools\\TimeScope.exe");
    m_files.MakeFile(L"C:\\KorTest\\Tutorial videos\\one.mp4");
    m_installation.InstallDir = L"C:\\KorTest";
    BuildGeneralToolsSection(m_sections, m_installation);
    ExpectOneSection(m_sections, L"TOOLS", L"General Tools", L"C:\\KorTest",
                     {{L"KORConfig", L"Tools\\KorConfig.exe"},
                      {L"Vantrel Framewright", L"Framewright\\Framewright.exe"},
                      {L"Vantrel TimeScope", L"\\Tools\\TimeScope.exe"},
                      {L"Vantrel Grab Studio", L"Tools\\GrabStudio.exe"},
                      {L"Tutorials directory", L"\\Tutorial videos", Folder}});
}

TEST_F(ProcessingToolsSection, ListsTheVisionTools) {
    BuildProcessingToolsSection(m_sections, m_installation);
    ExpectOneSection(m_sections, L"GUI", L"Processing Tools", L"C:\\KorTest\\",
                     {{L"KOR Wingman", L"KOR Wingman/korwingman.exe"},
                      {L"Vantrel Symbol Decoder", L"Tools/SymbolDecoder.exe"},
                      {L"Vantrel Hue Survey", L"Tools/HueSurvey.exe"},
                      {L"Vantrel Contour Tracer", L"Tools/ContourTracer.exe"},
                      {L"Vantrel GaugeBench", L"Tools/GaugeBench.exe"},
                      {L"Vantrel Shape Locator", L"Tools/ShapeLocator.exe"},
                      {L"Vantrel Glyph Scanner", L"Tools/GlyphScanner.exe"},
                      {L"Vantrel Text Spotter", L"Tools/TextSpotter.exe"},
                      {L"Vantrel Lookout", L"Lookout/Lkout32.exe"}});
}

TEST_F(ActiveKorSection, WithExamples) {
    m_files.MakeFile(L"C:\\KorTest\\ActiveKOR\\Controls\\kor.ocx");
    m_files.MakeFolder(L"C:\\KorTest\\AEx");
    BuildActiveKorSection(m_sections, m_installation);
    ExpectOneSection(m_sections, L"ACTIVEKOR", L"ActiveKOR", L"C:\\KorTest\\",
                     {{L"Sample Gallery", L"Tools/SampleGallery.exe", Program, L" /ActiveKOR"},
                      {L"ActiveKOR Help file", L"ActiveKOR/Help/ActiveKORHelp.chm", Document},
                      {L"ActiveKOR directory", L"ActiveKOR", Folder},
                      {L"ActiveKOR examples directory", L"AEx", Folder},
                      {L"Debugging session demo", L"ActiveKOR/Demos/AKORDebug.exe"},
                      {L"Processing session demo", L"ActiveKOR/Demos/AKORGMFProject.exe"},
                      {L"Read me file", L"ActiveKOR/ReadMe.html", Document}});
}

TEST_F(ActiveKorSection, WithoutExamplesItHoldsSixItems) {
    m_files.MakeFile(L"C:\\KorTest\\ActiveKOR\\Controls\\kor.ocx");
    BuildActiveKorSection(m_sections, m_installation);
    ASSERT_EQ(m_sections.Count(), 1);
    ASSERT_EQ(m_sections[0]->Count(), 6);
    EXPECT_STREQ((*m_sections[0])[0]->Label.Text(), L"ActiveKOR Help file");
    EXPECT_STREQ((*m_sections[0])[0]->Id.Text(), L"ACTIVEKOR_0");
}

TEST_F(ActiveKorSection, OfNothingButItsControlFileTheDirectoryIsShown) {
    m_files.MakeFile(L"C:\\KorTest\\ActiveKOR\\Controls\\kor.ocx");
    BuildActiveKorSection(m_sections, m_installation);
    ASSERT_EQ(m_sections.Count(), 1);
    std::vector<std::wstring> shown;
    for (const ControlCenterItem* const item : *m_sections[0]) {
        if (item->IsShown()) {
            shown.emplace_back(item->Label.Text());
        }
    }
    EXPECT_EQ(shown, std::vector<std::wstring>{L"ActiveKOR directory"})
        << "the control file's own folder exists";
}

TEST_F(ActiveKorSection, NeedsTheControlFile) {
    m_files.MakeFile(L"C:\\KorTest\\ActiveKOR\\Help\\ActiveKORHelp.chm");
    BuildActiveKorSection(m_sections, m_installation);
    EXPECT_EQ(m_sections.Count(), 0);
}

TEST_F(RtosSection, NeedsTheKeyOnly) {
    m_files.MakeKey(test::LibraryKey + L"\\RTX");
    BuildRtosSection(m_sections, m_installation);
    ExpectOneSection(m_sections, L"RT", L"KOR for RTOS", L"C:\\KorTest\\",
                     {{L"KORConfig for RTOS", L"Tools/KorConfig.exe", Program, L"-rtxmode"},
                      {L"KOR RTOS Examples", L"Ex\\KORRTOS", Folder}});
}

TEST_F(RtosSection, WithoutAnExamplesRootTheTargetIsRelative) {
    m_files.MakeKey(test::LibraryKey + L"\\RTX");
    m_installation.KorExamplesRoot = L"";
    BuildRtosSection(m_sections, m_installation);
    EXPECT_STREQ((*m_sections[0])[1]->Path.Text(), L"KORRTOS");
}

TEST_F(RtosSection, WithoutTheKeyThereIsNoSection) {
    m_files.MakeFile(L"C:\\KorTest\\Tools\\KorConfig.exe");
    BuildRtosSection(m_sections, m_installation);
    EXPECT_EQ(m_sections.Count(), 0);
}

TEST_F(FlowForgeSection, ListsTheSingleInstallation) {
    m_files.MakeFile(L"C:\\KorTest\\FF\\FlowForge.exe");
    BuildFlowForgeSection(m_sections, m_installation);
    ExpectOneSection(
        m_sections, L"FLOWFORGE", L"Flow Forge", L"C:\\KorTest\\FF\\",
        {{L"Vantrel Flow Forge", L"FlowForge.exe"},
         {L"Vantrel Flow Forge Help file", L"Documentation/FlowForgeUserGuide.chm", Document},
         {L"Vantrel Orvex 40 Installation and Technical Reference",
          L"/Documentation/Orvex40_FF_TechRef.pdf", Document},
         {L"List of tutorials", L"/StartPage/Tutorials.html", Document}});
}

TEST_F(FlowForgeSection, NeedsTheProgram) {
    BuildFlowForgeSection(m_sections, m_installation);
    EXPECT_EQ(m_sections.Count(), 0);
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

TEST_F(FlowForgeSection, WithoutAFolderThereIsNoneWhateverTheCurrentFolderHolds) {
    m_files.MakeFile(L"C:\\KorTest\\FlowForge.exe");
    const CurrentFolder current(L"C:\\KorTest");
    m_installation.FlowForgeInstallDir = L"";
    BuildFlowForgeSection(m_sections, m_installation);
    EXPECT_EQ(m_sections.Count(), 0);
    ASSERT_EQ(m_sections.Omissions.Count(), 1);
    EXPECT_STREQ(m_sections.Omissions[0].Path.Text(), L"") << "nothing was looked for";
}

} // namespace
