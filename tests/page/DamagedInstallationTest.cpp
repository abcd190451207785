// Installations as they should not be: the page is composed all the same.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "page/ControlCenterPage.h"
#include "tests/support/TestInstallation.h"

namespace {

const std::wstring Versions = test::VersionsKey + L"\\";

// Something that has a version, and so is an installation.
class DamagedInstallation : public testing::Test {
protected:
    DamagedInstallation() { m_installed.SetText(test::LibraryKey, L"KorVersion", L"1"); }

    std::wstring Compose() {
        m_page.QueryInstallation();
        m_page.BuildSections();
        m_page.ComposePage();
        return m_page.PageHtml.Text();
    }

    test::TestInstallation m_installed;
    ControlCenterPage m_page;
};

bool Contains(const std::wstring& text, const std::wstring& part) {
    return text.find(part) != std::wstring::npos;
}

void ExpectClosedGrid(const std::wstring& html) {
    EXPECT_EQ(html.rfind(L"<table class=\"innertable\"", 0), 0U);
    EXPECT_EQ(html.substr(html.size() - 8), L"</table>");
}

TEST_F(DamagedInstallation, ValuesOfWrongTypes) {
    const BYTE bytes[] = {1, 2, 3, 4, 5};
    m_installed.SetBytes(test::LibraryKey, L"KORType", REG_BINARY, bytes, 5);
    m_installed.SetBytes(test::InstallKey, L"installdir", REG_QWORD, bytes, 5);
    m_installed.SetBytes(test::InstallKey + L"\\KOR", L"ExamplesRootPath", 0x99, bytes, 5);
    m_installed.SetBytes(Versions + L"3.0", L"InstallationPath", REG_SZ, bytes, 5);
    m_installed.SetBytes(Versions + L"3.1", L"InstallationPath", REG_MULTI_SZ, bytes, 3);
    ExpectClosedGrid(Compose());
    EXPECT_STREQ(m_page.InstallDir.Text(), L"");
    EXPECT_EQ(m_page.Sections.Count(), 2);
}

TEST_F(DamagedInstallation, AFolderInAFilesPlaceIsStillAnExistingTarget) {
    m_installed.SetText(test::InstallKey, L"installdir", L"C:\\KorTest\\");
    m_installed.MakeFolder(L"C:\\KorTest\\Tools\\KorConfig.exe");
    EXPECT_TRUE(Contains(Compose(), L">KORConfig</SPAN>"));
}

TEST_F(DamagedInstallation, AnInstallFolderOf3000Characters) {
    const std::wstring folder = L"C:\\" + std::wstring(2996, L'f') + L"\\";
    m_installed.MakeDevelopment(folder);
    const std::wstring html = Compose();
    ExpectClosedGrid(html);
    EXPECT_EQ(m_page.InstallDir.Length(), 3000);
    EXPECT_FALSE(Contains(html, L"<li>"));
}

TEST_F(DamagedInstallation, NamesWithQuotesBracketsAndOtherLetters) {
    const std::wstring name = L"3.0 \"<b>&'\x00e9\x4e2d\xd83d\xde00 x";
    m_installed.SetText(Versions + name, L"InstallationPath", L"C:\\KorTest");
    m_installed.MakeFile(L"C:\\KorTest\\FlowForge.exe");
    const std::wstring html = Compose();
    EXPECT_TRUE(Contains(html, L"<h2>Flow Forge " + name + L"</h2>"));
    EXPECT_TRUE(Contains(html, L"id=FLOWFORGE-3.0-\"<b>&'\x00e9\x4e2d\xd83d\xde00-x_0 "))
        << "blanks are hyphens in the id";
    ExpectClosedGrid(html);
}

TEST_F(DamagedInstallation, AVersionNameOf255Characters) {
    const std::wstring name(255, L'9');
    m_installed.SetText(Versions + name, L"InstallationPath", L"C:\\KorTest");
    m_installed.MakeFile(L"C:\\KorTest\\FlowForge.exe");
    EXPECT_TRUE(Contains(Compose(), L"<h2>Flow Forge " + name + L"</h2>"));
}

} // namespace
