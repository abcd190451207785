// Sections, items, ids and the grid.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "catalogue/Catalogue.h"
#include "tests/support/GuardedMemory.h"
#include "tests/support/Printing.h"
#include "tests/support/TestInstallation.h"

namespace {

void AddItem(ControlCenterSection& section, const wchar_t* label) {
    section.Add(
        new ControlCenterItem(&section, label, L"before", L"after", L"C:\\x", ItemFolder, L"args"));
}

TEST(ControlCenterSection, StartsEmptyAndUnplaced) {
    const ControlCenterSection section(L"KOR", L"Quick Start");
    EXPECT_EQ(section.Key, L"KOR");
    EXPECT_EQ(section.Title, L"Quick Start");
    EXPECT_EQ(section.Count(), 0);
    EXPECT_EQ(section.ShownItemCount, 0);
    EXPECT_EQ(section.Column, -1);
}

TEST(ControlCenterItem, KeepsItsTextsAndFormsItsId) {
    ControlCenterSection section(L"KOR", L"Quick Start");
    AddItem(section, L"first");
    AddItem(section, L"second");
    const ControlCenterItem& second = *section[1];
    EXPECT_EQ(section[0]->Id, L"KOR_0");
    EXPECT_EQ(second.Id, L"KOR_1");
    EXPECT_EQ(second.Label, L"second");
    EXPECT_EQ(second.Prefix, L"before");
    EXPECT_EQ(second.Suffix, L"after");
    EXPECT_EQ(second.Path, L"C:\\x");
    EXPECT_EQ(second.Type, ItemFolder);
    EXPECT_EQ(second.Arguments, L"args");
    EXPECT_EQ(second.Section, &section);

    ControlCenterSection other(L"GUI", L"Tools");
    AddItem(other, L"first");
    EXPECT_EQ(other[0]->Id, L"GUI_0") << "ids begin anew in every section";
}

TEST(ControlCenterItem, BlanksInTheIdBecomeHyphens) {
    ControlCenterSection section(L"A B", L"title");
    for (int i = 0; i < 4; ++i) {
        AddItem(section, L"x");
    }
    EXPECT_EQ(section[3]->Id, L"A-B_3");
    EXPECT_EQ(section.Key, L"A B");

    ControlCenterSection blanks(L"  a  b ", L"title");
    AddItem(blanks, L"x");
    EXPECT_EQ(blanks[0]->Id, L"--a--b-_0");
}

class TheSectionsMarkup : public testing::Test {
protected:
    TheSectionsMarkup() { m_installed.MakeFile(L"C:\\KorTest\\x"); }

    static void AddItem(ControlCenterSection& section, const wchar_t* path,
                        const wchar_t* label = L"L", const wchar_t* prefix = L"",
                        const wchar_t* suffix = L"") {
        section.Add(new ControlCenterItem(&section, label, prefix, suffix, path, ItemProgram, L""));
    }

