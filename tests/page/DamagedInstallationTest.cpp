// Installations as they should not be: the page is composed all the same.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "page/ControlCenterPage.h"
#include "tests/support/TestInstallation.h"

namespace {

const std::wstring Versions = test::VersionsKey + L"\\";

std::wstring ComposedPage(ControlCenterPage& page) {
    page.QueryInstallation();
    page.BuildSections();
    page.ComposePage();
    return page.PageHtml.Text();
}

bool Contains(const std::wstring& text, const std::wstring& part) {
    return text.find(part) != std::wstring::npos;
}

void ExpectClosedGrid(const std::wstring& html) {
    EXPECT_EQ(html.rfind(L"<table class=\"innertable\"", 0), 0U);
    EXPECT_EQ(html.substr(html.size() - 8), L"</table>");
}

TEST(DamagedInstallation, ValuesOfWrongTypes) {
    const test::TestInstallation installed;
    const BYTE bytes[] = {1, 2, 3, 4, 5};
    installed.SetText(test::LibraryKey, L"KorVersion", L"1");
    installed.SetBytes(test::LibraryKey, L"KORType", REG_BINARY, bytes, 5);
    installed.SetBytes(test::InstallKey, L"installdir", REG_QWORD, bytes, 5);
    installed.SetBytes(test::InstallKey + L"\\KOR", L"ExamplesRootPath", 0x99, bytes, 5);
    installed.SetBytes(Versions + L"3.0", L"InstallationPath", REG_SZ, bytes, 5);
    installed.SetBytes(Versions + L"3.1", L"InstallationPath", REG_MULTI_SZ, bytes, 3);
    ControlCenterPage page;
    ExpectClosedGrid(ComposedPage(page));
    EXPECT_STREQ(page.InstallDir.Text(), L"");
    EXPECT_EQ(page.Sections.Count(), 2);
}

TEST(DamagedInstallation, AFolderInAFilesPlaceIsStillAnExistingTarget) {
    const test::TestInstallation installed;
    installed.SetText(test::LibraryKey, L"KorVersion", L"1");
    installed.SetText(test::InstallKey, L"installdir", L"C:\\KorTest\\");
    installed.MakeFolder(L"C:\\KorTest\\Tools\\KorConfig.exe");
    ControlCenterPage page;
    EXPECT_TRUE(Contains(ComposedPage(page), L">KORConfig</SPAN>"));
}

TEST(DamagedInstallation, AnInstallFolderOf3000Characters) {
    const test::TestInstallation installed;
    const std::wstring folder = L"C:\\" + std::wstring(2996, L'f') + L"\\";
    installed.MakeDevelopment(folder);
    ControlCenterPage page;
    const std::wstring html = ComposedPage(page);
    ExpectClosedGrid(html);
    EXPECT_EQ(page.InstallDir.Length(), 3000);
    EXPECT_FALSE(Contains(html, L"<li>"));
}

TEST(DamagedInstallation, NamesWithQuotesBracketsAndOtherLetters) {
    const test::TestInstallation installed;
    installed.SetText(test::LibraryKey, L"KorVersion", L"1");
    const std::wstring name = L"3.0 \"<b>&'\x00e9\x4e2d\xd83d\xde00 x";
    installed.SetText(Versions + name, L"InstallationPath", L"C:\\KorTest");
    installed.MakeFile(L"C:\\KorTest\\FlowForge.exe");
    ControlCenterPage page;
    const std::wstring html = ComposedPage(page);
    EXPECT_TRUE(Contains(html, L"<h2>Flow Forge " + name + L"</h2>"));
    EXPECT_TRUE(Contains(html, L"id=FLOWFORGE-3.0-\"<b>&'\x00e9\x4e2d\xd83d\xde00-x_0 "))
        << "blanks are hyphens in the id";
    ExpectClosedGrid(html);
}

TEST(DamagedInstallation, AVersionNameOf255Characters) {
    const test::TestInstallation installed;
    installed.SetText(test::LibraryKey, L"KorVersion", L"1");
    const std::wstring name(255, L'9');
    installed.SetText(Versions + name, L"InstallationPath", L"C:\\KorTest");
    installed.MakeFile(L"C:\\KorTest\\FlowForge.exe");
    ControlCenterPage page;
    EXPECT_TRUE(Contains(ComposedPage(page), L"<h2>Flow Forge " + name + L"</h2>"));
}

} // namespace
