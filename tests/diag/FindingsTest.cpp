// The findings of kordiag check that need a system other than this one. The others are tested with
// the finished program.
#include <gtest/gtest.h>
#include <windows.h>

#include <aclapi.h>
#include <objbase.h>
#include <sddl.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "diag/Commands.h"
#include "diag/Findings.h"
#include "diag/SystemCauses.h"
#include "tests/diag/Captured.h"
#include "tests/diag/FakeEngine.h"
#include "tests/support/BesideProgram.h"
#include "tests/support/ImportHook.h"
#include "tests/support/SystemCalls.h"
#include "tests/support/TestInstallation.h"

namespace {

// A whole development installation: each target of the catalogue is there.
class Findings : public testing::Test {
protected:
    Findings() {
        m_installed.MakeDevelopment(L"C:\\KorTest\\Lib\\");
        m_installed.SetText(test::InstallKey + L"\\KOR", L"ExamplesRootPath", L"C:\\KorTest\\Ex");
        m_installed.MakeFolder(L"C:\\KorTest\\Ex");
        m_installed.MakeFile(L"C:\\KorTest\\Lib\\Tutorial videos\\a.mp4");
        const PageState state;
        for (const ControlCenterSection* const section : state.Page.Sections) {
            for (const ControlCenterItem* const item : *section) {
                item->Type == ItemFolder ? m_installed.MakeFolder(item->Path.Text())
                                         : m_installed.MakeFile(item->Path.Text());
            }
        }
    }

    // Code and subjects of each.
    static std::vector<std::string> Found() {
        const PageState state;
        const CatalogueAnswer catalogue(state);
        std::vector<std::string> found;
        for (const auto& [severity, cause, subjects] : FindFaults(state, catalogue)) {
            std::string line = severity == Severity::Error ? "error " : "warning ";
            line += test::Narrow(cause.Word());
            for (const CKORString& subject : subjects) {
                line += " " + test::Narrow(subject.Text());
            }
            found.push_back(line);
        }
        return found;
    }

    static void ExpectSound() {
        const test::Outcome check = test::Kordiag({L"check", L"--strict"});
        EXPECT_EQ(check.Code, ExitCode::Answered);
        EXPECT_EQ(check.Out, "sound: 0 errors, 0 warnings\n");
    }

    test::FakeEngine m_engine;
    test::TestInstallation m_installed;
};

using Lines = std::vector<std::string>;

TEST_F(Findings, OfASoundInstallationAreNone) {
    EXPECT_EQ(Found(), Lines{});
    ExpectSound();
}

// Takes the right to read away from everybody, as long as it lives.
class Unreadable {
public:
    explicit Unreadable(const std::wstring& key) {
        EXPECT_EQ(
            RegOpenKeyExW(HKEY_LOCAL_MACHINE, (L"Software\\" + key).c_str(), 0, WRITE_DAC, &m_key),
            ERROR_SUCCESS);
        SetRights(L"D:(A;;WDRC;;;WD)");
    }
    Unreadable(const Unreadable&) = delete;
    Unreadable& operator=(const Unreadable&) = delete;
    ~Unreadable() {
        SetRights(L"D:(A;;KA;;;WD)");
        RegCloseKey(m_key);
    }

private:
    void SetRights(const wchar_t* rights) {
        PSECURITY_DESCRIPTOR descriptor = nullptr;
        EXPECT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(rights, SDDL_REVISION_1,
                                                                         &descriptor, nullptr));
        EXPECT_EQ(RegSetKeySecurity(m_key, DACL_SECURITY_INFORMATION, descriptor), ERROR_SUCCESS);
        LocalFree(descriptor);
    }

    HKEY m_key = nullptr;
};

TEST_F(Findings, OfAKeyThatMayNotBeRead) {
    {
        const Unreadable key(test::LibraryKey);
        EXPECT_EQ(Found(), (Lines{"error value-unreadable valid installation development "
                                  "installation"}));
    }
    ExpectSound();
}

TEST_F(Findings, OfAVersionWhoseKeyMayNotBeRead) {
    const std::wstring version = test::VersionsKey + L"\\3.0";
    m_installed.SetText(version, L"InstallationPath", L"C:\\KorTest\\FF");
    m_installed.MakeFile(L"C:\\KorTest\\FF\\Tools\\FlowForgeRuntimeManager.exe");
    {
        const Unreadable key(version);
        EXPECT_EQ(Found(), (Lines{"error value-unreadable Flow Forge 3.0"}));
    }
    ExpectSound();
}

