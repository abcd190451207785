// What the builders note about sections and items that they leave out.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

#include "catalogue/Catalogue.h"
#include "tests/support/TestInstallation.h"

namespace {

struct Note {
    std::wstring Title;
    std::wstring Label;
    std::wstring Reason;
    Looked Where;
    std::wstring Path;
    PathBase Base = nullptr;
};

void ExpectNotes(const Catalogue& sections, const std::vector<Note>& expected) {
    ASSERT_EQ(sections.Omissions.Count(), static_cast<std::int64_t>(expected.size()));
    for (std::int64_t i = 0; i < sections.Omissions.Count(); ++i) {
        const Omission& note = sections.Omissions[i];
        const Note& wanted = expected[static_cast<std::size_t>(i)];
        SCOPED_TRACE(i);
        EXPECT_STREQ(note.Title.Text(), wanted.Title.c_str());
        EXPECT_STREQ(note.Label.Text(), wanted.Label.c_str());
        EXPECT_STREQ(note.Reason, wanted.Reason.c_str());
        EXPECT_EQ(note.Where, wanted.Where);
        EXPECT_STREQ(note.Path.Text(), wanted.Path.c_str());
        EXPECT_TRUE(note.Base == wanted.Base);
    }
}

constexpr wchar_t NoKey[] = L"the registry key does not exist or cannot be read";
constexpr wchar_t NoExamples[] = L"the examples root is not an existing folder";
const std::wstring FlowForgeKey = L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantrel\\Vantrel Flow Forge\\";
const std::wstring FlowForgeKey32 =
    L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Wow6432Node\\Vantrel\\Vantrel Flow Forge\\";
const std::wstring RtxKey = L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantrel\\Vantrel Imaging Library\\RTX";

TEST(Omissions, OfAnEmptyInstallation) {
    const test::TestInstallation nothing;
    Catalogue catalogue;
    catalogue.Build(Installation(), false);
    const std::vector<Note> expected = {
        {L"Quick Start", L"", L"this is not a development installation", Looked::AtInstallationType,
         L""},
        {L"Folders", L"", L"this is not a development installation", Looked::AtInstallationType,
         L""},
        {L"General Tools", L"Tutorials directory", L"the folder is missing or empty",
         Looked::AtFolder, L"Tutorial videos", &Installation::InstallDir},
        {L"Flow Forge versions", L"", NoKey, Looked::AtRegistryKey,
         FlowForgeKey + L"Installed Versions"},
        {L"Flow Forge versions (32-bit)", L"", NoKey, Looked::AtRegistryKey,
         FlowForgeKey32 + L"Installed Versions"},
        {L"ActiveKOR", L"", L"the control file does not exist", Looked::AtFile,
         L"ActiveKOR/Controls/kor.ocx", &Installation::InstallDir},
        {L"Flow Forge", L"", L"the program does not exist", Looked::AtFile, L"",
         &Installation::FlowForgeInstallDir},
        {L"KOR for RTOS", L"", NoKey, Looked::AtRegistryKey, RtxKey},
    };
    ExpectNotes(catalogue, expected);
    catalogue.Build(Installation(), false);
    ExpectNotes(catalogue, expected);
}

TEST(Omissions, OfItemsWithAConditionAndOfVersions) {
    const test::TestInstallation installed;
    installed.MakeKey(test::LibraryKey + L"\\RTX");
    installed.MakeFile(L"C:\\KorTest\\ActiveKOR\\Controls\\kor.ocx");
    installed.MakeFile(L"C:\\KorTest\\FF\\FlowForge.exe");
    installed.MakeKey(test::VersionsKey + L"\\1.0");
    installed.SetText(test::VersionsKey + L"\\2.0", L"InstallationPath", L"C:\\KorTest\\Gone");
    installed.SetText(test::VersionsKey + L"\\3.0", L"InstallationPath", L"C:\\KorTest\\FF");
    installed.MakeKey(L"Wow6432Node\\" + test::VersionsKey);
    Installation installation;
    installation.InstallDir = L"C:\\KorTest\\";
    installation.KorExamplesRoot = L"C:\\KorTest\\Ex";
    installation.FlowForgeInstallDir = L"C:\\KorTest\\FF\\";
    Catalogue catalogue;
    catalogue.Build(installation, true);
    // The two exclusive rows of a version's help are no omission.
    ExpectNotes(catalogue,
                {{L"Quick Start", L"Vantrel Sample Gallery", NoExamples, Looked::AtFolder,
                  L"C:\\KorTest\\Ex", &Installation::KorExamplesRoot},
                 {L"General Tools", L"Tutorials directory", L"the folder is missing or empty",
                  Looked::AtFolder, L"C:\\KorTest\\Tutorial videos", &Installation::InstallDir},
                 {L"Flow Forge 1.0", L"", L"the version's key has no value \"InstallationPath\"",
                  Looked::AtRegistryKey, FlowForgeKey + L"Installed Versions\\1.0"},
                 {L"Flow Forge 2.0", L"", L"neither FlowForge.exe nor a Tools folder exists",
                  Looked::AtFile, L"C:\\KorTest\\Gone\\FlowForge.exe"},
                 {L"ActiveKOR", L"Sample Gallery", NoExamples, Looked::AtFolder, L"",
                  &Installation::ActiveKorExamplesRoot}});
}

TEST(PathBases, SayWhatEachItemsPathBeginsWith) {
    const test::TestInstallation installed;
    installed.SetText(test::VersionsKey + L"\\3.0", L"InstallationPath", L"C:\\KorTest\\FF");
    installed.MakeFile(L"C:\\KorTest\\FF\\FlowForge.exe");
    installed.MakeFile(L"C:\\KorTest\\ActiveKOR\\Controls\\kor.ocx");
    Installation installation;
    installation.InstallDir = L"C:\\KorTest\\";
    installation.FlowForgeInstallDir = L"C:\\KorTest\\FF\\";
    Catalogue catalogue;
    catalogue.Build(installation, true);
    const auto baseOf = [&](const wchar_t* id) { return catalogue.FindItem(id)->Base; };
    EXPECT_TRUE(baseOf(L"KOR_0") == &Installation::InstallDir);
    EXPECT_TRUE(baseOf(L"FOLDERS_1") == &Installation::KorExamplesRoot);
    EXPECT_TRUE(baseOf(L"FLOWFORGE-3.0_0") == nullptr);
    EXPECT_TRUE(baseOf(L"FLOWFORGE-3.0_1") == nullptr);
    EXPECT_TRUE(baseOf(L"FLOWFORGE-3.0_5") == nullptr);
    EXPECT_TRUE(baseOf(L"ACTIVEKOR_2") == &Installation::ActiveKorExamplesRoot);
    EXPECT_TRUE(baseOf(L"FLOWFORGE_0") == &Installation::FlowForgeInstallDir);
}

} // namespace
