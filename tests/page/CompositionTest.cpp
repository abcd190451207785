// The page's markup and the heights that go with it.
#include <gtest/gtest.h>
#include <windows.h>

#include <shlwapi.h>

#include <cstdio>
#include <string>

#include "page/ControlCenterPage.h"
#include "tests/support/GuardedMemory.h"
#include "tests/support/ImportHook.h"
#include "tests/support/TestInstallation.h"

namespace {

// A valid installation with one file, C:\KorTest\x; items that name it are shown.
class Composition : public testing::Test {
protected:
    Composition() {
        m_installed.SetText(test::LibraryKey, L"KorVersion", L"1");
        m_installed.MakeFile(L"C:\\KorTest\\x");
    }

    // A section with so many shown and missing items, at its place by the order of the calls.
    ControlCenterSection& Add(const wchar_t* key, const wchar_t* title, int shown,
                              int missing = 0) {
        auto* const section = new ControlCenterSection(key, title);
        m_page.Sections.Add(section);
        for (int i = 0; i < shown + missing; ++i) {
            const wchar_t* const path = i < shown ? L"C:\\KorTest\\x" : L"C:\\KorTest\\missing";
            section->Add(new ControlCenterItem(section, L"L", L"", L"", path, ItemProgram, L""));
        }
        m_page.RowCount = m_page.Sections.PlaceOnGrid(m_page.ColumnCount);
        return *section;
    }

    std::wstring Compose() {
        m_page.ComposePage();
        return m_page.PageHtml.Text();
    }