// The mark of a file is a stream of it, which the file systems here do not have.
TEST_F(Findings, OfAHelpFileFromTheInternet) {
    const auto foundWith = [&](const char* mark) {
        m_installed.MakeFile(L"C:\\KorTest\\mark");
        std::ofstream("C:\\KorTest\\mark") << mark;
        HOOK_IMPORT(create, CreateFileW, [&](LPCWSTR path, auto... rest) {
            const bool isMark = std::wstring(path) ==
                                L"C:\\KorTest\\Lib\\KOR\\DOC\\help\\KORHelp.chm:Zone."
                                L"Identifier";
            return create.Original(isMark ? L"C:\\KorTest\\mark" : path, rest...);
        });
        return Found();
    };
    EXPECT_EQ(foundWith("[ZoneTransfer]\r\nZoneId=3\r\n"),
              (Lines{"warning help-file-blocked KOR_1 KOR_2"}));
    EXPECT_EQ(foundWith("[ZoneTransfer]\r\nZoneId=2\r\n"), Lines{});
    EXPECT_EQ(foundWith(""), Lines{});
    ExpectSound();
}

// PowerShell takes curved quotes for straight ones.
TEST(BlockedHelp, IsFreedByACommandThatPowerShellReadsAsWritten) {
    HOOK_IMPORT(create, CreateFileW,
                [&](LPCWSTR, auto... rest) { return create.Original(L"C:\\mark", rest...); });
    std::ofstream("C:\\mark") << "ZoneId=3";
    const std::optional<Cause> cause = CauseOfBlockedHelp(L"C:\\it's \x2019 a\x201A $b`.chm");
    DeleteFileW(L"C:\\mark");
    ASSERT_TRUE(cause);
    EXPECT_EQ(cause->Command,
              (std::vector<std::wstring>{L"powershell", L"Unblock-File", L"-LiteralPath",
                                         L"'C:\\it''s \x2019\x2019 a\x201A\x201A $b`.chm'"}));
}

// As long as a registry value may be, and with the signs of a format.
TEST_F(Findings, TellATextOfAnyLengthAsItIs) {
    const std::wstring text = L"C:\\KorTest\\%s %n 100% " + std::wstring(200000, L'x');
    m_installed.SetText(test::InstallKey, L"installdir", text);
    const auto toldBy = [&](const wchar_t* command) {
        return test::OutputOf({command}).find(test::Narrow((L"\"" + text + L"\"").c_str()));
    };
    EXPECT_NE(toldBy(L"check"), std::string::npos);
    EXPECT_NE(toldBy(L"catalogue"), std::string::npos);
    m_installed.SetText(test::LibraryKey, L"KORType", text);
    EXPECT_NE(toldBy(L"catalogue"), std::string::npos);
}

TEST_F(Findings, OfAHelpFileOnANetworkDrive) {
    {
        HOOK_IMPORT(type, GetDriveTypeW, [](LPCWSTR root) -> UINT {
            EXPECT_EQ(std::wstring(root), L"C:\\");
            return DRIVE_REMOTE;
        });
        EXPECT_EQ(Found(), (Lines{"warning help-file-blocked KOR_1 KOR_2"}));
    }
    ExpectSound();
}

TEST(Codes, AreThoseThatTheManualLists) {
    std::ifstream manual(std::filesystem::path(test::BesideProgram(L"kordiag.md")));
    ASSERT_TRUE(manual.is_open());
    std::vector<std::string> listed;
    for (std::string line; std::getline(manual, line);) {
        const bool isRow = line.rfind("| `", 0) == 0;
        if (isRow && (line.find("` | error |") != std::string::npos ||
                      line.find("` | warning |") != std::string::npos)) {
            listed.push_back(line.substr(3, line.find('`', 3) - 3));
        }
    }
    std::vector<std::string> known;
    for (const wchar_t* const word : CodeWords) {
        known.push_back(test::Narrow(word));
    }
    EXPECT_EQ(listed, known);
}

// Others install and remove while kordiag looks.
TEST_F(Findings, ATargetThatCameBackHasAReasonToo) {
    constexpr wchar_t Program[] = L"C:\\KorTest\\Lib\\Tools\\KorConfig.exe";
    m_installed.DeleteFileOf(Program);
    const PageState state;
    m_installed.MakeFile(Program);
    const CatalogueAnswer catalogue(state);
    int missing = 0;
    for (const auto& section : catalogue.Sections) {
        for (const CatalogueAnswer::Item& answer : section.Items) {
            if (!answer.IsShown) {
                ++missing;
                EXPECT_STREQ(answer.Why.Text(),
                             L"it was not there when the page was composed, but is now");
            }
        }
    }
    EXPECT_EQ(missing, 1);
}

} // namespace
