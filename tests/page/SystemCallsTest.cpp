// Every registry and file-system call that building the catalogue and composing the page make, in
// their order. A call more is a call that each start and each F5 pays for.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

#include "page/ControlCenterPage.h"
#include "tests/support/SystemCalls.h"
#include "tests/support/TestInstallation.h"

namespace {

using test::Calls;
using test::CallsOf;

void Append(Calls& to, const Calls& more) {
    to.insert(to.end(), more.begin(), more.end());
}

Calls ReadOf(const std::string& value) {
    return {"probe " + value, "type " + value, "probe " + value, "read " + value};
}

constexpr char LibraryKey[] = "SOFTWARE\\Vantrel\\Vantrel Imaging Library";
constexpr char VersionsKey[] = "SOFTWARE\\Vantrel\\Vantrel Flow Forge\\Installed Versions";
constexpr char VersionKey[] = "SOFTWARE\\Vantrel\\Vantrel Flow Forge\\Installed Versions\\3.0";

// A development installation with everything that has a condition, and one Flow Forge version.
class FullInstallation {
public:
    FullInstallation() {
        m_installed.SetText(test::LibraryKey, L"KORType", L"Development");
        m_installed.SetText(test::LibraryKey, L"KorVersion", L"1");
        m_installed.MakeKey(test::LibraryKey + L"\\RTX");
        m_installed.MakeKey(L"Vantrel\\Vantrel Flow Forge\\Active Runtime");
        m_installed.SetText(test::VersionsKey + L"\\3.0", L"InstallationPath", L"C:\\KorTest\\FF");
        m_installed.MakeFile(L"C:\\KorTest\\FF\\FlowForge.exe");
        m_installed.MakeFile(L"C:\\KorTest\\FF\\Tools\\FlowForgeRuntimeManager.exe");
        m_installed.MakeFile(L"C:\\KorTest\\Tools\\TimeScope.exe");
        m_installed.MakeFile(L"C:\\KorTest\\Tutorial videos\\a.mp4");
        m_installed.MakeFile(L"C:\\KorTest\\ActiveKOR\\Controls\\kor.ocx");
        m_installed.MakeFolder(L"C:\\KorTest\\Ex");
        m_installed.MakeFolder(L"C:\\KorTest\\AEx");
        m_page.InstallDir = L"C:\\KorTest\\";
        m_page.KorExamplesRoot = L"C:\\KorTest\\Ex";
        m_page.ActiveKorExamplesRoot = L"C:\\KorTest\\AEx";
        m_page.FlowForgeInstallDir = L"C:\\KorTest\\FF\\";
    }

    ControlCenterPage& Page() { return m_page; }

private:
    test::TestInstallation m_installed;
    ControlCenterPage m_page;
};

TEST(SystemCalls, OfAskingForTheFolders) {
    const test::TestInstallation nothing;
    ControlCenterPage page;
    const std::string install = "Software\\Vantrel\\Vantrel Imaging Library\\Runtime\\install";
    EXPECT_EQ(
        CallsOf([&] { page.QueryInstallation(); }),
        (Calls{"open " + install, "open " + install + "\\ActiveKor", "open " + install + "\\KOR",
               "open SOFTWARE\\Vantrel\\Vantrel Flow Forge\\Install"}));
}

TEST(SystemCalls, OfBuildingTheCatalogue) {
    FullInstallation full;
    const Calls calls = CallsOf([&] { full.Page().BuildSections(); });

    Calls expected = {std::string("open ") + LibraryKey};
    Append(expected, ReadOf("KORType"));
    Append(expected,
           {"close",
            // Quick Start and General Tools
            "attributes C:\\KorTest\\Ex", "attributes C:\\KorTest\\Tools\\TimeScope.exe",
            "attributes C:\\KorTest\\Tutorial videos", "empty? C:\\KorTest\\Tutorial videos",
            // The versions of the 64-bit view: the probe, the list ...
            "open SOFTWARE\\Vantrel\\Vantrel Flow Forge\\Active Runtime", "close",
            std::string("open ") + VersionsKey, "enumerate 0", "enumerate 1",
            // ... the newest manager ...
            "close", std::string("open ") + VersionKey});
    Append(expected, ReadOf("InstallationPath"));
    Append(expected, {"exists C:\\KorTest\\FF/Tools/FlowForgeRuntimeManager.exe", "close",
                      std::string("open ") + VersionsKey,
                      // ... and the version's section.
                      "close", std::string("open ") + VersionKey});
    Append(expected, ReadOf("InstallationPath"));
    Append(expected, {"probe ExamplesPath", "exists C:\\KorTest\\FF\\FlowForge.exe",
                      "exists C:\\KorTest\\FF\\FlowForge.exe", "close",
                      std::string("open ") + VersionsKey, "close",
                      // The 32-bit view has none.
                      "open SOFTWARE\\Vantrel\\Vantrel Flow Forge\\Active Runtime", "close",
                      "open SOFTWARE\\Wow6432Node\\Vantrel\\Vantrel Flow Forge\\Installed Versions",
                      // ActiveKOR, the single Flow Forge, KOR for RTOS
                      "exists C:\\KorTest\\ActiveKOR/Controls/kor.ocx",
                      "attributes C:\\KorTest\\AEx", "exists C:\\KorTest\\FF\\FlowForge.exe",
                      "open SOFTWARE\\Vantrel\\Vantrel Imaging Library\\RTX", "close"});
    EXPECT_EQ(calls, expected);
}

TEST(SystemCalls, OfComposingThePage) {
    FullInstallation full;
    ControlCenterPage& page = full.Page();
    page.BuildSections();
    const Calls calls = CallsOf([&] { page.ComposePage(); });

    Calls expected = {std::string("open ") + LibraryKey};
    Append(expected, ReadOf("KorVersion"));
    expected.emplace_back("close");
    for (const ControlCenterSection* const section : page.Sections) {
        for (const ControlCenterItem* const item : *section) {
            expected.push_back("exists " + test::Narrow(item->Path.Text()));
        }
    }
    EXPECT_EQ(calls, expected);
    // Quick Start, Folders, tools, processing tools, the version, ActiveKOR, Flow Forge, RTOS.
    EXPECT_EQ(page.Sections.Count(), 8);
}

TEST(SystemCalls, OfAnEmptyInstallation) {
    const test::TestInstallation nothing;
    ControlCenterPage page;
    EXPECT_EQ(CallsOf([&] { page.BuildSections(); }),
              (Calls{std::string("open ") + LibraryKey,
                     // General Tools: relative paths, since there is no install folder.
                     "attributes Tools\\TimeScope.exe", "attributes Tutorial videos",
                     "open SOFTWARE\\Vantrel\\Vantrel Flow Forge\\Active Runtime",
                     std::string("open ") + VersionsKey,
                     "open SOFTWARE\\Vantrel\\Vantrel Flow Forge\\Active Runtime",
                     "open SOFTWARE\\Wow6432Node\\Vantrel\\Vantrel Flow Forge\\Installed Versions",
                     // Without its folder, no single Flow Forge is looked for.
                     "exists ActiveKOR/Controls/kor.ocx",
                     "open SOFTWARE\\Vantrel\\Vantrel Imaging Library\\RTX"}));
    EXPECT_EQ(CallsOf([&] { page.ComposePage(); }), (Calls{std::string("open ") + LibraryKey}));
}

} // namespace
