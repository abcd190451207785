// One section for each installed version and registry view.
#include <gtest/gtest.h>
#include <windows.h>

#include <shlwapi.h>

#include <algorithm>
#include <cwchar>

#include "tests/catalogue/ExpectedItem.h"
#include "tests/support/ImportHook.h"
#include "tests/support/TestInstallation.h"

namespace {

using test::Document;
using test::ExpectOneSection;
using test::ExpectSection;
using test::Folder;

const std::wstring Versions64 = test::VersionsKey + L"\\";
const std::wstring Versions32 = L"Wow6432Node\\" + Versions64;

// What an installed version may have besides its registry key and the value there.
enum Has : unsigned { Nothing = 0, Product = 1, Tools = 2, Manager = 4, KeyOnly = 8 };

std::wstring FolderOf(const std::wstring& version) {
    return L"C:\\KorTest\\" + version;
}

void Install(const test::TestInstallation& to, const std::wstring& version, unsigned has,
             const std::wstring& view = Versions64) {
    if (has == KeyOnly) {
        to.MakeKey(view + version);
        return;
    }
    to.SetText(view + version, L"InstallationPath", FolderOf(version));
    if ((has & Product) != 0) {
        to.MakeFile(FolderOf(version) + L"\\FlowForge.exe");
    }
    if ((has & Tools) != 0) {
        to.MakeFolder(FolderOf(version) + L"\\Tools");
    }
    if ((has & Manager) != 0) {
        to.MakeFile(FolderOf(version) + L"\\Tools\\FlowForgeRuntimeManager.exe");
    }
}

// The target of the runtime manager that the pass chose: the last item of its sections.
std::wstring ChosenManager(bool is32Bit = false) {
    Catalogue sections;
    BuildFlowForgeVersionsSection(sections, is32Bit);
    EXPECT_GT(sections.Count(), 0);
    if (sections.Count() == 0) {
        return L"(no section)";
    }
    const ControlCenterSection& section = *sections[0];
    const ControlCenterItem& last = *section[section.Count() - 1];
    EXPECT_STREQ(last.Label.Text(), L"Flow Forge Runtime Manager");
    return last.Path.Text();
}

std::wstring ManagerOf(const std::wstring& version) {
    return FolderOf(version) + L"/Tools/FlowForgeRuntimeManager.exe";
}

std::vector<std::wstring> TitlesOf(const Catalogue& sections) {
    std::vector<std::wstring> titles;
    for (const ControlCenterSection* const section : sections) {
        titles.emplace_back(section->Title.Text());
    }
    return titles;
}

std::vector<std::wstring> Sorted(std::vector<std::wstring> texts) {
    std::sort(texts.begin(), texts.end());
    return texts;
}

// The pass over the names in this order, whatever the registry's own is.
void BuildListed(const std::vector<std::wstring>& names, Catalogue& sections) {
    HOOK_IMPORT(enumerate, RegEnumKeyExW,
                [&](HKEY, DWORD index, LPWSTR name, LPDWORD length, auto...) -> LSTATUS {
                    if (index >= names.size()) {
                        return ERROR_NO_MORE_ITEMS;
                    }
                    EXPECT_GT(*length, names[index].size());
                    wcscpy(name, names[index].c_str());
                    *length = static_cast<DWORD>(names[index].size());
                    return ERROR_SUCCESS;
                });
    BuildFlowForgeVersionsSection(sections, false);
}

class FlowForgeVersions : public testing::Test {
protected:
    test::TestInstallation m_installed;
    Catalogue m_sections;
};

TEST_F(FlowForgeVersions, TwoVersionsShareTheNewestManager) {
    Install(m_installed, L"2.1", Product | Manager);
    Install(m_installed, L"3.0", Product | Manager);
    BuildFlowForgeVersionsSection(m_sections, false);
    ASSERT_EQ(m_sections.Count(), 2);
    ExpectSection(
        *m_sections[0], L"FLOWFORGE-2.1", L"Flow Forge 2.1", L"C:\\KorTest\\",
        {{L"Vantrel Flow Forge", L"2.1\\FlowForge.exe"},
         {L"Velnora utility",
          L"2.1\\/Example HMI/DotNetExamples/Examples/Velnora/bin/x86/Release/Velnora.exe"},
         {L"Vantrel Flow Forge Help file", L"2.1\\Documentation/FlowForgeUserGuide.chm", Document},
         {L"Flow Forge Documentation", L"2.1\\/Documentation", Folder},
         {L"Flow Forge Tools", L"2.1\\/Tools", Folder},
         {L"Flow Forge Runtime Manager", L"3.0/Tools/FlowForgeRuntimeManager.exe"}});
    ExpectSection(
        *m_sections[1], L"FLOWFORGE-3.0", L"Flow Forge 3.0", L"C:\\KorTest\\",
        {{L"Vantrel Flow Forge", L"3.0\\FlowForge.exe"},
         {L"Velnora utility",
          L"3.0\\/Example HMI/DotNetExamples/Examples/Velnora/bin/x86/Release/Velnora.exe"},
         {L"Vantrel Flow Forge User Guide", L"3.0\\Documentation/FlowForgeHelp.chm", Document},
         {L"Flow Forge Documentation", L"3.0\\/Documentation", Folder},
         {L"Flow Forge Tools", L"3.0\\/Tools", Folder},
         {L"Flow Forge Runtime Manager", L"3.0/Tools/FlowForgeRuntimeManager.exe"}});
}

TEST_F(FlowForgeVersions, TheExamplesFolderIsTheVersionsOwnWhenItHasOne) {
    Install(m_installed, L"3.1", Product);
    m_installed.SetText(Versions64 + L"3.1", L"ExamplesPath", L"C:\\KorTest\\Examples\\");
    BuildFlowForgeVersionsSection(m_sections, false);
    ASSERT_EQ(m_sections.Count(), 1);
    EXPECT_STREQ((*m_sections[0])[1]->Path.Text(),
                 L"C:\\KorTest\\Examples\\\\/Example HMI/DotNetExamples/Examples/Velnora/bin/x86/"
                 L"Release/Velnora.exe")
        << "a backslash is added also behind one";
}

TEST_F(FlowForgeVersions, AnInstallFolderThatEndsInABackslashGetsAnotherOne) {
    Install(m_installed, L"3.1", Product);
    m_installed.SetText(Versions64 + L"3.1", L"InstallationPath", L"C:\\KorTest\\3.1\\");
    BuildFlowForgeVersionsSection(m_sections, false);
    ASSERT_EQ(m_sections.Count(), 1);
    EXPECT_STREQ((*m_sections[0])[0]->Path.Text(), L"C:\\KorTest\\3.1\\\\FlowForge.exe");
}

TEST_F(FlowForgeVersions, ToolsAloneGiveASectionWithTheManagerOnly) {
    Install(m_installed, L"3.1", Tools);
    BuildFlowForgeVersionsSection(m_sections, false);
    ExpectOneSection(m_sections, L"FLOWFORGE-3.1", L"Flow Forge 3.1", L"",
                     {{L"Flow Forge Runtime Manager", L""}});
}

TEST_F(FlowForgeVersions, AFileNamedToolsCountsLikeTheFolder) {
    Install(m_installed, L"3.1", Nothing);
    m_installed.MakeFile(FolderOf(L"3.1") + L"\\Tools");
    BuildFlowForgeVersionsSection(m_sections, false);
    ASSERT_EQ(m_sections.Count(), 1);
    EXPECT_EQ(m_sections[0]->Count(), 1) << "the manager only";
}

TEST_F(FlowForgeVersions, AVersionWithoutFolderOrFilesHasNoSection) {
    Install(m_installed, L"3.1", Nothing);
    m_installed.MakeKey(Versions64 + L"3.2");
    BuildFlowForgeVersionsSection(m_sections, false);
    EXPECT_EQ(m_sections.Count(), 0);
}

struct NewestCase {
    const char* what;
    std::vector<std::pair<const wchar_t*, unsigned>> versions;
    const wchar_t* chosen; // empty: none
};

TEST_F(FlowForgeVersions, TheNewestVersionWithAManagerProvidesIt) {
    const NewestCase cases[] = {
        {"major decides", {{L"2.9", Product | Manager}, {L"10.0", Product | Manager}}, L"10.0"},
        {"then minor", {{L"3.2", Product | Manager}, {L"3.10", Product | Manager}}, L"3.10"},
        {"a newer one without a manager", {{L"3.0", Product | Manager}, {L"3.1", Product}}, L"3.0"},
        {"a newer one without a manager that is listed first",
         {{L"10.0", Product}, {L"2.0", Product | Manager}},
         L"2.0"},
        {"a newer one without the value that is listed first",
         {{L"10.0", KeyOnly}, {L"2.0", Product | Manager}},
         L"2.0"},
        {"below 0 is older than nothing", {{L"-1.0", Product | Manager}}, L""},
        {"below 0 is older than all",
         {{L"-1.0", Product | Manager}, {L"2.0", Product | Manager}},
         L"2.0"},
        {"leading zeros do not count",
         {{L"3.010", Product | Manager}, {L"3.9", Product | Manager}},
         L"3.010"},
        {"one piece is passed over",
         {{L"3", Product | Manager}, {L"2.0", Product | Manager}},
         L"2.0"},
        {"three pieces are passed over",
         {{L"3.1.2", Product | Manager}, {L"2.0", Product | Manager}},
         L"2.0"},
        {"no version of two pieces",
         {{L"3", Product | Manager}, {L"3.1.2", Product | Manager}},
         L""},
        {"0.0 is not newer than nothing", {{L"0.0", Product | Manager}}, L""},
        {"0.1 is newer than nothing", {{L"0.1", Product | Manager}}, L"0.1"},
        {"no digits count as 0", {{L"a.b", Product | Manager}}, L""},
        {"leading digits count",
         {{L"4x.1y", Product | Manager}, {L"3.9", Product | Manager}},
         L"4x.1y"},
    };
    for (const NewestCase& c : cases) {
        SCOPED_TRACE(c.what);
        const test::TestInstallation installed;
        for (const auto& [version, has] : c.versions) {
            Install(installed, version, has);
        }
        EXPECT_EQ(ChosenManager(), *c.chosen == L'\0' ? L"" : ManagerOf(c.chosen));
    }
}

TEST_F(FlowForgeVersions, OfEqualVersionsTheFirstListedIsKept) {
    Install(m_installed, L"3.1", Product | Manager);
    Install(m_installed, L"3.01", Product | Manager);
    wchar_t first[16] = {};
    DWORD length = 16;
    HKEY key = nullptr;
    ASSERT_EQ(
        RegOpenKeyExW(HKEY_LOCAL_MACHINE, (L"Software\\" + Versions64).c_str(), 0, KEY_READ, &key),
        ERROR_SUCCESS);
    EXPECT_EQ(RegEnumKeyExW(key, 0, first, &length, nullptr, nullptr, nullptr, nullptr),
              ERROR_SUCCESS);
    RegCloseKey(key);
    EXPECT_EQ(ChosenManager(), ManagerOf(first));
}

TEST_F(FlowForgeVersions, NamesOfAnyNumberOfPiecesGetASection) {
    for (const wchar_t* const version : {L"3", L"3.1.2", L"3.01", L"2.1"}) {
        Install(m_installed, version, Product);
    }
    BuildFlowForgeVersionsSection(m_sections, false);
    EXPECT_EQ(Sorted(TitlesOf(m_sections)),
              (std::vector<std::wstring>{L"Flow Forge 2.1", L"Flow Forge 3", L"Flow Forge 3.01",
                                         L"Flow Forge 3.1.2"}));
}

TEST_F(FlowForgeVersions, SectionsStandInTheRegistrysOwnOrder) {
    const std::vector<std::wstring> listed = {L"10.0", L"9.9", L"2.1", L"3"};
    std::vector<std::wstring> titles;
    for (const std::wstring& version : listed) {
        Install(m_installed, version, Product);
        titles.push_back(L"Flow Forge " + version);
    }
    BuildListed(listed, m_sections);
    EXPECT_EQ(TitlesOf(m_sections), titles);
}

TEST_F(FlowForgeVersions, OnlyTheName21HasTheHelpFile) {
    for (const wchar_t* const version : {L"2.10", L"2.1.0", L"02.1", L"2.1 ", L" 2.1"}) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(version)));
        const test::TestInstallation installed;
        installed.SetText(Versions64 + version, L"InstallationPath", L"C:\\KorTest");
        installed.MakeFile(L"C:\\KorTest\\FlowForge.exe");
        Catalogue sections;
        BuildFlowForgeVersionsSection(sections, false);
        ASSERT_EQ(sections.Count(), 1);
        ASSERT_EQ(sections[0]->Count(), 6);
        const ControlCenterItem& help = *(*sections[0])[2];
        EXPECT_STREQ(help.Label.Text(), L"Vantrel Flow Forge User Guide");
        EXPECT_STREQ(help.Path.Text(), L"C:\\KorTest\\Documentation/FlowForgeHelp.chm");
    }
}

