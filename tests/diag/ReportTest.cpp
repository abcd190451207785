// kordiag report into a file, and without the names of the user and the computer.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <cctype>
#include <cwchar>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "diag/NewFile.h"
#include "diag/Redaction.h"
#include "diag/Utf8Output.h"
#include "tests/diag/Captured.h"
#include "tests/support/ImportHook.h"
#include "tests/support/TestInstallation.h"

namespace {

struct RedactionCase {
    const wchar_t* text;
    const wchar_t* redacted;
};

TEST(Redaction, ReplacesNamesInAllSpellings) {
    Redaction redaction;
    redaction.Add(L"C:\\Users\\Jörg Ä\\", L"%USERPROFILE%");
    redaction.Add(L"C:\\Users\\JRGA~1", L"%USERPROFILE%");
    redaction.Add(L"WORKSTATION", L"<computer>");
    redaction.Add(L"Jörg Ä", L"<user>");
    redaction.Add(L"ab", L"<user>");
    redaction.Add(L"", L"<domain>");
    const RedactionCase cases[] = {
        {L"C:\\Users\\Jörg Ä\\x y", L"%USERPROFILE%\\x y"},
        {L"c:/users//JÖRG ä/x", L"%USERPROFILE%/x"},
        {L"C:\\\\Users\\\\Jörg Ä\\\\x", L"%USERPROFILE%\\\\x"},
        {L"C:\\Users\\JRGA~1\\Temp", L"%USERPROFILE%\\Temp"},
        {L"D:\\jörg ä and C:\\Users", L"D:\\<user> and C:\\Users"},
        {L"myworkstation2", L"my<computer>2"},
        {L"ab tab ab! about", L"<user> tab <user>! about"},
        {L"C:\\Users\\Jörg Äs D:\\", L"C:\\Users\\<user>s D:\\"},
        {L"C:\\Users\\Jörg Ä", L"%USERPROFILE%"},
        {L"(C:\\Users\\Jörg Ä)", L"(%USERPROFILE%)"},
        {L"-IC:\\Users\\Jörg Ä.", L"-I%USERPROFILE%."},
        {L"Übung 視覚  \u00a0", L"Übung 視覚  \u00a0"},
        {L"C:\\Users\\Jörg ", L"C:\\Users\\Jörg "},
        {L"", L""},
    };
    for (const RedactionCase& c : cases) {
        EXPECT_EQ(redaction.Apply(c.text), c.redacted);
    }
}

// The folder of another user, whose name begins with this one's short name.
TEST(Redaction, OfAShortNameLeavesLongerOnes) {
    Redaction redaction;
    redaction.Add(L"C:\\Users\\Ann", L"%USERPROFILE%");
    redaction.Add(L"Ann", L"<user>");
    EXPECT_EQ(redaction.Apply(L"C:\\Users\\Annabel, C:\\Users\\Ann, D:\\Ann_old"),
              L"C:\\Users\\Annabel, %USERPROFILE%, D:\\<user>_old");
}

// Wine 8 keeps 1,024 characters for a path that it spells out, and looks no further than that.
// A variable of the environment, as long as it lives.
class Variable {
public:
    Variable(const wchar_t* name, const wchar_t* text) : m_name(name) {
        m_before.resize(32767);
        m_before.resize(GetEnvironmentVariableW(name, m_before.data(), 32767));
        SetEnvironmentVariableW(name, text);
    }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;
    ~Variable() { SetEnvironmentVariableW(m_name, m_before.empty() ? nullptr : m_before.c_str()); }

private:
    const wchar_t* m_name;
    std::wstring m_before;
};

// Not of any length: one of 5,000 characters ends the program under Wine 8.
TEST(Redaction, KnowsALongProfile) {
    for (const std::size_t length : {258U, 259U, 260U, 261U, 400U, 1000U}) {
        const std::wstring profile = L"Q:\\" + std::wstring(length - 3, L'x');
        const Variable variable(L"USERPROFILE", profile.c_str());
        EXPECT_EQ(Redaction::OfThisUser().Apply(profile + L"\\y"), L"%USERPROFILE%\\y") << length;
    }
}

TEST(Redaction, OfNobodyChangesNothing) {
    EXPECT_EQ(Redaction().Apply(L"C:\\Users\\x"), L"C:\\Users\\x");
}

// A user of a domain, whose profile's folder has a short name, as this system tells of him.
class ThisUser {
public:
    ThisUser()
        : m_user("GetUserNameW",
                 [](LPWSTR name, LPDWORD) {
                     std::wcscpy(name, L"joerg.gruenwald");
                     return TRUE;
                 }),
          m_computer("GetComputerNameExW",
                     [](COMPUTER_NAME_FORMAT format, LPWSTR name, LPDWORD) {
                         std::wcscpy(name, format == ComputerNameDnsDomain ? L"contoso.example"
                                           : format == ComputerNameDnsFullyQualified
                                               ? L"wks-4711.contoso.example"
                                               : L"wks-4711");
                         return TRUE;
                     }),
          m_short("GetShortPathNameW",
                  [](LPCWSTR, LPWSTR path, DWORD) -> DWORD {
                      std::wcscpy(path, L"C:\\Users\\JOERGG~1.CON");
                      return 21;
                  }),
          m_long("GetLongPathNameW", [](LPCWSTR, LPWSTR path, DWORD) -> DWORD {
              std::wcscpy(path, L"C:\\Users\\Jörg Grünwald.CONTOSO");
              return 30;
          }) {}
    ThisUser(const ThisUser&) = delete;
    ThisUser& operator=(const ThisUser&) = delete;
    ~ThisUser() = default;

private:
    test::ImportHook<struct GetUserNameW_HookTag, decltype(&GetUserNameW)> m_user;
    test::ImportHook<struct GetComputerNameExW_HookTag, decltype(&GetComputerNameExW)> m_computer;
    test::ImportHook<struct GetShortPathNameW_HookTag, decltype(&GetShortPathNameW)> m_short;
    test::ImportHook<struct GetLongPathNameW_HookTag, decltype(&GetLongPathNameW)> m_long;
};

TEST(Redaction, LeavesNoNameInAnyByteOfAReport) {
    const ThisUser user;
    const Variable profile(L"USERPROFILE", L"C:\\Users\\JOERGG~1.CON");
    const Variable name(L"USERNAME", L"jgruenwald");
    const Variable domain(L"USERDOMAIN", L"CONTOSO-CORP");
    const Variable dnsDomain(L"USERDNSDOMAIN", L"corp.contoso.test");
    const Variable trace(L"TRACEFOLDER",
                         L"c:/users//jÖRG grünwald.contoso\\a;C:\\Users\\JOERGG~1.CON\\b;"
                         L"D:/JOERGG~1.CON/JÖRG GRÜNWALD.CONTOSO;"
                         L"jgruenwald@contoso.example, Joerg.Gruenwald on WKS-4711 or "
                         L"wks-4711.contoso.example of contoso-corp and CORP.CONTOSO.TEST");
    const test::TestInstallation installed;
    installed.SetText(test::InstallKey, L"installdir",
                      L"C:\\Users\\JOERGG~1.CON\\\\Jörg Grünwald.CONTOSO\\jgruenwald");
    for (const wchar_t* const form : {L"--redact", L"--json"}) {
        std::string report = test::Kordiag({L"report", L"--redact", form}).Out;
        EXPECT_NE(report.find("<user>@<domain>, <user> on <computer> or <computer> of <domain> and "
                              "<domain>"),
                  std::string::npos)
            << report;
        EXPECT_NE(report.find("%USERPROFILE%"), std::string::npos);
        std::transform(report.begin(), report.end(), report.begin(), [](unsigned char c) {
            return static_cast<char>(c < 0x80 ? std::tolower(c) : c);
        });
        for (const char* const part :
             {"gruenwald", "joerg", "grünwald", "grÜnwald", "wks", "4711", "contoso", "corp"}) {
            EXPECT_EQ(report.find(part), std::string::npos) << part;
        }
    }
}

class NewFiles : public testing::Test {
protected:
    NewFiles() { m_files.MakeFolder(L"C:\\KorTest\\out"); }