    test::TestInstallation m_installed;
    ControlCenterPage m_page;
};

constexpr wchar_t Cell[] = L"<td class =\"column\" width=\"50%\" valign=\"top\">";

std::wstring Item(const wchar_t* id) {
    return std::wstring(L"<li> <SPAN class=item id=") + id +
           L" style=color:#0000FF;text-decoration:underline>L</SPAN> </li>";
}

TEST_F(Composition, TwoSectionsGiveOneRow) {
    Add(L"A", L"Alpha", 1);
    Add(L"B", L"Beta", 2, 1);
    m_page.WindowHeight = 1000;
    EXPECT_EQ(Compose(), std::wstring(L"<table class=\"innertable\" width=\"100%\">\n<tr>\n\n") +
                             Cell + L"<div id=AlphaSection><h2>Alpha</h2><ul>" + Item(L"A_0") +
                             L"</ul></div></td>" + Cell + L"<div id=BetaSection><h2>Beta</h2><ul>" +
                             Item(L"B_0") + Item(L"B_1") + L"</ul></div></td></tr></table>");
    EXPECT_EQ(m_page.WindowHeight, 1000 + 45 + 2 * 20) << "by the taller section";
    EXPECT_EQ(m_page.Sections[0]->ShownItemCount, 1);
    EXPECT_EQ(m_page.Sections[1]->ShownItemCount, 2);
}

TEST_F(Composition, TheTallerSectionMayStandOnTheLeft) {
    Add(L"A", L"Alpha", 3);
    Add(L"B", L"Beta", 1);
    m_page.WindowHeight = 0;
    Compose();
    EXPECT_EQ(m_page.WindowHeight, 45 + 3 * 20);
}

// Where a composition ends that needs one piece of memory more than there is.
using CompositionDeathTest = Composition;

TEST_F(CompositionDeathTest, ARowsHeightIsAddedBeforeTheRowIsClosed) {
    // The page's text grows in steps of 32 characters. Here the row's closing begins a step.
    constexpr std::int64_t Step = 32;
    constexpr std::int64_t Closings = 8 + 5; // "</table>" and "</tr>"
    m_page.ColumnCount = 1;
    auto* const section = new ControlCenterSection(L"A", L"Alpha");
    m_page.Sections.Add(section);
    m_page.Sections.PlaceOnGrid(1);
    section->Add(
        new ControlCenterItem(section, L"L", L"", L"", L"C:\\KorTest\\x", ItemProgram, L""));
    m_page.ComposePage();
    const std::int64_t before = m_page.PageHtml.Count() - Closings;
    const std::int64_t missing = (Step - before % Step) % Step;
    (*section)[0]->Label += std::wstring(static_cast<std::size_t>(missing), L'L').c_str();
    const std::int64_t needed = before + missing + Step;
    const auto composeWithoutMemory = [&] {
        m_page.WindowHeight = 1000;
        HOOK_IMPORT(box, MessageBoxW, [&](HWND, LPCWSTR text, LPCWSTR caption, UINT style) {
            std::fprintf(stderr, "[%ls|%ls|%u] height %lld", text, caption, style,
                         static_cast<long long>(m_page.WindowHeight));
            return IDOK;
        });
        const test::AllocationFailure failure(1,
                                              static_cast<std::size_t>(needed) * sizeof(wchar_t));
        m_page.ComposePage();
    };
    EXPECT_EXIT(
        composeWithoutMemory(), testing::ExitedWithCode(1),
        "\\[Not enough heap memory to process\\.\\|Fatal memory error\\.\\|0\\] height 1065");
}

TEST_F(Composition, TheSecondRowsSecondCellOfThreeSectionsStaysOpen) {
    for (const wchar_t* const key : {L"A", L"B", L"C"}) {
        Add(key, key, 1);
    }
    m_page.WindowHeight = 0;
    const std::wstring html = Compose();
    EXPECT_EQ(html.substr(html.rfind(L"</td>")), std::wstring(L"</td>") + Cell + L"</tr></table>");
    EXPECT_EQ(m_page.WindowHeight, 2 * (45 + 20));
}

TEST_F(Composition, ASectionOfMissingTargetsIsAnEmptyCellThatStillCounts) {
    Add(L"A", L"Alpha", 0, 3);
    m_page.WindowHeight = 0;
    EXPECT_EQ(Compose(), std::wstring(L"<table class=\"innertable\" width=\"100%\">\n<tr>\n\n") +
                             Cell + L"</td>" + Cell + L"</tr></table>");
    EXPECT_EQ(m_page.WindowHeight, 45);
    EXPECT_EQ(m_page.Sections[0]->ShownItemCount, 0);
}

TEST_F(Composition, AnEmptyCatalogueHasOneRowOfOpenCells) {
    m_page.RowCount = 1;
    m_page.WindowHeight = 7;
    EXPECT_EQ(Compose(), std::wstring(L"<table class=\"innertable\" width=\"100%\">\n<tr>\n\n") +
                             Cell + Cell + L"</tr></table>");
    EXPECT_EQ(m_page.WindowHeight, 7);
}

TEST_F(Composition, ASingleColumnHasNoGridOpeningButItsClosing) {
    m_page.ColumnCount = 1;
    Add(L"A", L"Alpha", 1);
    Add(L"B", L"Beta", 1);
    m_page.Sections[1]->Column = 5; // not compared
    EXPECT_EQ(Compose(), L"<tr>\n\n<td class =\"column\" width=\"100%\" valign=\"top\">"
                         L"<div id=AlphaSection><h2>Alpha</h2><ul>" +
                             Item(L"A_0") +
                             L"</ul></div></td></tr>"
                             L"<tr>\n\n<td class =\"column\" width=\"100%\" valign=\"top\">"
                             L"<div id=BetaSection><h2>Beta</h2><ul>" +
                             Item(L"B_0") + L"</ul></div></td></tr></table>");
}

TEST_F(Composition, ThreeColumnsAreAThirdEach) {
    m_page.ColumnCount = 3;
    Add(L"A", L"Alpha", 1);
    EXPECT_NE(Compose().find(L"width=\"33%\""), std::wstring::npos);
}

TEST_F(Composition, AnInvalidInstallationGivesTheMessageAlone) {
    m_installed.DeleteValue(test::LibraryKey, L"KorVersion");
    Add(L"A", L"Alpha", 2);
    m_page.PageHtml = L"what was there before";
    m_page.WindowHeight = 55;
    EXPECT_EQ(Compose(), L"<div id=KORSection><h2>This KOR hasn't been installed by a valid "
                         L"install</h2><ul></ul></div>");
    EXPECT_EQ(m_page.WindowHeight, 55);
}

TEST_F(Composition, LeavesTheRowsHeightsOnRequest) {
    Add(L"A", L"Alpha", 1);
    Add(L"B", L"Beta", 3);
    Add(L"C", L"Gamma", 0, 1);
    CTable1D<std::int64_t> heights;
    for (int i = 0; i < 2; ++i) {
        m_page.ComposePage(&heights);
        ASSERT_EQ(heights.Count(), 2) << "those of this composition only";
        EXPECT_EQ(heights[0], 45 + 3 * 20);
        EXPECT_EQ(heights[1], 45);
    }
    m_installed.DeleteValue(test::LibraryKey, L"KorVersion");
    m_page.ComposePage(&heights);
    EXPECT_EQ(heights.Count(), 0);
}

TEST_F(Composition, EveryPathIsTestedOnceEachTime) {
    Add(L"A", L"Alpha", 2, 1);
    Add(L"B", L"Beta", 1);
    int tests = 0;
    HOOK_IMPORT(exists, PathFileExistsW, [&](LPCWSTR path) {
        ++tests;
        return exists.Original(path);
    });
    m_page.ComposePage();
    m_page.ComposePage();
    EXPECT_EQ(tests, 8);
}

TEST_F(Composition, TheFirstSectionOfAPlaceIsTaken) {
    Add(L"A", L"Alpha", 1);
    Add(L"B", L"Beta", 1).Column = 0;
    EXPECT_EQ(Compose().find(L"Beta"), std::wstring::npos);
}

TEST(ControlCenterPage, BuildsFromScratchEachTime) {
    const test::TestInstallation installed;
    ControlCenterPage page;
    page.BuildSections();
    EXPECT_EQ(page.Sections.Count(), 2) << "the two tool sections";
    EXPECT_EQ(page.RowCount, 1);
    installed.SetText(test::LibraryKey, L"KORType", L"Development");
    page.BuildSections();
    EXPECT_EQ(page.Sections.Count(), 4);
    EXPECT_EQ(page.RowCount, 2);
    page.BuildSections();
    EXPECT_EQ(page.Sections.Count(), 4) << "nothing is there twice";
}

// Tells how many blocks of memory there are at its end.
class Witness : public ControlCenterSection {
public:
    explicit Witness(std::int64_t& blocks)
        : ControlCenterSection(L"W", L"Witness"), m_blocks(blocks) {}
    Witness(const Witness&) = delete;
    Witness& operator=(const Witness&) = delete;
    ~Witness() override { m_blocks = test::LiveBlocks(); }

private:
    std::int64_t& m_blocks;
};

TEST(ControlCenterPage, EndsItsSectionsBeforeItsTexts) {
    std::int64_t atTheSectionsEnd = 0;
    std::int64_t before = 0;
    {
        ControlCenterPage page;
        page.PageHtml = L"html";
        page.InstallDir = L"C:\\Lib\\";
        page.Sections.Add(new Witness(atTheSectionsEnd));
        before = test::LiveBlocks();
    }
    EXPECT_EQ(atTheSectionsEnd, before) << "a text was given back before";
}

TEST(ControlCenterPage, AsksForTheFourFolders) {
    const test::TestInstallation installed;
    installed.SetText(test::InstallKey, L"installdir", L"C:\\Lib\\");
    installed.SetText(test::InstallKey + L"\\KOR", L"ExamplesRootPath", L"C:\\Ex");
    installed.SetText(test::InstallKey + L"\\ActiveKor", L"ExamplesRootPath", L"C:\\AEx");
    installed.SetText(test::FlowForgeKey, L"InstallationPath", L"C:\\FF");
    ControlCenterPage page;
    page.QueryInstallation();
    EXPECT_STREQ(page.InstallDir.Text(), L"C:\\Lib\\");
    EXPECT_STREQ(page.ActiveKorExamplesRoot.Text(), L"C:\\AEx");
    EXPECT_STREQ(page.KorExamplesRoot.Text(), L"C:\\Ex");
    EXPECT_STREQ(page.FlowForgeInstallDir.Text(), L"C:\\FF\\");
}

TEST(ControlCenterPage, StartsWithTwoColumnsAndOneRow) {
    const ControlCenterPage page;
    EXPECT_EQ(page.ColumnCount, 2);
    EXPECT_EQ(page.RowCount, 1);
    EXPECT_EQ(page.SectionBaseHeight, 45);
    EXPECT_EQ(page.ItemHeight, 20);
}

} // namespace
