// Which source answers for a setting.
#include "env/FolderSettings.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "tests/env/SettingsSandbox.h"
#include "tests/env/TempFolder.h"
#include "tests/support/ImportHook.h"
#include "tests/support/Printing.h"

namespace {

using test::SettingsSandbox;

constexpr wchar_t Untouched[] = L"untouched";

struct Answer {
    bool isFound;
    CKORString text;
};

Answer Ask(const wchar_t* name) {
    Answer answer{false, Untouched};
    answer.isFound = QueryEnvironmentSetting(name, answer.text);
    // The text and its count agree, whatever the source.
    EXPECT_EQ(answer.text.Length(), static_cast<std::int64_t>(std::wcslen(answer.text.Text())));
    EXPECT_LE(answer.text.Count(), answer.text.Capacity());
    return answer;
}

void ExpectAnswer(const wchar_t* name, const std::wstring& expected) {
    const Answer answer = Ask(name);
    EXPECT_TRUE(answer.isFound) << name;
    EXPECT_EQ(answer.text, expected.c_str()) << name;
}

void ExpectNone(const wchar_t* name) {
    const Answer answer = Ask(name);
    EXPECT_FALSE(answer.isFound) << name;
    EXPECT_EQ(answer.text, Untouched) << name;
}

class FolderSettings : public testing::Test {
protected:
    SettingsSandbox m_sandbox;
    test::TempFolder m_folder;
};

// --- The chains of sources. ---

struct ChainCase {
    const char* what;
    const wchar_t* asked;
    // Each setting: null not there, "" names no directory, else the folder of that name.
    const wchar_t* userTemp;
    const wchar_t* machineTemp;
    const wchar_t* userTrace;
    const wchar_t* machineTrace;
    const wchar_t* temp; // variables; null not set
    const wchar_t* trace;
    // A folder's name, or the variable's text; null: not found.
    const wchar_t* expected;
};

constexpr const wchar_t* No = nullptr;
constexpr const wchar_t* Bad = L"";

// Every folder named "user..." or "machine..." exists.
constexpr ChainCase ChainCases[] = {
    {"user's setting wins", L"TEMP", L"user", L"machine", No, No, L"variable", No, L"user"},
    {"mixed case", L"Temp", L"user", No, No, No, L"variable", No, L"user"},
    {"lower case", L"temp", L"user", No, No, No, L"variable", No, L"user"},
    {"machine's setting", L"TEMP", No, L"machine", No, No, L"variable", No, L"machine"},
    {"a bad user's setting hides the machine's", L"TEMP", Bad, L"machine", No, No, L"variable", No,
     L"variable"},
    {"a bad machine's setting", L"TEMP", No, Bad, No, No, L"variable", No, L"variable"},
    {"a bad setting and no variable", L"TEMP", Bad, L"machine", No, No, No, No, No},
    {"no setting", L"TEMP", No, No, No, No, L"variable", No, L"variable"},
    {"a setting without the variable", L"TEMP", L"user", No, No, No, No, No, L"user"},
    {"nothing at all", L"TEMP", No, No, No, No, No, No, No},
    {"the trace settings are not for TEMP", L"TEMP", No, No, L"user", L"machine", No, L"trace", No},
    {"trace: user's setting", L"TRACEFOLDER", L"userTemp", No, L"user", L"machine", L"temp",
     L"trace", L"user"},
    {"trace: mixed case", L"TraceFolder", No, No, L"user", No, No, L"trace", L"user"},
    {"trace: machine's setting", L"TRACEFOLDER", L"userTemp", No, No, L"machine", L"temp", L"trace",
     L"machine"},
    {"trace: a bad setting", L"TRACEFOLDER", L"userTemp", No, Bad, L"machine", L"temp", L"trace",
     L"trace"},
    {"trace: the variable", L"TRACEFOLDER", L"userTemp", No, No, No, L"temp", L"trace", L"trace"},
    {"trace: an empty variable is an answer", L"TRACEFOLDER", L"userTemp", No, No, No, L"temp", L"",
     L""},
    {"trace: TempFolder is the last resort", L"TRACEFOLDER", L"userTemp", No, No, No, L"temp", No,
     L"userTemp"},
    {"trace: so it is in lower case", L"tracefolder", No, L"machineTemp", No, No, L"temp", No,
     L"machineTemp"},
    {"trace: the last resort's variable", L"TRACEFOLDER", Bad, No, Bad, No, L"temp", No, L"temp"},
    {"trace: nothing at all", L"TRACEFOLDER", Bad, No, Bad, No, No, No, No},
};

TEST_F(FolderSettings, TheFirstSourceThatHasAnAnswerWins) {
    for (const wchar_t* const name : {L"user", L"machine", L"userTemp", L"machineTemp"}) {
        m_folder.MakeFolder(name);
    }
    const auto setting = [&](const wchar_t* value) -> std::optional<std::wstring> {
        if (value == nullptr) {
            return std::nullopt;
        }
        return m_folder.PathOf(*value != L'\0' ? value : L"missing");
    };
    for (const ChainCase& c : ChainCases) {
        SCOPED_TRACE(c.what);
        m_sandbox.Clear();
        m_sandbox.SetUser(L"TempFolder", setting(c.userTemp));
        m_sandbox.SetMachine(L"TempFolder", setting(c.machineTemp));
        m_sandbox.SetUser(L"TraceFolder", setting(c.userTrace));
        m_sandbox.SetMachine(L"TraceFolder", setting(c.machineTrace));
        SetEnvironmentVariableW(L"TEMP", c.temp);
        SetEnvironmentVariableW(L"TRACEFOLDER", c.trace);
        if (c.expected == nullptr) {
            ExpectNone(c.asked);
            continue;
        }
        const bool isFolder = test::Exists(m_folder.PathOf(c.expected)) && *c.expected != L'\0';
        ExpectAnswer(c.asked, isFolder ? m_folder.PathOf(c.expected) : c.expected);
    }
}

TEST_F(FolderSettings, TheNewerPathVariableWins) {
    struct {
        const wchar_t* path64;
        const wchar_t* path;
        const wchar_t* expected;
    } const cases[] = {
        {L"C:\\64", L"C:\\plain", L"C:\\64"},
        {No, L"C:\\plain", L"C:\\plain"},
        {L"C:\\64", No, L"C:\\64"},
        {L"", L"C:\\plain", L""},
        {No, No, No},
    };
    // Settings of these names mean nothing.
    m_sandbox.SetUser(L"KOR_PATH", m_folder.Path());
    m_sandbox.SetUser(L"KOR_PATH64", m_folder.Path());
    for (const auto& c : cases) {
        SetEnvironmentVariableW(L"KOR_PATH64", c.path64);
        SetEnvironmentVariableW(L"KOR_PATH", c.path);
        for (const wchar_t* const name : {L"KOR_PATH", L"kor_path", L"Kor_Path"}) {
            if (c.expected != nullptr) {
                ExpectAnswer(name, c.expected);
            } else {
                ExpectNone(name);
            }
        }
        // The newer name does not fall back to the older one.
        if (c.path64 == nullptr) {
            ExpectNone(L"KOR_PATH64");
        }
    }
}

TEST_F(FolderSettings, OtherNamesAreVariablesAlone) {
    m_sandbox.SetUser(L"TempFolder", m_folder.Path());
    for (const wchar_t* const name : {L"KOR_TEST_VARIABLE", L"TEMPFOLDER", L"TEMP2", L"TMPX"}) {
        m_sandbox.SetUser(name, m_folder.Path());
        SetEnvironmentVariableW(name, nullptr);
        ExpectNone(name);
        SetEnvironmentVariableW(name, L"text");
        ExpectAnswer(name, L"text");
        SetEnvironmentVariableW(name, nullptr);
    }
    ExpectNone(L"");
    ExpectNone(L"=");
}

TEST_F(FolderSettings, ValuesAreGivenAsTheyAreStored) {
    for (const std::wstring& text :
         {std::wstring(), std::wstring(L"x"), std::wstring(L"C:\\a\\"), std::wstring(L"%TEMP%\\b"),
          std::wstring(L" blanks "), std::wstring(30000, L'y')}) {
        SetEnvironmentVariableW(L"KOR_PATH64", text.c_str());
        ExpectAnswer(L"KOR_PATH", text);
        const Answer answer = Ask(L"KOR_PATH64");
        EXPECT_EQ(answer.text.Count(), static_cast<std::int64_t>(text.size()) + 1);
    }
    m_sandbox.SetUser(L"TempFolder", m_folder.Path() + L"\\");
    ExpectAnswer(L"TEMP", m_folder.Path() + L"\\");
}

TEST_F(FolderSettings, AVariableInASettingIsNotExpanded) {
    SetEnvironmentVariableW(L"TEMP", m_folder.Path().c_str());
    SetEnvironmentVariableW(L"KOR_TEST_BASE", m_folder.Path().c_str());
    const std::wstring inside = m_folder.MakeFolder(L"inside");
    for (const DWORD type : {DWORD{REG_SZ}, DWORD{REG_EXPAND_SZ}}) {
        m_sandbox.SetUser(L"TempFolder", L"%KOR_TEST_BASE%\\inside", type);
        ExpectAnswer(L"TEMP", m_folder.Path());
        m_sandbox.SetUser(L"TempFolder", inside, type);
        ExpectAnswer(L"TEMP", inside);
    }
}

TEST_F(FolderSettings, ASettingThatIsAFileOrNoTextIsPassedOver) {
    const std::wstring file = m_folder.MakeFile(L"file");
    const std::wstring machine = m_folder.MakeFolder(L"machine");
    SetEnvironmentVariableW(L"TEMP", L"variable");
    m_sandbox.SetMachine(L"TempFolder", machine);
    m_sandbox.SetUser(L"TempFolder", file);
    ExpectAnswer(L"TEMP", L"variable");
    m_sandbox.SetUser(L"TempFolder", std::wstring());
    ExpectAnswer(L"TEMP", L"variable");
    // A value that cannot be read as a text gives way to the machine's.
    m_sandbox.SetUserNumber(L"TempFolder", 7);
    ExpectAnswer(L"TEMP", machine);
    // A multi-string is a text, but none that names a directory.
    m_sandbox.SetUser(L"TempFolder", machine, REG_MULTI_SZ);
    ExpectAnswer(L"TEMP", L"variable");
}

// --- A variable that changes between the two calls of a look-up. ---

class ChangingVariable : public FolderSettings {
protected:
    // The variable's text from each call on; null: not set. The last one stays.
    void ChangeAtEachCall(std::vector<std::optional<std::wstring>> texts) {
        m_texts = std::move(texts);
    }

