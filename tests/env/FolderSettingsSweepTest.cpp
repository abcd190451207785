// Every system call of the longest chain of sources fails once, and the documented example is
// imported.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "env/FolderSettings.h"
#include "tests/env/SettingsSandbox.h"
#include "tests/env/TempFolder.h"
#include "tests/support/BesideProgram.h"
#include "tests/support/ImportHook.h"
#include "tests/support/Printing.h"

namespace {

using test::SettingsSandbox;

// Records the calls of a look-up; the one with the given number, from 0, fails.
class LookUpCalls {
public:
    explicit LookUpCalls(int failing) : m_failing(failing) {}

    const std::vector<std::string>& Made() const { return m_made; }

    bool IsBalanced() const {
        std::vector<HKEY> opened = m_opened;
        std::vector<HKEY> closed = m_closed;
        std::sort(opened.begin(), opened.end());
        std::sort(closed.begin(), closed.end());
        return opened == closed;
    }

private:
    bool Fails(const char* function) {
        m_made.emplace_back(function);
        return static_cast<int>(m_made.size()) - 1 == m_failing;
    }

    LSTATUS Opened(LSTATUS status, const HKEY* key) {
        if (status == ERROR_SUCCESS) {
            m_opened.push_back(*key);
        }
        return status;
    }

    int m_failing;
    std::vector<std::string> m_made;
    std::vector<HKEY> m_opened;
    std::vector<HKEY> m_closed;

    test::ImportHook<struct UserTag, decltype(&RegOpenCurrentUser)> m_user{
        "RegOpenCurrentUser", [this](REGSAM access, PHKEY key) -> LSTATUS {
            return Fails("RegOpenCurrentUser") ? ERROR_ACCESS_DENIED
                                               : Opened(m_user.Original(access, key), key);
        }};
    test::ImportHook<struct OpenTag, decltype(&RegOpenKeyExW)> m_open{
        "RegOpenKeyExW",
        [this](HKEY root, LPCWSTR subKey, DWORD options, REGSAM access, PHKEY key) -> LSTATUS {
            return Fails("RegOpenKeyExW")
                       ? ERROR_ACCESS_DENIED
                       : Opened(m_open.Original(root, subKey, options, access, key), key);
        }};
    test::ImportHook<struct QueryTag, decltype(&RegQueryValueExW)> m_query{
        "RegQueryValueExW", [this](auto... all) -> LSTATUS {
            return Fails("RegQueryValueExW") ? ERROR_ACCESS_DENIED : m_query.Original(all...);
        }};
    test::ImportHook<struct CloseTag, decltype(&RegCloseKey)> m_close{
        "RegCloseKey", [this](HKEY key) -> LSTATUS {
            m_closed.push_back(key);
            // Closed all the same: only the report fails.
            const LSTATUS status = m_close.Original(key);
            return Fails("RegCloseKey") ? ERROR_INVALID_HANDLE : status;
        }};
    test::ImportHook<struct AttributesTag, decltype(&GetFileAttributesW)> m_attributes{
        "GetFileAttributesW", [this](LPCWSTR path) -> DWORD {
            return Fails("GetFileAttributesW") ? INVALID_FILE_ATTRIBUTES
                                               : m_attributes.Original(path);
        }};
    test::ImportHook<struct VariableTag2, decltype(&GetEnvironmentVariableW)> m_variable{
        "GetEnvironmentVariableW", [this](auto... all) -> DWORD {
            if (Fails("GetEnvironmentVariableW")) {
                SetLastError(ERROR_ENVVAR_NOT_FOUND);
                return 0;
            }
            return m_variable.Original(all...);
        }};
};

class LookUpSweep : public testing::Test {
protected:
    CKORString Ask(const wchar_t* name) {
        CKORString result(L"none");
        QueryEnvironmentSetting(name, result);
        return result;
    }