    test::TestInstallation m_installed;
};

TEST_F(TheSectionsMarkup, HasTextsAsTheyAre) {
    ControlCenterSection section(L"K", L"<b>\"A & B\"");
    AddItem(section, L"C:\\KorTest\\x", L"a<i>b & \"c\"", L"<u>", L"%s</u>\x00e9");
    EXPECT_EQ(section.ComposeSectionHtml(),
              L"<div id=<b>\"A & B\"Section><h2><b>\"A & B\"</h2><ul><li><u> <SPAN class=item "
              L"id=K_0 style=color:#0000FF;text-decoration:underline>a<i>b & \"c\"</SPAN> "
              L"%s</u>\x00e9</li></ul></div>");
}

TEST_F(TheSectionsMarkup, KeepsTheTitlesBlanksInItsId) {
    ControlCenterSection section(L"KOR", L"Quick Start");
    AddItem(section, L"C:\\KorTest\\x");
    EXPECT_EQ(std::wstring(section.ComposeSectionHtml().Text())
                  .rfind(L"<div id=Quick StartSection><h2>Quick Start</h2>", 0),
              0U);
}

TEST_F(TheSectionsMarkup, KeepsTheFormerCountOfAListThatBecameEmpty) {
    ControlCenterSection section(L"A", L"Alpha");
    AddItem(section, L"C:\\KorTest\\x");
    AddItem(section, L"C:\\KorTest\\x");
    section.ComposeSectionHtml();
    m_installed.DeleteFileOf(L"C:\\KorTest\\x");
    EXPECT_EQ(section.ComposeSectionHtml(), L"");
    EXPECT_EQ(section.ShownItemCount, 2);
}

// Before main, so before any item.
const std::int64_t LongestLabelAtStart = LongestLabelLength;

TEST(ControlCenterItem, AtStartNoLabelIsRemembered) {
    EXPECT_EQ(LongestLabelAtStart, 0);
}

TEST(ControlCenterItem, TheLongestLabelIsRemembered) {
    ControlCenterSection section(L"K", L"T");
    LongestLabelLength = 0;
    AddItem(section, L"12345");
    EXPECT_EQ(LongestLabelLength, 5);
    AddItem(section, L"123");
    EXPECT_EQ(LongestLabelLength, 5);
    AddItem(section, L"1234567");
    EXPECT_EQ(LongestLabelLength, 7);
}

TEST(ControlCenterSection, DeletesItsItemsAndMindsMissingOnes) {
    const std::int64_t before = test::LiveBlocks();
    {
        ControlCenterSection section(L"K", L"T");
        AddItem(section, L"x");
        section.Add(nullptr);
        AddItem(section, L"y");
    }
    EXPECT_EQ(test::LiveBlocks(), before);
}

TEST(Catalogue, DeletesItsSectionsAndMindsMissingOnes) {
    const std::int64_t before = test::LiveBlocks();
    {
        Catalogue catalogue;
        catalogue.Add(new ControlCenterSection(L"K", L"T"));
        AddItem(*catalogue[0], L"x");
        catalogue.Add(nullptr);
    }
    EXPECT_EQ(test::LiveBlocks(), before);
}

struct GridCase {
    int sections;
    int columns;
    std::int64_t rowCount;
    std::vector<std::pair<int, int>> places; // row, column
};

TEST(Catalogue, FillsTheGridLeftToRight) {
    const GridCase cases[] = {
        {0, 2, 1, {}},
        {1, 2, 1, {{0, 0}}},
        {2, 2, 1, {{0, 0}, {0, 1}}},
        {3, 2, 2, {{0, 0}, {0, 1}, {1, 0}}},
        {4, 2, 2, {{0, 0}, {0, 1}, {1, 0}, {1, 1}}},
        {3, 1, 3, {{0, 0}, {1, 0}, {2, 0}}},
    };
    for (const GridCase& c : cases) {
        SCOPED_TRACE(c.sections);
        Catalogue catalogue;
        for (int i = 0; i < c.sections; ++i) {
            catalogue.Add(new ControlCenterSection(L"K", L"T"));
        }
        EXPECT_EQ(catalogue.PlaceOnGrid(c.columns), c.rowCount);
        for (std::int64_t i = 0; i < catalogue.Count(); ++i) {
            const auto [row, column] = c.places[static_cast<std::size_t>(i)];
            EXPECT_EQ(catalogue[i]->Row, row);
            EXPECT_EQ(catalogue[i]->Column, column);
        }
    }
}

TEST(Catalogue, FindsAnItemByItsId) {
    Catalogue catalogue;
    for (const wchar_t* const key : {L"A", L"A_1", L"a", L"B C"}) {
        catalogue.Add(new ControlCenterSection(key, L"T"));
        AddItem(*catalogue[catalogue.Count() - 1], key);
    }
    AddItem(*catalogue[2], L"second");
    catalogue[0]->Add(nullptr);
    const std::pair<const wchar_t*, const ControlCenterItem*> cases[] = {
        {L"A_0", (*catalogue[0])[0]},
        {L"a_0", (*catalogue[0])[0]},
        {L"a_x", (*catalogue[0])[0]},
        {L"A_1_0", (*catalogue[1])[0]},
        {L"A_1", (*catalogue[2])[1]}, // the first section has none there
        {L"A_2", nullptr},
        {L"A_-1", nullptr},
        {L"B-C_0", nullptr}, // the key kept its blank
        {L"B C_0", (*catalogue[3])[0]},
        {L"A", nullptr},
        {L"", nullptr},
    };
    for (const auto& [id, item] : cases) {
        EXPECT_EQ(catalogue.FindItem(id), item) << testing::PrintToString(std::wstring(id));
    }
}

std::vector<std::wstring> KeysOf(const Catalogue& catalogue) {
    std::vector<std::wstring> keys;
    for (const ControlCenterSection* const section : catalogue) {
        keys.emplace_back(section->Key.Text());
    }
    return keys;
}

TEST(Catalogue, CallsTheBuildersInTheirOrder) {
    const test::TestInstallation installed;
    installed.SetText(test::VersionsKey + L"\\3.0", L"InstallationPath", L"C:\\KorTest\\FF30");
    installed.SetText(L"Wow6432Node\\" + test::VersionsKey + L"\\2.1", L"InstallationPath",
                      L"C:\\KorTest\\FF21");
    installed.MakeKey(test::LibraryKey + L"\\RTX");
    for (const wchar_t* const file :
         {L"C:\\KorTest\\FF30\\FlowForge.exe", L"C:\\KorTest\\FF21\\FlowForge.exe",
          L"C:\\KorTest\\Lib\\ActiveKOR\\Controls\\kor.ocx"}) {
        installed.MakeFile(file);
    }
    Installation installation;
    installation.InstallDir = L"C:\\KorTest\\Lib\\";
    installation.FlowForgeInstallDir = L"C:\\KorTest\\FF30\\";

    Catalogue development;
    development.Build(installation, true);
    EXPECT_EQ(KeysOf(development),
              (std::vector<std::wstring>{L"KOR", L"FOLDERS", L"TOOLS", L"GUI", L"FLOWFORGE-3.0",
                                         L"FLOWFORGE-2.1", L"ACTIVEKOR", L"FLOWFORGE", L"RT"}));

    Catalogue runtime;
    runtime.Build(installation, false);
    EXPECT_EQ(KeysOf(runtime),
              (std::vector<std::wstring>{L"TOOLS", L"GUI", L"FLOWFORGE-3.0", L"FLOWFORGE-2.1",
                                         L"ACTIVEKOR", L"FLOWFORGE", L"RT"}));
}

TEST(Catalogue, AnEmptyInstallationStillHasTheToolSections) {
    const test::TestInstallation nothing;
    Catalogue catalogue;
    catalogue.Build(Installation(), false);
    EXPECT_EQ(KeysOf(catalogue), (std::vector<std::wstring>{L"TOOLS", L"GUI"}));
}

} // namespace