    int Calls() const { return m_calls; }

private:
    std::vector<std::optional<std::wstring>> m_texts;
    int m_calls = 0;
    test::ImportHook<struct VariableTag, decltype(&GetEnvironmentVariableW)> m_hook{
        "GetEnvironmentVariableW", [this](LPCWSTR name, LPWSTR buffer, DWORD size) -> DWORD {
            if (!m_texts.empty()) {
                const std::optional<std::wstring>& text = m_texts.front();
                SetEnvironmentVariableW(name, text ? text->c_str() : nullptr);
                if (m_texts.size() > 1) {
                    m_texts.erase(m_texts.begin());
                }
            }
            ++m_calls;
            return m_hook.Original(name, buffer, size);
        }};
};

TEST_F(ChangingVariable, WithoutAChangeTheLookUpIsTwoCalls) {
    ChangeAtEachCall({L"text"});
    ExpectAnswer(L"KOR_TEST", L"text");
    EXPECT_EQ(Calls(), 2);
}

TEST_F(FolderSettings, AVariableIsMeasuredAndThenFetched) {
    struct Call {
        std::wstring name;
        bool hasBuffer;
        DWORD size;

        bool operator==(const Call& other) const {
            return name == other.name && hasBuffer == other.hasBuffer && size == other.size;
        }
    };
    SetEnvironmentVariableW(L"KOR_TEST", L"text");
    std::vector<Call> calls;
    HOOK_IMPORT(variable, GetEnvironmentVariableW,
                [&](LPCWSTR name, LPWSTR buffer, DWORD size) -> DWORD {
                    calls.push_back({name, buffer != nullptr, size});
                    return variable.Original(name, buffer, size);
                });
    ExpectAnswer(L"KOR_TEST", L"text");
    EXPECT_TRUE(calls == (std::vector<Call>{{L"KOR_TEST", false, 0}, {L"KOR_TEST", true, 5}}));
    SetEnvironmentVariableW(L"KOR_TEST", nullptr);
}

TEST_F(ChangingVariable, AShorterTextIsTakenAsItIs) {
    for (const wchar_t* const shorter : {L"", L"a", L"abcd"}) {
        ChangeAtEachCall({L"abcde", shorter});
        ExpectAnswer(L"KOR_TEST", shorter);
    }
}

TEST_F(ChangingVariable, ALongerTextIsNeitherCutNorLost) {
    for (const std::size_t length : {std::size_t{5}, std::size_t{6}, std::size_t{4000}}) {
        ChangeAtEachCall({L"abcd", std::wstring(length, L'x')});
        ExpectAnswer(L"KOR_TEST", std::wstring(length, L'x'));
    }
    ChangeAtEachCall({L"", L"x"});
    ExpectAnswer(L"KOR_TEST", L"x");
    ChangeAtEachCall({L"abcd", L"abcdefgh", L"ab"});
    ExpectAnswer(L"KOR_TEST", L"ab");
}

TEST_F(ChangingVariable, OneThatVanishesIsNotSet) {
    ChangeAtEachCall({L"abcd", std::nullopt});
    ExpectNone(L"KOR_TEST");
    ChangeAtEachCall({L"abcd", L"abcdefgh", std::nullopt});
    ExpectNone(L"KOR_TEST");
    // The next source is asked.
    m_sandbox.SetUser(L"TempFolder", m_folder.Path());
    ChangeAtEachCall({L"trace", std::nullopt});
    ExpectAnswer(L"TRACEFOLDER", m_folder.Path());
}

TEST_F(ChangingVariable, OneThatAlwaysGrowsIsGivenUp) {
    std::vector<std::optional<std::wstring>> texts;
    for (std::size_t length = 1; length <= 100; ++length) {
        texts.emplace_back(std::wstring(length, L'x'));
    }
    ChangeAtEachCall(texts);
    ExpectNone(L"KOR_TEST");
    EXPECT_LT(Calls(), 20);
}

// --- Debug settings. ---

struct DebugName {
    const wchar_t* name;
    // Below Settings\Debug.
    const wchar_t* subKey;
    const wchar_t* value;
};

constexpr DebugName DebugNames[] = {
    {L"Plain", L"", L"Plain"},
    {L"\\Leading", L"", L"Leading"},
    {L"Sub\\Value", L"\\Sub", L"Value"},
    {L"\\Sub\\Value", L"\\Sub", L"Value"},
    {L"Sub\\Deeper\\Value", L"\\Sub\\Deeper", L"Value"},
    {L"Sub\\\\Value", L"\\Sub", L"Value"},
    {L"Sub\\", L"\\Sub", L""},
    {L"s/Value", L"", L"s/Value"},
};

TEST_F(FolderSettings, DebugSettingsMayLieInASubKey) {
    for (const DebugName& c : DebugNames) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(c.name)));
        m_sandbox.Clear();
        CKORString result(Untouched);
        EXPECT_FALSE(ReadDebugSetting(c.name, result, false));
        EXPECT_EQ(result, Untouched);
        m_sandbox.SetIn(HKEY_LOCAL_MACHINE, c.subKey, c.value, L"machine");
        EXPECT_TRUE(ReadDebugSetting(c.name, result, false));
        EXPECT_EQ(result, L"machine");
        m_sandbox.SetIn(HKEY_CURRENT_USER, c.subKey, c.value, L"user");
        EXPECT_TRUE(ReadDebugSetting(c.name, result, false));
        EXPECT_EQ(result, L"user");
    }
}

