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
    std::wstring Tested;
    PathBase Base;
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
        EXPECT_STREQ(note.Tested.Text(), wanted.Tested.c_str());
        EXPECT_EQ(note.Base, wanted.Base);
    }
}

constexpr wchar_t NoKey[] = L"the registry key does not exist or may not be read";
constexpr wchar_t NoExamples[] = L"the examples root is no existing folder";
const std::wstring FlowForgeKey = L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantrel\\Vantrel Flow Forge\\";
const std::wstring FlowForgeKey32 =
    L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Wow6432Node\\Vantrel\\Vantrel Flow Forge\\";
const std::wstring RtxKey = L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantrel\\Vantrel Imaging Library\\RTX";

TEST(Omissions, OfAnEmptyInstallation) {
    const test::TestInstallation nothing;
    Catalogue catalogue;
    catalogue.Build(Installation(), false);
    const std::vector<Note> expected = {
        {L"Quick Start", L"", L"this is no development installation", L"", PathBase::None},
        {L"Folders", L"", L"this is no development installation", L"", PathBase::None},
        {L"General Tools", L"Tutorials directory", L"the folder is missing or empty",
         L"Tutorial videos", PathBase::InstallDir},
        {L"Flow Forge versions", L"", NoKey, FlowForgeKey + L"Installed Versions", PathBase::None},
        {L"Flow Forge versions (32-bit)", L"", NoKey, FlowForgeKey32 + L"Installed Versions",
         PathBase::None},
        {L"ActiveKOR", L"", L"the control file does not exist", L"ActiveKOR/Controls/kor.ocx",
         PathBase::InstallDir},
        {L"Flow Forge", L"", L"the program does not exist", L"", PathBase::FlowForgeInstallDir},
        {L"KOR for RTOS", L"", NoKey, RtxKey, PathBase::None},
    };
    ExpectNotes(catalogue, expected);
    catalogue.Build(Installation(), false);
    ExpectNotes(catalogue, expected);
}

TEST(Omissions, OfItemsWithAConditionAndOfVersions) {
    const test::TestInstallation installed;
    installed.MakeKey(L"Vantrel\\Vantrel Imaging Library\\RTX");
    installed.MakeFile(L"C:\\KorTest\\ActiveKOR\\Controls\\kor.ocx");
    installed.MakeFile(L"C:\\KorTest\\FF\\FlowForge.exe");
    installed.MakeKey(L"Vantrel\\Vantrel Flow Forge\\Installed Versions\\1.0");
    installed.SetText(L"Vantrel\\Vantrel Flow Forge\\Installed Versions\\2.0", L"InstallationPath",
                      L"C:\\KorTest\\Gone");
    installed.SetText(L"Vantrel\\Vantrel Flow Forge\\Installed Versions\\3.0", L"InstallationPath",
                      L"C:\\KorTest\\FF");
    installed.MakeKey(L"Wow6432Node\\Vantrel\\Vantrel Flow Forge\\Installed Versions");
    Installation installation;
    installation.InstallDir = L"C:\\KorTest\\";
    installation.KorExamplesRoot = L"C:\\KorTest\\Ex";
    installation.FlowForgeInstallDir = L"C:\\KorTest\\FF\\";
    Catalogue catalogue;
    catalogue.Build(installation, true);
    // The two exclusive rows of a version's help are no omission.
    ExpectNotes(
        catalogue,
        {{L"Quick Start", L"Vantrel Sample Gallery", NoExamples, L"C:\\KorTest\\Ex",
          PathBase::KorExamplesRoot},
         {L"General Tools", L"Tutorials directory", L"the folder is missing or empty",
          L"C:\\KorTest\\Tutorial videos", PathBase::InstallDir},
         {L"Flow Forge 1.0", L"", L"the version's key has no value \"InstallationPath\"",
          FlowForgeKey + L"Installed Versions\\1.0", PathBase::None},
         {L"Flow Forge 2.0", L"", L"neither the program nor a folder Tools exists",
          L"C:\\KorTest\\Gone\\FlowForge.exe", PathBase::VersionInstallFolder},
         {L"ActiveKOR", L"Sample Gallery", NoExamples, L"", PathBase::ActiveKorExamplesRoot}});
}

TEST(PathBases, SayWhatEachItemsPathBeginsWith) {
    const test::TestInstallation installed;
    installed.SetText(L"Vantrel\\Vantrel Flow Forge\\Installed Versions\\3.0", L"InstallationPath",
                      L"C:\\KorTest\\FF");
    installed.MakeFile(L"C:\\KorTest\\FF\\FlowForge.exe");
    installed.MakeFile(L"C:\\KorTest\\ActiveKOR\\Controls\\kor.ocx");
    Installation installation;
    installation.InstallDir = L"C:\\KorTest\\";
    installation.FlowForgeInstallDir = L"C:\\KorTest\\FF\\";
    Catalogue catalogue;
    catalogue.Build(installation, true);
    std::vector<std::pair<std::wstring, PathBase>> bases;
    for (const ControlCenterSection* const section : catalogue) {
        for (const ControlCenterItem* const item : *section) {
            bases.emplace_back(item->Id.Text(), item->Base);
        }
    }
    const auto baseOf = [&](const wchar_t* id) {
        for (const auto& [itemId, base] : bases) {
            if (itemId == id) {
                return base;
            }
        }
        ADD_FAILURE() << "no such item: " << testing::PrintToString(std::wstring(id));
        return PathBase::None;
    };
    EXPECT_EQ(baseOf(L"KOR_0"), PathBase::InstallDir);
    EXPECT_EQ(baseOf(L"FOLDERS_1"), PathBase::KorExamplesRoot);
    EXPECT_EQ(baseOf(L"FLOWFORGE-3.0_0"), PathBase::VersionInstallFolder);
    EXPECT_EQ(baseOf(L"FLOWFORGE-3.0_1"), PathBase::VersionExamplesFolder);
    EXPECT_EQ(baseOf(L"FLOWFORGE-3.0_5"), PathBase::RuntimeManager);
    EXPECT_EQ(baseOf(L"ACTIVEKOR_2"), PathBase::ActiveKorExamplesRoot);
    EXPECT_EQ(baseOf(L"FLOWFORGE_0"), PathBase::FlowForgeInstallDir);
}

} // namespace