TEST_F(FlowForgeVersions, TheViewsHaveNothingInCommon) {
    Install(m_installed, L"3.0", Product | Manager);
    Install(m_installed, L"2.0", Product | Manager, Versions32);
    BuildFlowForgeVersionsSection(m_sections, true);
    ASSERT_EQ(m_sections.Count(), 1);
    EXPECT_STREQ(m_sections[0]->Title.Text(), L"Flow Forge 2.0 (32-bit)");
    EXPECT_STREQ(m_sections[0]->Key.Text(), L"FLOWFORGE-2.0");
    EXPECT_EQ(ChosenManager(true), ManagerOf(L"2.0"));
    EXPECT_EQ(ChosenManager(false), ManagerOf(L"3.0"));
}

TEST_F(FlowForgeVersions, WithoutVersionsIn32BitsThereIsNoSection) {
    Install(m_installed, L"3.0", Product | Manager);
    BuildFlowForgeVersionsSection(m_sections, true);
    EXPECT_EQ(m_sections.Count(), 0);
}

TEST_F(FlowForgeVersions, AVersionInBothViewsSharesKeyAndIds) {
    Install(m_installed, L"3.0", Product);
    Install(m_installed, L"3.0", Product, Versions32);
    BuildFlowForgeVersionsSection(m_sections, false);
    BuildFlowForgeVersionsSection(m_sections, true);
    ASSERT_EQ(m_sections.Count(), 2);
    EXPECT_STREQ(m_sections[0]->Key.Text(), m_sections[1]->Key.Text());
    EXPECT_STREQ((*m_sections[0])[0]->Id.Text(), (*m_sections[1])[0]->Id.Text());
    EXPECT_STREQ(m_sections[1]->Title.Text(), L"Flow Forge 3.0 (32-bit)");
}