TEST_F(FolderSettings, TheSubKeysOfDebugSettingsAreJoinedWithOneBackslash) {
    for (const DebugName& c : DebugNames) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(c.name)));
        std::vector<std::wstring> opened;
        HOOK_IMPORT(open, RegOpenKeyExW, [&](HKEY, LPCWSTR subKey, auto...) -> LSTATUS {
            opened.emplace_back(subKey);
            return ERROR_FILE_NOT_FOUND;
        });
        CKORString result;
        EXPECT_FALSE(ReadDebugSetting(c.name, result, false));
        const std::wstring expected =
            L"Software\\Vantrel\\Vantrel Imaging Library\\Runtime\\Settings\\Debug" +
            std::wstring(c.subKey);
        EXPECT_EQ(opened, (std::vector<std::wstring>{expected, expected}));
    }
}

TEST_F(FolderSettings, ADebugSettingInAVolatilePlaceIsRefused) {
    m_sandbox.SetIn(HKEY_CURRENT_USER, L"\\Volatile", L"Value", L"text");
    CKORString result(Untouched);
    EXPECT_FALSE(ReadDebugSetting(L"Volatile\\Value", result, false));
    EXPECT_EQ(result, Untouched);
}

TEST_F(FolderSettings, NumbersAreReadAsDecimalTexts) {
    CKORString result(Untouched);
    EXPECT_FALSE(ReadDebugSetting(L"Level", result, true));
    m_sandbox.SetUser(L"Level", std::wstring(L"5"));
    EXPECT_FALSE(ReadDebugSetting(L"Level", result, true)) << "a text is no number";
    EXPECT_EQ(result, Untouched);
    for (const DWORD number : {0UL, 42UL, 0x80000000UL, 0xFFFFFFFFUL}) {
        m_sandbox.SetUserNumber(L"Level", number);
        EXPECT_TRUE(ReadDebugSetting(L"Level", result, true));
        EXPECT_EQ(result, std::to_wstring(number).c_str());
    }
    result = Untouched;
    EXPECT_FALSE(ReadDebugSetting(L"Level", result, false)) << "a number is no text";
    EXPECT_EQ(result, Untouched);
}