    SettingsSandbox m_sandbox;
    test::TempFolder m_folder;
};

// The user's setting answers; whatever fails, the next source does.
TEST_F(LookUpSweep, AFailingCallOfTheFirstSourceLeadsToTheNext) {
    const std::wstring user = m_folder.MakeFolder(L"user");
    const std::wstring machine = m_folder.MakeFolder(L"machine");
    m_sandbox.SetUser(L"TempFolder", user);
    m_sandbox.SetMachine(L"TempFolder", machine);
    SetEnvironmentVariableW(L"TEMP", L"variable");
    std::vector<std::string> all;
    {
        const LookUpCalls calls(-1);
        EXPECT_EQ(Ask(L"TEMP"), user.c_str());
        all = calls.Made();
        EXPECT_TRUE(calls.IsBalanced());
    }
    // Whether the value is there, its type, its presence again, its data. The machine is not asked,
    // nor is the environment.
    const std::vector<std::string> expectedCalls{
        "RegOpenCurrentUser", "RegOpenKeyExW",    "RegQueryValueExW",
        "RegQueryValueExW",   "RegQueryValueExW", "RegQueryValueExW",
        "RegCloseKey",        "RegCloseKey",      "GetFileAttributesW"};
    EXPECT_EQ(all, expectedCalls);
    for (std::size_t failing = 0; failing < all.size(); ++failing) {
        const std::string& function = all[failing];
        const std::wstring expected =
            function == "GetFileAttributesW" ? L"variable"
            : function == "RegOpenKeyExW" || function == "RegQueryValueExW"
                ? machine
                // The predefined root takes the place of the per-user
                // one; a key that is not closed was read all the same.
                : user;
        const LookUpCalls calls(static_cast<int>(failing));
        EXPECT_EQ(Ask(L"TEMP"), expected.c_str()) << failing << " " << function;
        EXPECT_TRUE(calls.IsBalanced()) << failing << " " << function;
        EXPECT_GT(calls.Made().size(), failing);
    }
}

// Nothing answers before the last resort's variable: both calls of either variable fail in turn.
TEST_F(LookUpSweep, AFailingCallOfAVariableLeadsToTheNext) {
    SetEnvironmentVariableW(L"TRACEFOLDER", L"trace");
    SetEnvironmentVariableW(L"TEMP", L"temp");
    std::vector<std::string> all;
    {
        const LookUpCalls calls(-1);
        EXPECT_EQ(Ask(L"TRACEFOLDER"), L"trace");
        all = calls.Made();
    }
    for (std::size_t failing = 0; failing < all.size(); ++failing) {
        const LookUpCalls calls(static_cast<int>(failing));
        const bool isVariable = all[failing] == "GetEnvironmentVariableW";
        EXPECT_EQ(Ask(L"TRACEFOLDER"), isVariable ? L"temp" : L"trace") << failing;
        EXPECT_TRUE(calls.IsBalanced()) << failing;
    }
    SetEnvironmentVariableW(L"TRACEFOLDER", nullptr);
    {
        const LookUpCalls calls(-1);
        EXPECT_EQ(Ask(L"TRACEFOLDER"), L"temp");
        all = calls.Made();
    }
    for (std::size_t failing = 0; failing < all.size(); ++failing) {
        const LookUpCalls calls(static_cast<int>(failing));
        // The first look-up finds nothing anyway; it is one call.
        const bool isLast = all[failing] == "GetEnvironmentVariableW" && failing + 2 >= all.size();
        EXPECT_EQ(Ask(L"TRACEFOLDER"), isLast ? L"none" : L"temp") << failing;
    }
}

// --- The documented example. ---

// The block of that number, from 0, between "```reg" and "```" in the page.
std::string RegistryBlock(int number) {
    std::FILE* const page = _wfopen(test::BesideProgram(L"folder-settings.md").c_str(), L"rb");
    if (page == nullptr) {
        ADD_FAILURE() << "cannot read the page";
        return {};
    }
    std::string text(100'000, '\0');
    text.resize(std::fread(text.data(), 1, text.size(), page));
    std::fclose(page);
    const std::string opening = "```reg\n";
    std::size_t start = text.find(opening);
    for (; number > 0 && start != std::string::npos; --number) {
        start = text.find(opening, start + 1);
    }
    if (start == std::string::npos) {
        ADD_FAILURE() << "the page has no such block";
        return {};
    }
    start += opening.size();
    return text.substr(start, text.find("```", start) - start);
}

void Import(const std::string& block, const std::wstring& file) {
    const HANDLE handle =
        CreateFileW(file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    DWORD written = 0;
    ASSERT_TRUE(
        WriteFile(handle, block.data(), static_cast<DWORD>(block.size()), &written, nullptr));
    CloseHandle(handle);
    std::wstring command = L"regedit.exe /S \"" + file + L"\"";
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process = {};
    ASSERT_TRUE(CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr,
                               nullptr, &startup, &process));
    EXPECT_EQ(WaitForSingleObject(process.hProcess, 60'000), WAIT_OBJECT_0);
    DWORD exitCode = 1;
    GetExitCodeProcess(process.hProcess, &exitCode);
    EXPECT_EQ(exitCode, 0U);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
}

TEST_F(LookUpSweep, TheExampleInTheDocumentationWorks) {
    SetEnvironmentVariableW(L"TEMP", L"temp");
    SetEnvironmentVariableW(L"TRACEFOLDER", L"trace");
    Import(RegistryBlock(0), m_folder.PathOf(L"set.reg"));
    EXPECT_EQ(Ask(L"TEMP"), L"temp") << "the folders are not there yet";
    EXPECT_EQ(Ask(L"TRACEFOLDER"), L"trace");
    ASSERT_TRUE(CreateDirectoryW(L"C:\\KorTemp", nullptr));
    ASSERT_TRUE(CreateDirectoryW(L"C:\\KorTrace", nullptr));
    EXPECT_EQ(Ask(L"TEMP"), L"C:\\KorTemp");
    EXPECT_EQ(Ask(L"TRACEFOLDER"), L"C:\\KorTrace");
    Import(RegistryBlock(1), m_folder.PathOf(L"unset.reg"));
    EXPECT_EQ(Ask(L"TEMP"), L"temp");
    EXPECT_EQ(Ask(L"TRACEFOLDER"), L"trace");
    RemoveDirectoryW(L"C:\\KorTemp");
    RemoveDirectoryW(L"C:\\KorTrace");
}

} // namespace
