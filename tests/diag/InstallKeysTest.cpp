// What the report says about the keys of the installation.
#include "diag/InstallKeys.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <string>

#include "diag/SystemFacts.h"
#include "tests/diag/Captured.h"
#include "tests/support/ImportHook.h"
#include "tests/support/TestInstallation.h"

namespace {

std::string KeysInText() {
    return test::Capture([](Utf8Output& output) { WriteInstallKeys(output); });
}

constexpr char Install[] =
    "HKEY_LOCAL_MACHINE\\Software\\Vantrel\\Vantrel Imaging Library\\Runtime\\install";
constexpr char InstallInJson[] = R"({"key":"HKEY_LOCAL_MACHINE\\Software\\Vantrel\\)"
                                 R"(Vantrel Imaging Library\\Runtime\\install",)";

TEST(InstallKeys, EachIsNamedOnceWithTheTimeOfItsLastWrite) {
    const test::TestInstallation installation;
    installation.MakeKey(test::InstallKey);
    SYSTEMTIME before = {};
    GetSystemTime(&before);
    installation.SetText(test::InstallKey, L"installdir", L"C:\\");
    SYSTEMTIME after = {};
    GetSystemTime(&after);
    const std::string text = KeysInText();
    const std::string start = std::string(Install) + "\n  last written ";
    ASSERT_EQ(text.rfind(start, 0), 0U) << text;
    const std::string time = text.substr(start.size(), 20);
    EXPECT_GE(std::wstring(time.begin(), time.end()), InIso8601(before));
    EXPECT_LE(std::wstring(time.begin(), time.end()), InIso8601(after));
    const std::string json = test::JsonOf(WriteInstallKeys);
    EXPECT_EQ(json.rfind(std::string("[") + InstallInJson + R"("exists":true,"written":")" + time +
                             "\"},{",
                         0),
              0U)
        << json;
    const std::string rest = std::string(Install) + "\\ActiveKor\n  does not exist\n" + Install +
                             "\\KOR\n  does not exist\n"
                             "HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantrel\\Vantrel Flow Forge\\Install\n"
                             "  does not exist\n"
                             "HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantrel\\Vantrel Imaging Library\n"
                             "  last written ";
    EXPECT_EQ(text.substr(start.size() + time.size() + 1, rest.size()), rest);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 10) << text;
    EXPECT_NE(json.find(R"(\\ActiveKor","exists":false,"written":null})"), std::string::npos)
        << json;
}

TEST(InstallKeys, TimesAreInUtcAndIso8601) {
    const test::TestInstallation installation;
    installation.MakeKey(test::InstallKey);
    ULARGE_INTEGER written = {};
    written.QuadPart = 133542047999999999; // a tick before 2024-03-06 13:20
    HOOK_IMPORT(information, RegQueryInfoKeyW,
                [&](HKEY, LPWSTR, LPDWORD, LPDWORD, LPDWORD, LPDWORD, LPDWORD, LPDWORD, LPDWORD,
                    LPDWORD, LPDWORD, PFILETIME time) -> LSTATUS {
                    *time = {written.LowPart, written.HighPart};
                    return ERROR_SUCCESS;
                });
    EXPECT_NE(KeysInText().find("install\n  last written 2024-03-06T13:19:59Z\n"),
              std::string::npos)
        << KeysInText();
    written.QuadPart = 0xFFFFFFFFFFFFFFFF;
    EXPECT_NE(KeysInText().find("install\n  last written: unknown (error 13)\n"),
              std::string::npos);
    EXPECT_NE(test::JsonOf(WriteInstallKeys)
                  .find(std::string(InstallInJson) + R"("exists":true,"written":null})"),
              std::string::npos);
}

TEST(InstallKeys, AKeyThatMayNotBeReadExistsAllTheSame) {
    const test::TestInstallation installation;
    HOOK_IMPORT(open, RegOpenKeyExW, test::Refused);
    EXPECT_NE(KeysInText().find("install\n  last written: unknown (error 5)\n"), std::string::npos);
    EXPECT_NE(test::JsonOf(WriteInstallKeys)
                  .find(std::string(InstallInJson) + R"("exists":true,"written":null})"),
              std::string::npos);
}

TEST(InstallKeys, AKeyIsClosedWhateverItSays) {
    const test::TestInstallation installation;
    installation.MakeKey(test::InstallKey);
    int open = 0;
    HOOK_IMPORT(opening, RegOpenKeyExW, [&](auto... all) -> LSTATUS {
        const LSTATUS result = opening.Original(all...);
        open += result == ERROR_SUCCESS ? 1 : 0;
        return result;
    });
    HOOK_IMPORT(closing, RegCloseKey, [&](HKEY key) -> LSTATUS {
        --open;
        return closing.Original(key);
    });
    HOOK_IMPORT(information, RegQueryInfoKeyW, test::Refused);
    EXPECT_NE(KeysInText().find("install\n  last written: unknown (error 5)\n"), std::string::npos);
    EXPECT_EQ(open, 0);
}

} // namespace