TEST_F(FlowForgeVersions, AValueThatIsNoTextCountsAsAnEmptyFolder) {
    const DWORD number = 5;
    m_installed.SetBytes(Versions64 + L"3.0", L"InstallationPath", REG_DWORD, &number, 4);
    BuildFlowForgeVersionsSection(m_sections, false);
    EXPECT_EQ(m_sections.Count(), 0);
    // The value is there, so the folder was tested; it is the root of the drive.
    ASSERT_EQ(m_sections.Omissions.Count(), 1);
    EXPECT_STREQ(m_sections.Omissions[0].Path.Text(), L"\\FlowForge.exe");
    EXPECT_STREQ(m_sections.Omissions[0].Reason,
                 L"neither FlowForge.exe nor a Tools folder exists");
}

TEST_F(FlowForgeVersions, AnExamplesPathThatIsNoTextIsALoneBackslash) {
    Install(m_installed, L"3.1", Product);
    const DWORD number = 5;
    m_installed.SetBytes(Versions64 + L"3.1", L"ExamplesPath", REG_DWORD, &number, 4);
    BuildFlowForgeVersionsSection(m_sections, false);
    ASSERT_EQ(m_sections.Count(), 1);
    EXPECT_STREQ((*m_sections[0])[1]->Path.Text(),
                 L"\\/Example HMI/DotNetExamples/Examples/Velnora/bin/x86/Release/Velnora.exe");
}

