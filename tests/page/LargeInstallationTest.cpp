// A thousand installed versions: more blocks of memory than can be guarded at a time.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "page/ControlCenterPage.h"
#include "tests/support/GuardedMemory.h"
#include "tests/support/TestInstallation.h"

namespace {

TEST(LargeInstallation, AThousandVersionsHaveAThousandSections) {
    const test::PlainMemory plain;
    const test::TestInstallation installed;
    installed.SetText(test::LibraryKey, L"KorVersion", L"1");
    installed.MakeFile(L"C:\\KorTest\\FlowForge.exe");
    for (int i = 0; i < 1000; ++i) {
        installed.SetText(test::VersionsKey + L"\\3." + std::to_wstring(i), L"InstallationPath",
                          L"C:\\KorTest");
    }
    const std::int64_t before = test::LiveBlocks();
    {
        ControlCenterPage page;
        page.BuildSections();
        page.ComposePage();
        const std::wstring html = page.PageHtml.Text();
        EXPECT_EQ(page.Sections.Count(), 1002);
        EXPECT_EQ(page.RowCount, 501);
        EXPECT_NE(html.find(L"<h2>Flow Forge 3.999</h2>"), std::wstring::npos);
        EXPECT_EQ(html.substr(html.size() - 8), L"</table>");
    }
    EXPECT_EQ(test::LiveBlocks(), before);
}

} // namespace
