// What the report says about the system: right, or not known.
#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "diag/FileVersion.h"
#include "diag/SystemFacts.h"
#include "tests/diag/Captured.h"
#include "tests/support/ImportHook.h"

namespace {

// What the text says behind the words.
std::string InText(const std::string& words) {
    std::istringstream text(test::Capture([](Utf8Output& output) { WriteFacts(output); }));
    for (std::string line; std::getline(text, line);) {
        if (line.rfind(words + ": ", 0) == 0) {
            return line.substr(words.size() + 2);
        }
    }
    return "no such line";
}

// Whether the JSON document has the member with the value.
bool HasMember(const std::string& member, const std::string& value) {
    const std::string facts = test::JsonOf(WriteFacts);
    const std::string pair = "\"" + member + "\":" + value;
    return facts.find(pair + ",") != std::string::npos ||
           facts.find(pair + "}") != std::string::npos;
}

constexpr wchar_t System[] = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion";
constexpr wchar_t TerminalServer[] = L"SYSTEM\\CurrentControlSet\\Control\\Terminal Server";
constexpr wchar_t FileSystem[] = L"SYSTEM\\CurrentControlSet\\Control\\FileSystem";

// Takes the place of the values that the facts are read from.
class Values {
public:
    void Set(const wchar_t* key, const wchar_t* value, const std::wstring& text) {
        std::vector<unsigned char> data((text.size() + 1) * sizeof(wchar_t));
        std::memcpy(data.data(), text.c_str(), data.size());
        m_values[{key, value}] = {RRF_RT_REG_SZ, data};
    }
    void Set(const wchar_t* key, const wchar_t* value, DWORD number) {
        std::vector<unsigned char> data(sizeof number);
        std::memcpy(data.data(), &number, data.size());
        m_values[{key, value}] = {RRF_RT_REG_DWORD, data};
    }
    void Clear() { m_values.clear(); }

    LSTATUS Missing = ERROR_FILE_NOT_FOUND;

private:
    struct Value {
        DWORD type;
        std::vector<unsigned char> data;
    };

    LSTATUS Read(HKEY root, LPCWSTR key, LPCWSTR name, DWORD types, void* data, DWORD* size) const {
        const auto found = m_values.find({key, name});
        if (root != HKEY_LOCAL_MACHINE || found == m_values.end()) {
            return Missing;
        }
        if (types != found->second.type) {
            return ERROR_UNSUPPORTED_TYPE;
        }
        if (*size < found->second.data.size()) {
            return ERROR_MORE_DATA;
        }
        *size = static_cast<DWORD>(found->second.data.size());
        std::memcpy(data, found->second.data.data(), *size);
        return ERROR_SUCCESS;
    }