TEST_F(FlowForgeVersions, AManagersFolderThatIsNoTextIsTheRoot) {
    Install(m_installed, L"2.0", Product | Manager);
    const DWORD number = 5;
    m_installed.SetBytes(Versions64 + L"3.0", L"InstallationPath", REG_DWORD, &number, 4);
    HOOK_IMPORT(exists, PathFileExistsW, [&](LPCWSTR path) {
        return std::wstring(path) == L"/Tools/FlowForgeRuntimeManager.exe" ? TRUE
                                                                           : exists.Original(path);
    });
    EXPECT_EQ(ChosenManager(), L"/Tools/FlowForgeRuntimeManager.exe")
        << "the value is there, so the newest version's manager was looked for";
}

// A listed subkey that cannot be opened: the walk loses its place, and nothing that comes after it
// is found any more.
void BuildWhileRefused(const std::wstring& refused, Catalogue& sections) {
    HOOK_IMPORT(open, RegOpenKeyExW, [&](HKEY root, LPCWSTR subKey, auto... rest) {
        const std::wstring name = subKey;
        const std::size_t at = name.rfind(L'\\');
        return at != std::wstring::npos && name.substr(at + 1) == refused
                   ? LSTATUS{ERROR_ACCESS_DENIED}
                   : open.Original(root, subKey, rest...);
    });
    BuildFlowForgeVersionsSection(sections, false);
}