TEST_F(FolderSettings, AUserValueThatCannotBeReadGivesWayToTheMachines) {
    m_sandbox.SetUserNumber(L"Name", 1);
    m_sandbox.SetMachine(L"Name", std::wstring(L"machine"));
    CKORString result;
    EXPECT_TRUE(ReadDebugSetting(L"Name", result, false));
    EXPECT_EQ(result, L"machine");
}

// --- The sources that were asked. ---

struct Step {
    SettingSource source;
    std::wstring name;
    bool isFound;
    std::wstring value;
    bool isAnswer;
};

void ExpectSteps(const wchar_t* name, const std::vector<Step>& expected) {
    CKORString result;
    CTable1D<SettingStep> steps;
    QueryEnvironmentSetting(name, result, &steps);
    ASSERT_EQ(steps.Count(), static_cast<std::int64_t>(expected.size()));
    for (std::int64_t i = 0; i < steps.Count(); ++i) {
        const Step& step = expected[static_cast<std::size_t>(i)];
        SCOPED_TRACE(i);
        EXPECT_EQ(steps[i].Source, step.source);
        EXPECT_EQ(steps[i].Name, step.name.c_str());
        EXPECT_EQ(steps[i].IsFound, step.isFound);
        EXPECT_EQ(steps[i].Value, step.value.c_str());
        EXPECT_EQ(steps[i].IsAnswer, step.isAnswer);
    }
}