    static std::string Write(const std::string& words) {
        std::ofstream("C:\\KorTest\\out\\f") << words;
        return words;
    }
    static std::string Read() {
        std::ifstream file("C:\\KorTest\\out\\f", std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    static std::ptrdiff_t Count() {
        const std::filesystem::directory_iterator files("C:\\KorTest\\out");
        return std::distance(begin(files), end(files));
    }
    static ExitCode Report(const std::vector<std::wstring>& options, std::string& errors) {
        std::vector<std::wstring> words = {L"report", L"--output", L"C:\\KorTest\\out\\f"};
        words.insert(words.end(), options.begin(), options.end());
        const test::Outcome outcome = test::Kordiag(words);
        EXPECT_EQ(outcome.Out, "");
        errors = outcome.Err;
        return outcome.Code;
    }

    test::TestInstallation m_files;
};

TEST_F(NewFiles, AReportIsUtf8AndReplacesNothingUnlessForced) {
    std::string errors;
    EXPECT_EQ(Report({L"--json"}, errors), ExitCode::Answered) << errors;
    const std::string document = Read();
    EXPECT_EQ(document.rfind("{\"schema\":1,\"version\":", 0), 0U);
    EXPECT_EQ(document.substr(document.size() - 2), "}\n");
    EXPECT_EQ(Count(), 1);

    Write("mine");
    EXPECT_EQ(Report({}, errors), ExitCode::No);
    EXPECT_EQ(errors, "kordiag report: C:\\KorTest\\out\\f exists; --force replaces it\n");
    EXPECT_EQ(Read(), "mine");
    EXPECT_EQ(Report({L"--force"}, errors), ExitCode::Answered);
    EXPECT_EQ(Read().rfind("kordiag ", 0), 0U);
    EXPECT_EQ(Count(), 1);
}

TEST_F(NewFiles, AFileThatAppearsMeanwhileIsNotReplaced) {
    NewFile file(L"C:\\KorTest\\out\\f");
    ASSERT_NE(file.Handle(), INVALID_HANDLE_VALUE);
    Write("mine");
    EXPECT_FALSE(file.Finish(false));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ALREADY_EXISTS));
    EXPECT_EQ(Read(), "mine");
    EXPECT_EQ(Count(), 1);
}

// The disk is full at the second piece, and when the system writes what it held back.
TEST_F(NewFiles, AFullDiskLeavesNoFile) {
    std::string errors;
    {
        int pieces = 0;
        HOOK_IMPORT(write, WriteFile, [&](auto... all) -> BOOL {
            if (++pieces == 2) {
                SetLastError(ERROR_DISK_FULL);
                return FALSE;
            }
            return write.Original(all...);
        });
        Write("");
        EXPECT_EQ(Report({L"--force"}, errors), ExitCode::No);
        EXPECT_EQ(pieces, 2);
    }
    EXPECT_EQ(errors, "kordiag report: C:\\KorTest\\out\\f cannot be written (error 112)\n");
    EXPECT_EQ(Read(), "") << "what was there stays";
    EXPECT_EQ(Count(), 1);
    {
        HOOK_IMPORT(flush, FlushFileBuffers, test::FailsWith<BOOL>(ERROR_DISK_FULL));
        EXPECT_EQ(Report({L"--force"}, errors), ExitCode::No);
    }
    EXPECT_EQ(errors, "kordiag report: C:\\KorTest\\out\\f cannot be written (error 112)\n");
    EXPECT_EQ(Count(), 1);
}

TEST_F(NewFiles, AFolderThatDoesNotExistIsToldOf) {
    std::filesystem::remove_all("C:\\KorTest\\out");
    std::string errors;
    EXPECT_EQ(Report({}, errors), ExitCode::No);
    EXPECT_EQ(errors, "kordiag report: C:\\KorTest\\out\\f cannot be created (error 3)\n");
}

} // namespace