constexpr wchar_t NotRead[] = L"the version's key, or one listed beside it, cannot be read";

TEST_F(FlowForgeVersions, ARefusedSubKeyOfTwoPiecesLeavesNothingToFind) {
    for (const wchar_t* const version : {L"1.0", L"2.0", L"3.0"}) {
        Install(m_installed, version, Product | Manager);
    }
    Catalogue without;
    BuildWhileRefused(L"2.0", without);
    EXPECT_EQ(without.Count(), 0)
        << "the place is lost while the manager is chosen, before any section is made";
    ASSERT_EQ(without.Omissions.Count(), 3);
    for (const Omission& omission : without.Omissions) {
        EXPECT_STREQ(omission.Reason, NotRead);
    }
    Catalogue with;
    BuildWhileRefused(L"none", with);
    EXPECT_EQ(with.Count(), 3);
}

TEST_F(FlowForgeVersions, AValueOfTheListItselfIsNoRefusedVersions) {
    // Neither while the manager is chosen ("2.0") nor while the sections are made ("2.0.0").
    for (const wchar_t* const refused : {L"2.0", L"2.0.0"}) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(refused)));
        Install(m_installed, L"", Product | Manager);
        Install(m_installed, refused, Product | Manager);
        Catalogue sections;
        BuildWhileRefused(refused, sections);
        EXPECT_EQ(sections.Count(), 0) << "the key is closed and finds nothing";
        m_installed.DeleteKey(Versions64 + refused);
    }
}

TEST_F(FlowForgeVersions, ARefusedSubKeyOfThreePiecesEndsTheSections) {
    for (const wchar_t* const version : {L"1.0", L"2.0.0", L"3.0"}) {
        Install(m_installed, version, Product | Manager);
    }
    BuildWhileRefused(L"2.0.0", m_sections);
    ASSERT_EQ(m_sections.Count(), 1);
    EXPECT_STREQ(m_sections[0]->Key.Text(), L"FLOWFORGE-1.0");
    ASSERT_EQ(m_sections.Omissions.Count(), 2);
    EXPECT_STREQ(m_sections.Omissions[1].Title.Text(), L"Flow Forge 3.0");
    EXPECT_STREQ(m_sections.Omissions[1].Reason, NotRead);
}

} // namespace
