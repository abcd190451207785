// The findings of kordiag check that need a system other than this one. The others are tested with
// the finished program.
#include <gtest/gtest.h>
#include <windows.h>

#include <aclapi.h>
#include <objbase.h>
#include <sddl.h>
#include <shlwapi.h>

#include <fstream>
#include <string>
#include <vector>

#include "diag/Commands.h"
#include "diag/Findings.h"
#include "tests/diag/Captured.h"
#include "tests/page/SystemCalls.h"
#include "tests/support/ImportHook.h"
#include "tests/support/TestInstallation.h"

namespace {

constexpr wchar_t Library[] = L"Vantrel\\Vantrel Imaging Library";
constexpr wchar_t Install[] = L"Vantrel\\Vantrel Imaging Library\\Runtime\\install";
constexpr wchar_t Versions[] = L"Vantrel\\Vantrel Flow Forge\\Installed Versions";

// A whole development installation: each target of the catalogue is there.
class Findings : public testing::Test {
protected:
    Findings() {
        m_installed.SetText(Library, L"KorVersion", L"1");
        m_installed.SetText(Library, L"KORType", L"Development");
        m_installed.SetText(Install, L"installdir", L"C:\\KorTest\\Lib\\");
        m_installed.SetText(std::wstring(Install) + L"\\KOR", L"ExamplesRootPath",
                            L"C:\\KorTest\\Ex");
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

    // Code and subjects of each, apart from the engine, which unit tests have none of.
    static std::vector<std::string> Found() {
        HOOK_IMPORT(engine, CoCreateInstance, [](REFCLSID, LPUNKNOWN, DWORD, REFIID, LPVOID*) {
            return REGDB_E_CLASSNOTREG;
        });
        const PageState state;
        const CatalogueAnswer catalogue(state);
        std::vector<std::string> found;
        for (const auto& [severity, cause, subjects] : FindFaults(state, catalogue)) {
            if (cause.Kind == Code::NoHtmlEngine) {
                continue;
            }
            std::string line = severity == Severity::Error ? "error " : "warning ";
            line += test::Narrow(cause.Word());
            for (const CKORString& subject : subjects) {
                line += " " + test::Narrow(subject.Text());
            }
            found.push_back(line);
        }
        return found;
    }

    test::TestInstallation m_installed;
};

using Lines = std::vector<std::string>;

TEST_F(Findings, OfASoundInstallationAreNone) {
    EXPECT_EQ(Found(), Lines{});
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
        const Unreadable key(Library);
        EXPECT_EQ(Found(), (Lines{"error value-unreadable valid installation development "
                                  "installation"}));
    }
    EXPECT_EQ(Found(), Lines{});
}

TEST_F(Findings, OfAVersionWhoseKeyMayNotBeRead) {
    m_installed.SetText(std::wstring(Versions) + L"\\3.0.0", L"InstallationPath",
                        L"C:\\KorTest\\FF");
    m_installed.MakeFile(L"C:\\KorTest\\FF\\Tools\\x");
    {
        const Unreadable key(std::wstring(Versions) + L"\\3.0.0");
        EXPECT_EQ(Found(), (Lines{"error value-unreadable Flow Forge 3.0.0"}));
    }
    // There is no manager of a version with three pieces.
    EXPECT_EQ(Found(), (Lines{"error manager-missing FLOWFORGE-3.0.0_0"}));
}

// The mark of a file is a stream of it, which the file systems here do not have.
TEST_F(Findings, OfAHelpFileFromTheInternet) {
    const auto foundWith = [&](const char* mark) {
        m_installed.MakeFile(L"C:\\KorTest\\mark");
        std::ofstream("C:\\KorTest\\mark") << mark;
        HOOK_IMPORT(create, CreateFileW,
                    [&](LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                        DWORD how, DWORD flags, HANDLE like) {
                        const bool isMark = std::wstring(path) ==
                                            L"C:\\KorTest\\Lib\\KOR\\DOC\\help\\KORHelp.chm:Zone."
                                            L"Identifier";
                        return create.Original(isMark ? L"C:\\KorTest\\mark" : path, access, share,
                                               security, how, flags, like);
                    });
        return Found();
    };
    EXPECT_EQ(foundWith("[ZoneTransfer]\r\nZoneId=3\r\n"),
              (Lines{"warning help-file-blocked KOR_1 KOR_2"}));
    EXPECT_EQ(foundWith("[ZoneTransfer]\r\nZoneId=2\r\n"), Lines{});
    EXPECT_EQ(foundWith(""), Lines{});
}

TEST_F(Findings, OfAHelpFileOnANetworkDrive) {
    HOOK_IMPORT(type, GetDriveTypeW, [](LPCWSTR root) -> UINT {
        EXPECT_EQ(std::wstring(root), L"C:\\");
        return DRIVE_REMOTE;
    });
    EXPECT_EQ(Found(), (Lines{"warning help-file-blocked KOR_1 KOR_2"}));
}

TEST(Codes, AreThoseThatTheManualLists) {
    std::ifstream manual(KOR_SOURCE_DIR "/docs/kordiag.md");
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

// The calls to the system of one command: of the registry and files, and those of which there is
// none but for findings.
std::size_t CallsOfCommand(const std::vector<std::wstring>& words) {
    std::size_t others = 0;
    HOOK_IMPORT(
        search, SearchPathW,
        [&](LPCWSTR path, LPCWSTR file, LPCWSTR extension, DWORD size, LPWSTR found, LPWSTR* name) {
            ++others;
            return search.Original(path, file, extension, size, found, name);
        });
    HOOK_IMPORT(type, GetDriveTypeW, [&](LPCWSTR root) {
        ++others;
        return type.Original(root);
    });
    HOOK_IMPORT(create, CreateFileW,
                [&](LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                    DWORD how, DWORD flags, HANDLE like) {
                    ++others;
                    return create.Original(path, access, share, security, how, flags, like);
                });
    HOOK_IMPORT(
        program, AssocQueryStringW,
        [&](ASSOCF flags, ASSOCSTR kind, LPCWSTR of, LPCWSTR verb, LPWSTR text, DWORD* size) {
            ++others;
            return program.Original(flags, kind, of, verb, text, size);
        });
    HOOK_IMPORT(engine, CoCreateInstance, [&](REFCLSID, LPUNKNOWN, DWORD, REFIID, LPVOID*) {
        ++others;
        return REGDB_E_CLASSNOTREG;
    });
    return test::CallsOf([&] { test::OutputOf(words); }).size() + others;
}

TEST_F(Findings, TakeNoMoreThanTwiceTheCallsOfTheCatalogue) {
    const std::size_t catalogue = CallsOfCommand({L"catalogue", L"--json"});
    const std::size_t check = CallsOfCommand({L"check", L"--json"});
    EXPECT_GT(check, catalogue);
    EXPECT_LE(check, 2 * catalogue);
}

} // namespace