TEST_F(FolderSettings, NoteTheSourcesThatWereAsked) {
    constexpr SettingSource User = SettingSource::DebugUser;
    constexpr SettingSource Machine = SettingSource::DebugMachine;
    constexpr SettingSource Variable = SettingSource::Environment;
    SetEnvironmentVariableW(L"TEMP", L"variable");
    ExpectSteps(L"TraceFolder", {{User, L"TraceFolder", false, L"", false},
                                 {Machine, L"TraceFolder", false, L"", false},
                                 {Variable, L"TraceFolder", false, L"", false},
                                 {User, L"TempFolder", false, L"", false},
                                 {Machine, L"TempFolder", false, L"", false},
                                 {Variable, L"TEMP", true, L"variable", true}});
    m_sandbox.SetMachine(L"TempFolder", std::wstring(L"C:\\"));
    ExpectSteps(L"TEMP", {{User, L"TempFolder", false, L"", false},
                          {Machine, L"TempFolder", true, L"C:\\", true}});
    m_sandbox.SetUser(L"TempFolder", std::wstring(L"gone"));
    ExpectSteps(L"TEMP", {{User, L"TempFolder", true, L"gone", false},
                          {Variable, L"TEMP", true, L"variable", true}});
    ExpectSteps(L"KOR_PATH", {{Variable, L"KOR_PATH64", false, L"", false},
                              {Variable, L"KOR_PATH", false, L"", false}});
}

} // namespace
