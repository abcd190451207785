// What the questions answer for each kind of value.
#include "page/InstallationQueries.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "tests/support/SystemCalls.h"
#include "tests/support/TestInstallation.h"

namespace {

using test::Calls;
using test::CallsOf;

const DWORD Number = 7;

TEST(InstallFolder, IsTheValueAsStored) {
    const test::TestInstallation installed;
    EXPECT_STREQ(QueryInstallFolder().Text(), L"") << "no key";
    installed.MakeKey(test::InstallKey);
    EXPECT_STREQ(QueryInstallFolder().Text(), L"") << "no value";
    installed.SetText(test::InstallKey, L"installdir", L"C:\\Lib");
    EXPECT_STREQ(QueryInstallFolder().Text(), L"C:\\Lib");
    installed.SetText(test::InstallKey, L"installdir", L"C:\\Lib\\");
    EXPECT_STREQ(QueryInstallFolder().Text(), L"C:\\Lib\\");
    installed.SetText(test::InstallKey, L"installdir", L"%ProgramFiles%\\Lib", REG_EXPAND_SZ);
    EXPECT_STREQ(QueryInstallFolder().Text(), L"%ProgramFiles%\\Lib") << "not expanded";
    installed.SetBytes(test::InstallKey, L"installdir", REG_MULTI_SZ, L"a\0b\0", 10);
    EXPECT_STREQ(QueryInstallFolder().Text(), L"<a> <b>");
    installed.SetBytes(test::InstallKey, L"installdir", REG_DWORD, &Number, 4);
    EXPECT_STREQ(QueryInstallFolder().Text(), L"") << "no text";
}

TEST(FlowForgeInstallFolder, GetsOneBackslashWheneverTheValueExists) {
    const test::TestInstallation installed;
    EXPECT_STREQ(QueryFlowForgeInstallFolder().Text(), L"") << "no key";
    installed.MakeKey(test::FlowForgeKey);
    EXPECT_STREQ(QueryFlowForgeInstallFolder().Text(), L"") << "no value";
    installed.SetText(test::FlowForgeKey, L"InstallationPath", L"C:\\Tools\\FF");
    EXPECT_STREQ(QueryFlowForgeInstallFolder().Text(), L"C:\\Tools\\FF\\");
    installed.SetText(test::FlowForgeKey, L"InstallationPath", L"C:\\Tools\\FF\\");
    EXPECT_STREQ(QueryFlowForgeInstallFolder().Text(), L"C:\\Tools\\FF\\\\");
    installed.SetBytes(test::FlowForgeKey, L"InstallationPath", REG_DWORD, &Number, 4);
    EXPECT_STREQ(QueryFlowForgeInstallFolder().Text(), L"\\") << "no text";
}

TEST(ExamplesRoot, IsReadForEachProduct) {
    const test::TestInstallation installed;
    EXPECT_STREQ(QueryExamplesRoot(L"KOR").Text(), L"");
    installed.SetText(test::InstallKey + L"\\KOR", L"ExamplesRootPath", L"C:\\Ex");
    installed.SetText(test::InstallKey + L"\\ActiveKor", L"ExamplesRootPath", L"C:\\AEx\\");
    EXPECT_STREQ(QueryExamplesRoot(L"KOR").Text(), L"C:\\Ex");
    EXPECT_STREQ(QueryExamplesRoot(L"ActiveKor").Text(), L"C:\\AEx\\");
    EXPECT_STREQ(QueryExamplesRoot(L"Other").Text(), L"");
}

TEST(DevelopmentInstallation, ComparesTheTypeWithoutRegardToCase) {
    const test::TestInstallation installed;
    EXPECT_FALSE(IsDevelopmentInstallation()) << "no key";
    const std::pair<const wchar_t*, bool> cases[] = {
        {L"Development", true},   {L"development", true}, {L"DEVELOPMENT", true},
        {L"Development ", false}, {L"Runtime", false},    {L"", false},
    };
    for (const auto& [type, isDevelopment] : cases) {
        installed.SetText(test::LibraryKey, L"KORType", type);
        EXPECT_EQ(IsDevelopmentInstallation(), isDevelopment)
            << testing::PrintToString(std::wstring(type));
    }
    installed.SetBytes(test::LibraryKey, L"KORType", REG_DWORD, &Number, 4);
    EXPECT_FALSE(IsDevelopmentInstallation()) << "no text";
}

TEST(ValidInstallation, NeedsAVersionThatIsText) {
    const test::TestInstallation installed;
    EXPECT_FALSE(IsValidInstallation()) << "no key";
    installed.MakeKey(test::LibraryKey);
    EXPECT_FALSE(IsValidInstallation()) << "no value";
    installed.SetText(test::LibraryKey, L"KorVersion", L"10.50");
    EXPECT_TRUE(IsValidInstallation());
    installed.SetText(test::LibraryKey, L"KorVersion", L"");
    EXPECT_TRUE(IsValidInstallation()) << "an empty text is a text";
    installed.SetBytes(test::LibraryKey, L"KorVersion", REG_MULTI_SZ, L"", 2);
    EXPECT_TRUE(IsValidInstallation());
    installed.SetBytes(test::LibraryKey, L"KorVersion", REG_DWORD, &Number, 4);
    EXPECT_FALSE(IsValidInstallation());
    installed.SetBytes(test::LibraryKey, L"KorVersion", REG_BINARY, &Number, 4);
    EXPECT_FALSE(IsValidInstallation());
}

// Probe, the read's own look at the type, the read's own probe, the data.
Calls OneRead(const std::string& key, const std::string& value) {
    return {"open " + key,    "probe " + value, "type " + value,
            "probe " + value, "read " + value,  "close"};
}

TEST(InstallationQueries, MakeTheCallsOfOneReadEach) {
    const test::TestInstallation installed;
    installed.MakeDevelopment(L"C:\\Lib\\");
    installed.SetText(test::InstallKey + L"\\KOR", L"ExamplesRootPath", L"C:\\Ex");
    installed.SetText(test::FlowForgeKey, L"InstallationPath", L"C:\\FF");

    EXPECT_EQ(
        CallsOf([] { QueryInstallFolder(); }),
        OneRead("Software\\Vantrel\\Vantrel Imaging Library\\Runtime\\install", "installdir"));
    EXPECT_EQ(CallsOf([] { QueryExamplesRoot(L"KOR"); }),
              OneRead("Software\\Vantrel\\Vantrel Imaging Library\\Runtime\\install\\KOR",
                      "ExamplesRootPath"));
    EXPECT_EQ(CallsOf([] { QueryFlowForgeInstallFolder(); }),
              OneRead("SOFTWARE\\Vantrel\\Vantrel Flow Forge\\Install", "InstallationPath"));
    EXPECT_EQ(CallsOf([] { IsDevelopmentInstallation(); }),
              OneRead("SOFTWARE\\Vantrel\\Vantrel Imaging Library", "KORType"));
    EXPECT_EQ(CallsOf([] { IsValidInstallation(); }),
              OneRead("SOFTWARE\\Vantrel\\Vantrel Imaging Library", "KorVersion"));
}

TEST(InstallationQueries, StopAtAMissingValueOrKey) {
    const test::TestInstallation installed;
    EXPECT_EQ(CallsOf([] { QueryInstallFolder(); }),
              (Calls{"open Software\\Vantrel\\Vantrel Imaging Library\\Runtime\\install"}));
    installed.MakeKey(test::InstallKey);
    EXPECT_EQ(CallsOf([] { QueryInstallFolder(); }),
              (Calls{"open Software\\Vantrel\\Vantrel Imaging Library\\Runtime\\install",
                     "probe installdir", "close"}));
}

} // namespace