    std::map<std::pair<std::wstring, std::wstring>, Value> m_values;
    test::ImportHook<struct RegGetValueW_HookTag, decltype(&RegGetValueW)> m_hook{
        "RegGetValueW",
        [this](HKEY root, LPCWSTR key, LPCWSTR name, DWORD types, LPDWORD, PVOID data,
               LPDWORD size) -> LSTATUS { return Read(root, key, name, types, data, size); }};
};

struct NameCase {
    const wchar_t* product;
    const wchar_t* build;
    const char* name;
};

TEST(SystemFacts, WindowsElevenIsCalledSoByItsBuildAndNoServerIs) {
    const NameCase cases[] = {
        {L"Windows 10 Pro", L"22000", "Windows 11 Pro"},
        {L"Windows 10 Pro", L"26100", "Windows 11 Pro"},
        {L"Windows 10 Pro", L"21999", "Windows 10 Pro"},
        {L"Windows 10 Pro", L"19045", "Windows 10 Pro"},
        {L"Windows 10", L"22631", "Windows 11"},
        {L"Windows 10 Enterprise multi-session", L"22631", "Windows 11 Enterprise multi-session"},
        {L"Windows 11 Pro", L"26100", "Windows 11 Pro"},
        {L"Windows Server 2022 Standard", L"20348", "Windows Server 2022 Standard"},
        {L"Windows Server 2025 Datacenter", L"26100", "Windows Server 2025 Datacenter"},
        {L"Windows 10 Pro", L"x", "Windows 10 Pro"},
        {L"Windows 7 Professional", L"7601", "Windows 7 Professional"},
    };
    Values values;
    for (const NameCase& c : cases) {
        values.Set(System, L"ProductName", c.product);
        values.Set(System, L"CurrentBuild", c.build);
        EXPECT_EQ(InText("name"), c.name) << c.build;
        EXPECT_TRUE(HasMember("windows", "\"" + std::string(c.name) + "\""))
            << test::JsonOf(WriteFacts);
    }
}

TEST(SystemFacts, TheVersionStandsInOneOfThreeValues) {
    Values values;
    EXPECT_EQ(InText("version"), "not there");
    EXPECT_TRUE(HasMember("displayVersion", "null"));
    values.Set(System, L"CSDVersion", L"Service Pack 1");
    EXPECT_EQ(InText("version"), "Service Pack 1");
    values.Set(System, L"ReleaseId", L"2009");
    EXPECT_EQ(InText("version"), "2009");
    values.Set(System, L"DisplayVersion", L"");
    EXPECT_EQ(InText("version"), "2009");
    values.Set(System, L"DisplayVersion", L"23H2");
    EXPECT_EQ(InText("version"), "23H2");
    EXPECT_TRUE(HasMember("displayVersion", "\"23H2\""));
}

TEST(SystemFacts, TheNameOfTheSystemSaysWhatIsKnown) {
    Values values;
    EXPECT_EQ(SystemName(), L"unknown");
    values.Set(System, L"ProductName", L"Windows 10 Home");
    EXPECT_EQ(SystemName(), L"Windows 10 Home");
    values.Set(System, L"CurrentBuild", L"22631");
    EXPECT_EQ(SystemName(), L"Windows 11 Home, build 22631");
    values.Set(System, L"UBR", 3007);
    EXPECT_EQ(SystemName(), L"Windows 11 Home, build 22631.3007");
    values.Set(System, L"DisplayVersion", L"23H2");
    EXPECT_EQ(SystemName(), L"Windows 11 Home, 23H2, build 22631.3007");
    values.Set(System, L"CurrentBuild", L"22631x");
    EXPECT_EQ(SystemName(), L"Windows 10 Home, 23H2");
}

TEST(SystemFacts, ABuildThatIsNoNumberIsNotKnown) {
    Values values;
    EXPECT_EQ(InText("build"), "not there");
    for (const wchar_t* const text : {L"", L"x", L"22631x", L"0"}) {
        values.Set(System, L"CurrentBuild", text);
        EXPECT_EQ(InText("build"), "unknown (error 13)");
        EXPECT_TRUE(HasMember("build", "null"));
    }
    values.Set(System, L"CurrentBuild", L"22631");
    EXPECT_EQ(InText("build"), "22631");
    EXPECT_TRUE(HasMember("build", "22631"));
}

TEST(SystemFacts, RevisionAndKindAreReadFromTheRegistry) {
    Values values;
    EXPECT_EQ(InText("update revision"), "not there");
    EXPECT_EQ(InText("kind"), "not there");
    values.Set(System, L"UBR", 4294967295);
    values.Set(System, L"InstallationType", L"Server Core");
    EXPECT_EQ(InText("update revision"), "4294967295");
    EXPECT_TRUE(HasMember("revision", "4294967295"));
    EXPECT_EQ(InText("kind"), "Server Core");
    EXPECT_TRUE(HasMember("installationType", "\"Server Core\""));
    values.Set(System, L"UBR", L"3007");
    EXPECT_EQ(InText("update revision"), "unknown (error 1630)");
    values.Set(System, L"InstallationType", std::wstring(256, L'x'));
    EXPECT_EQ(InText("kind"), "unknown (error 234)") << "longer than any that Windows has";
}

TEST(SystemFacts, ValuesThatMayNotBeReadAreNotKnown) {
    Values values;
    values.Missing = ERROR_ACCESS_DENIED;
    for (const char* const words :
         {"name", "version", "build", "update revision", "kind", "remote desktop", "long paths"}) {
        EXPECT_EQ(InText(words), "unknown (error 5)") << words;
    }
    for (const char* const member : {"windows", "displayVersion", "build", "revision",
                                     "installationType", "remoteDesktop", "longPaths"}) {
        EXPECT_TRUE(HasMember(member, "null")) << member;
    }
    EXPECT_EQ(SystemName(), L"unknown");
}

TEST(SystemFacts, LongPathsAreForSystemsThatSaySo) {
    Values values;
    EXPECT_EQ(InText("long paths"), "no");
    values.Set(FileSystem, L"LongPathsEnabled", DWORD{0});
    EXPECT_EQ(InText("long paths"), "no");
    EXPECT_TRUE(HasMember("longPaths", "false"));
    values.Set(FileSystem, L"LongPathsEnabled", DWORD{1});
    EXPECT_EQ(InText("long paths"), "yes");
    EXPECT_TRUE(HasMember("longPaths", "true"));
}

TEST(SystemFacts, ElevationIsThatOfTheToken) {
    DWORD isElevated = 1;
    BOOL gives = TRUE;
    HANDLE asked = nullptr;
    HOOK_IMPORT(
        information, GetTokenInformation,
        [&](HANDLE token, TOKEN_INFORMATION_CLASS kind, LPVOID data, DWORD size, PDWORD) -> BOOL {
            EXPECT_EQ(kind, TokenElevation);
            EXPECT_EQ(size, sizeof(TOKEN_ELEVATION));
            asked = token;
            static_cast<TOKEN_ELEVATION*>(data)->TokenIsElevated = isElevated;
            SetLastError(ERROR_INVALID_PARAMETER);
            return gives;
        });
    EXPECT_EQ(InText("elevated"), "yes");
    DWORD flags = 0;
    EXPECT_FALSE(GetHandleInformation(asked, &flags)) << "it is closed";
    EXPECT_TRUE(HasMember("elevated", "true"));
    isElevated = 0;
    EXPECT_EQ(InText("elevated"), "no");
    EXPECT_TRUE(HasMember("elevated", "false"));
    gives = FALSE;
    EXPECT_EQ(InText("elevated"), "unknown (error 87)");
    EXPECT_FALSE(GetHandleInformation(asked, &flags)) << "it is closed";
    EXPECT_TRUE(HasMember("elevated", "null"));
    HOOK_IMPORT(open, OpenProcessToken, test::FailsWith<BOOL>(ERROR_ACCESS_DENIED));
    EXPECT_EQ(InText("elevated"), "unknown (error 5)");
}

struct SessionCase {
    int isRemoteSession;
    std::optional<DWORD> console;
    DWORD session;
    const char* answer;
};

TEST(SystemFacts, ARemoteSessionSaysSoOrIsNotTheConsoles) {
    const SessionCase cases[] = {
        {0, std::nullopt, 1, "no"}, {1, std::nullopt, 2, "yes"}, {0, DWORD{1}, 1, "no"},
        {0, DWORD{1}, 2, "yes"},    {1, DWORD{2}, 2, "yes"},     {0, DWORD{1}, 0, "no"},
    };
    for (const SessionCase& c : cases) {
        Values values;
        if (c.console) {
            values.Set(TerminalServer, L"GlassSessionId", *c.console);
        }
        HOOK_IMPORT(metrics, GetSystemMetrics, [&](int index) {
            return index == SM_REMOTESESSION ? c.isRemoteSession : metrics.Original(index);
        });
        HOOK_IMPORT(session, ProcessIdToSessionId, [&](DWORD process, DWORD* id) -> BOOL {
            EXPECT_EQ(process, GetCurrentProcessId());
            *id = c.session;
            return TRUE;
        });
        EXPECT_EQ(InText("remote desktop"), c.answer) << c.session;
        EXPECT_TRUE(HasMember("remoteDesktop", c.answer[0] == 'y' ? "true" : "false"));
        EXPECT_EQ(InText("session"), std::to_string(c.session));
        EXPECT_TRUE(HasMember("session", std::to_string(c.session)));
    }
}

TEST(SystemFacts, ASessionThatIsNotKnownIsNotCalledLocal) {
    Values values;
    values.Set(TerminalServer, L"GlassSessionId", DWORD{1});
    HOOK_IMPORT(session, ProcessIdToSessionId, test::FailsWith<BOOL>(ERROR_ACCESS_DENIED));
    EXPECT_EQ(InText("session"), "unknown (error 5)");
    EXPECT_EQ(InText("remote desktop"), "unknown (error 5)");
    EXPECT_TRUE(HasMember("session", "null"));
}

TEST(SystemFacts, CodePagesAreTheSystems) {
    HOOK_IMPORT(ansi, GetACP, []() -> UINT { return 1250; });
    HOOK_IMPORT(oem, GetOEMCP, []() -> UINT { return 852; });
    EXPECT_EQ(InText("ANSI code page"), "1250");
    EXPECT_EQ(InText("OEM code page"), "852");
    EXPECT_TRUE(HasMember("ansiCodePage", "1250"));
    EXPECT_TRUE(HasMember("oemCodePage", "852"));
}

TEST(SystemFacts, TheLanguageIsTheFirstOfThoseTheUserPrefers) {
    BOOL gives = TRUE;
    HOOK_IMPORT(languages, GetUserPreferredUILanguages,
                [&](DWORD flags, PULONG count, PZZWSTR names, PULONG size) -> BOOL {
                    EXPECT_EQ(flags, static_cast<DWORD>(MUI_LANGUAGE_NAME));
                    EXPECT_EQ(*size, 256U);
                    constexpr wchar_t Two[] = L"cs-CZ\0en-US\0";
                    std::memcpy(names, Two, sizeof Two);
                    *count = 2;
                    SetLastError(ERROR_INSUFFICIENT_BUFFER);
                    return gives;
                });
    EXPECT_EQ(InText("language of the user interface"), "cs-CZ");
    EXPECT_TRUE(HasMember("uiLanguage", "\"cs-CZ\""));
    gives = FALSE;
    EXPECT_EQ(InText("language of the user interface"), "unknown (error 122)");
    EXPECT_TRUE(HasMember("uiLanguage", "null"));
}

TEST(SystemFacts, TheScreenAndItsAidsAreAskedOfTheSystem) {
    BOOL gives = TRUE;
    DWORD contrast = HCF_HIGHCONTRASTON | HCF_AVAILABLE;
    BOOL reader = TRUE;
    HOOK_IMPORT(parameters, SystemParametersInfoW,
                [&](UINT action, UINT parameter, PVOID data, UINT writes) -> BOOL {
                    EXPECT_EQ(writes, 0U);
                    if (action == SPI_GETWORKAREA) {
                        *static_cast<RECT*>(data) = {-1920, 40, 0, 1080};
                    } else if (action == SPI_GETHIGHCONTRAST) {
                        EXPECT_EQ(parameter, sizeof(HIGHCONTRASTW));
                        EXPECT_EQ(static_cast<HIGHCONTRASTW*>(data)->cbSize, sizeof(HIGHCONTRASTW));
                        static_cast<HIGHCONTRASTW*>(data)->dwFlags = contrast;
                    } else if (action == SPI_GETSCREENREADER) {
                        *static_cast<BOOL*>(data) = reader;
                    }
                    SetLastError(ERROR_INVALID_PARAMETER);
                    return gives;
                });
    EXPECT_EQ(InText("work area"), "1920 x 1040 at -1920, 40");
    EXPECT_TRUE(HasMember("workArea", R"({"left":-1920,"top":40,"width":1920,"height":1040})"));
    EXPECT_EQ(InText("high contrast"), "yes");
    EXPECT_EQ(InText("screen reader"), "yes");
    contrast = HCF_AVAILABLE;
    reader = FALSE;
    EXPECT_EQ(InText("high contrast"), "no");
    EXPECT_EQ(InText("screen reader"), "no");
    EXPECT_TRUE(HasMember("highContrast", "false"));
    EXPECT_TRUE(HasMember("screenReader", "false"));
    gives = FALSE;
    for (const char* const words : {"work area", "high contrast", "screen reader"}) {
        EXPECT_EQ(InText(words), "unknown (error 87)");
    }
    for (const char* const member : {"workArea", "highContrast", "screenReader"}) {
        EXPECT_TRUE(HasMember(member, "null"));
    }
}

TEST(SystemFacts, WithoutTheLibraryForVersionsThereAreNone) {
    HOOK_IMPORT(load, LoadLibraryExW, test::FailsWith<HMODULE>(ERROR_MOD_NOT_FOUND));
    for (const char* const library : {"mshtml", "ieframe"}) {
        EXPECT_EQ(InText(std::string(library) + ".dll"), "unknown (error 126)");
        EXPECT_TRUE(HasMember(library, "null"));
    }
}

// Wine gives its own library's version for these names, whatever file there is.
TEST(SystemFacts, TheVersionsOfThePagesLibrariesAreTheSystems) {
    const std::wstring page = VersionOfSystemFile(L"mshtml.dll").Text;
    const std::wstring frame = VersionOfSystemFile(L"ieframe.dll").Text;
    EXPECT_NE(page, L"");
    EXPECT_NE(frame, L"");
    EXPECT_EQ(InText("mshtml.dll"), std::string(page.begin(), page.end()));
    EXPECT_EQ(InText("ieframe.dll"), std::string(frame.begin(), frame.end()));
    EXPECT_TRUE(HasMember("mshtml", '"' + InText("mshtml.dll") + '"'));
    EXPECT_TRUE(HasMember("ieframe", '"' + InText("ieframe.dll") + '"'));
}

} // namespace
