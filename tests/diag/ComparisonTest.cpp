// What counts as a difference between two reports, and how it is told.
#include <gtest/gtest.h>
#include <windows.h>

#include <fstream>
#include <string>
#include <vector>

#include "diag/Commands.h"
#include "diag/Comparison.h"
#include "diag/JsonReader.h"
#include "tests/diag/Captured.h"
#include "tests/support/TestInstallation.h"

namespace {

JsonValue Document(std::wstring_view text) {
    JsonValue document;
    std::wstring error;
    EXPECT_TRUE(ReadJson(text, document, error)) << std::string(error.begin(), error.end());
    return document;
}

std::string Written(const JsonValue* value) {
    return value == nullptr ? "-" : test::Capture([&](Utf8Output& output) {
        JsonWriter json(output);
        Write(json, *value);
    });
}

// Each as "path: a, b".
std::vector<std::string> Differences(std::wstring_view a, std::wstring_view b) {
    const JsonValue documentA = Document(a);
    const JsonValue documentB = Document(b);
    std::vector<std::string> lines;
    for (const Difference& difference : Compare(documentA, documentB)) {
        lines.push_back(test::Capture([&](Utf8Output& output) { output.Write(difference.Path); }) +
                        ": " + Written(difference.A) + ", " + Written(difference.B));
    }
    return lines;
}

using Lines = std::vector<std::string>;

TEST(Comparison, ValuesDifferByKindAndByContent) {
    EXPECT_EQ(Differences(LR"({"a":1,"b":"1","c":true,"d":null,"e":[],"f":{}})",
                          LR"({"a":1,"b":"1","c":true,"d":null,"e":[],"f":{}})"),
              Lines());
    EXPECT_EQ(Differences(LR"({"a":1,"b":"1","c":true,"d":null,"e":[],"f":"x"})",
                          LR"({"a":"1","b":"2","c":false,"d":0,"e":{},"f":"x "})"),
              (Lines{R"(a: 1, "1")", R"(b: "1", "2")", R"(c: true, false)", R"(d: null, 0)",
                     R"(e: [], {})", R"(f: "x", "x ")"}));
    EXPECT_EQ(Differences(LR"({"sizes":{"dpi":96,"rows":[1,2,3]}})",
                          LR"({"sizes":{"dpi":120,"rows":[1,3,3]}})"),
              (Lines{"sizes.dpi: 96, 120", "sizes.rows[1]: 2, 3"}));
}

TEST(Comparison, WhatOnlyOneHasIsADifference) {
    EXPECT_EQ(Differences(LR"({"a":1,"b":{"c":2}})", LR"({"b":{"d":null},"e":[1]})"),
              (Lines{"a: 1, -", "b.c: 2, -", "b.d: -, null", "e: -, [1]"}));
    EXPECT_EQ(Differences(LR"({"rows":[1]})", LR"({"rows":[1,2,3]})"),
              (Lines{"rows[1]: -, 2", "rows[2]: -, 3"}));
    EXPECT_EQ(Differences(LR"({"rows":[]})", LR"({"rows":[1]})"), Lines{"rows[0]: -, 1"});
    EXPECT_EQ(Differences(LR"({"rows":[1]})", LR"({"rows":[]})"), Lines{"rows[0]: 1, -"});
}

TEST(Comparison, TheOrderOfMembersDoesNotCount) {
    EXPECT_EQ(Differences(LR"({"a":1,"b":{"c":2,"d":3}})", LR"({"b":{"d":3,"c":2},"a":1})"),
              Lines());
}

struct SetCase {
    const wchar_t* a;
    const wchar_t* b;
    const char* difference;
};

TEST(Comparison, EntriesAreFoundByTheirNames) {
    const SetCase cases[] = {
        {LR"({"queries":[{"query":"x","result":1},{"query":"y","result":2}]})",
         LR"({"queries":[{"query":"y","result":3},{"query":"x","result":1}]})",
         R"(queries["y"].result: 2, 3)"},
        {LR"({"installKeys":[{"key":"x","exists":true},{"key":"y","exists":true}]})",
         LR"({"installKeys":[{"exists":true,"key":"y"},{"exists":false,"key":"x"}]})",
         R"(installKeys["x"].exists: true, false)"},
        {LR"({"sections":[{"key":"T","items":[{"id":"T_0","shown":true},{"id":"T_1"}]},{"key":"U"}]})",
         LR"({"sections":[{"key":"U"},{"key":"T","items":[{"id":"T_1"},{"id":"T_0","shown":false}]}]})",
         R"(sections["T"].items["T_0"].shown: true, false)"},
        {LR"({"notBuilt":[{"section":"S","item":"a","why":"1"},{"section":"S","item":"b","why":"2"}]})",
         LR"({"notBuilt":[{"section":"S","item":"b","why":"3"},{"section":"S","item":"a","why":"1"}]})",
         R"(notBuilt["S", "b"].why: "2", "3")"},
        {LR"({"roots":[{"id":1,"exists":true},{"id":2,"exists":true}]})",
         LR"({"roots":[{"id":2,"exists":false},{"id":1,"exists":true}]})",
         R"(roots[2].exists: true, false)"},
        {LR"({"rtxRoots":[{"id":1,"exists":true},{"id":2,"exists":true}]})",
         LR"({"rtxRoots":[{"id":2,"exists":true},{"id":1,"exists":false}]})",
         R"(rtxRoots[1].exists: true, false)"},
        {LR"({"settings":[{"name":"TEMP","value":"a"},{"name":"KOR_PATH","value":"b"}]})",
         LR"({"settings":[{"name":"KOR_PATH","value":"c"},{"name":"TEMP","value":"a"}]})",
         R"(settings["KOR_PATH"].value: "b", "c")"},
        {LR"({"settings":[{"name":"a"}]})", LR"({"settings":[{"name":"A"}]})", nullptr},
    };
    for (const SetCase& c : cases) {
        EXPECT_EQ(Differences(c.a, c.a), Lines());
        EXPECT_EQ(Differences(c.a, c.b), c.difference != nullptr
                                             ? Lines{c.difference}
                                             : (Lines{R"(settings["a"]: {"name":"a"}, -)",
                                                      R"(settings["A"]: -, {"name":"A"})"}));
    }
}

TEST(Comparison, EntriesWithOneNameAreTakenInTheirOrder) {
    EXPECT_EQ(Differences(LR"({"sections":[{"key":"T","row":1},{"key":"T","row":2}]})",
                          LR"({"sections":[{"key":"T","row":1},{"key":"T","row":3},{"key":"T"}]})"),
              (Lines{R"(sections["T"](2).row: 2, 3)", R"(sections["T"](3): -, {"key":"T"})"}));
}

TEST(Comparison, EntriesWithoutANameAreComparedAllTheSame) {
    EXPECT_EQ(Differences(LR"({"settings":[1,{"x":2}]})", LR"({"settings":[1,{"x":3},[]]})"),
              (Lines{"settings[?](2).x: 2, 3", "settings[?](3): -, []"}));
}

TEST(Comparison, TimesDoNotCount) {
    EXPECT_EQ(Differences(LR"({"date":"x","redacted":true,"facts":{"session":1},
                              "installKeys":[{"key":"k","written":"x"}]})",
                          LR"({"date":"y","redacted":false,"facts":{"session":2},
                              "installKeys":[{"key":"k","written":null}]})"),
              Lines());
    EXPECT_EQ(Differences(LR"({"date":"x"})", LR"({"written":"y"})"), Lines());
    EXPECT_EQ(Differences(LR"({"dates":"x"})", LR"({"dates":"y"})"), Lines{R"(dates: "x", "y")"});
}

TEST(Comparison, NamesArePrintable) {
    EXPECT_EQ(Differences(LR"({"settings":[{"name":"a\n\ud800","value":1}],"x\u0001":1})",
                          LR"({"settings":[{"name":"a\n\ud800","value":2}],"x\u0001":2})"),
              (Lines{R"(settings["a\u000a\ud800"].value: 1, 2)", R"(x\u0001: 1, 2)"}));
}

class CompareCommand : public testing::Test {
protected:
    CompareCommand() { m_files.MakeFolder(L"C:\\KorTest\\compare"); }

    static test::Outcome Run(const std::vector<std::wstring>& operands) {
        std::vector<std::wstring> words = {L"compare"};
        for (const std::wstring& operand : operands) {
            words.push_back(operand.front() == L'-' ? operand
                                                    : L"C:\\KorTest\\compare\\" + operand);
        }
        return test::Kordiag(words);
    }
    static void Make(const char* file, const std::string& members) {
        std::ofstream(std::string("C:\\KorTest\\compare\\") + file, std::ios::binary)
            << R"({"schema":1,"catalogue":{})" << members << "}";
    }

    test::TestInstallation m_files;
};

TEST_F(CompareCommand, TellsWhereTheReportsDiffer) {
    Make("a", R"(,"date":"2026-01-02T03:04:05Z","dpi":96,"x":"C:\\a")");
    Make("b", R"(,"date":"2026-01-03T03:04:05Z","x":"\u00dc\n","facts":{"build":1})");
    const test::Outcome outcome = Run({L"a", L"b"});
    EXPECT_EQ(outcome.Code, ExitCode::No);
    EXPECT_EQ(outcome.Err, "");
    EXPECT_EQ(outcome.Out, "A: C:\\KorTest\\compare\\a, 2026-01-02T03:04:05Z\n"
                           "B: C:\\KorTest\\compare\\b, 2026-01-03T03:04:05Z\n"
                           "\n"
                           "dpi\n  A: 96\n  B: nothing\n"
                           "x\n  A: \"C:\\a\"\n  B: \"\u00dc\\u000a\"\n"
                           "facts\n  A: nothing\n  B: {\"build\":1}\n"
                           "\n"
                           "differences: 3\n");
    const test::Outcome json = Run({L"--json", L"a", L"b"});
    EXPECT_EQ(json.Code, ExitCode::No);
    EXPECT_EQ(
        json.Out,
        R"({"schema":1,"a":"C:\\KorTest\\compare\\a","b":"C:\\KorTest\\compare\\b","same":false,)"
        R"("differences":[{"path":"dpi","a":96},{"path":"x","a":"C:\\a","b":")"
        "\u00dc"
        R"(\n"},{"path":"facts","b":{"build":1}}]})"
        "\n");
}

TEST_F(CompareCommand, SaysThatReportsAreTheSame) {
    Make("a", R"(,"date":"2026-01-02T03:04:05Z","dpi":96)");
    Make("b", R"(,"dpi":96)");
    const test::Outcome outcome = Run({L"a", L"b"});
    EXPECT_EQ(outcome.Code, ExitCode::Answered);
    EXPECT_EQ(outcome.Out, "A: C:\\KorTest\\compare\\a, 2026-01-02T03:04:05Z\n"
                           "B: C:\\KorTest\\compare\\b\n"
                           "\n"
                           "no differences\n");
    const test::Outcome json = Run({L"a", L"b", L"--json"});
    EXPECT_EQ(json.Code, ExitCode::Answered);
    EXPECT_EQ(json.Out,
              R"({"schema":1,"a":"C:\\KorTest\\compare\\a","b":"C:\\KorTest\\compare\\b",)"
              R"("same":true,"differences":[]})"
              "\n");
}

TEST_F(CompareCommand, ShowsLongTextsWhereTheDifferenceBegins) {
    const std::string same(200, 'a');
    Make("a", R"(,"page":")" + same + "x" + same + "\",\"s\":\"" + std::string(158, 's') + '"');
    Make("b", R"(,"page":")" + same + "y\",\"s\":\"" + std::string(159, 's') + '"');
    const std::string out = Run({L"a", L"b"}).Out;
    EXPECT_EQ(out.substr(out.find("\n\n") + 2),
              "page\n  A: ..." + same.substr(0, 40) + "x" + same.substr(0, 119) +
                  "...\n"
                  "  B: ..." +
                  same.substr(0, 40) +
                  "y\"\n"
                  "s\n  A: \"" +
                  std::string(158, 's') +
                  "\"\n"
                  "  B: ..." +
                  std::string(40, 's') + "s\"\n\ndifferences: 2\n");
}

TEST_F(CompareCommand, ComparesWithThisComputer) {
    const std::string report = test::OutputOf({L"report", L"--json"});
    std::ofstream("C:\\KorTest\\compare\\a", std::ios::binary) << report;
    const test::Outcome same = Run({L"a"});
    EXPECT_EQ(same.Code, ExitCode::Answered) << same.Out;
    EXPECT_NE(same.Out.find("\nB: this computer, now\n\nno differences\n"), std::string::npos)
        << same.Out;
    m_files.SetText(test::LibraryKey, L"KORType", L"Runtime");
    const test::Outcome other = Run({L"--json", L"a"});
    EXPECT_EQ(other.Code, ExitCode::No);
    EXPECT_NE(other.Out.find(R"("b":null,"same":false)"), std::string::npos) << other.Out;
    EXPECT_NE(other.Out.find(
                  R"({"path":"queries[\"development installation\"].found","a":false,"b":true})"),
              std::string::npos)
        << other.Out;
}

TEST_F(CompareCommand, LeavesOutNamesAsTheReportDoes) {
    SetEnvironmentVariableW(L"USERPROFILE", L"C:\\users\\somebody");
    SetEnvironmentVariableW(L"TRACEFOLDER", L"C:\\users\\somebody\\trace");
    std::ofstream("C:\\KorTest\\compare\\plain") << test::OutputOf({L"report", L"--json"});
    std::ofstream("C:\\KorTest\\compare\\redacted")
        << test::OutputOf({L"report", L"--json", L"--redact"});
    const test::Outcome redacted = Run({L"redacted"});
    const test::Outcome plain = Run({L"plain"});
    const test::Outcome both = Run({L"redacted", L"plain"});
    const test::Outcome turned = Run({L"plain", L"redacted"});
    SetEnvironmentVariableW(L"TRACEFOLDER", nullptr);
    EXPECT_EQ(redacted.Code, ExitCode::Answered) << redacted.Out;
    EXPECT_EQ(redacted.Err, "");
    EXPECT_EQ(plain.Code, ExitCode::Answered) << plain.Out;
    EXPECT_EQ(both.Code, ExitCode::No);
    EXPECT_NE(both.Out.find("settings[\"TRACEFOLDER\"].value\n  A: \"%USERPROFILE%\\trace\"\n"
                            "  B: \"C:\\users\\somebody\\trace\"\n"),
              std::string::npos)
        << both.Out;
    for (const test::Outcome& outcome : {both, turned}) {
        EXPECT_EQ(outcome.Err,
                  "kordiag compare: only one of the reports was made with --redact, so "
                  "names differ\n");
    }
}

TEST_F(CompareCommand, RefusesWhatIsNoReport) {
    constexpr char No[] = " is no report; kordiag report --json --output FILE writes one\n";
    constexpr char Unknown[] = " is a report of a form that this kordiag does not know\n";
    const struct {
        const char* bytes;
        const char* error;
    } cases[] = {
        {"", " is no JSON document: line 1, character 1: it ends too early\n"},
        {"kordiag 1.0.0, 2026", " is no JSON document: line 1, character 1: no value of JSON\n"},
        {"\xFC", " is not UTF-8\n"},
        {"[]", No},
        {"1", No},
        {"{}", No},
        {R"({"schema":1,"verdict":"sound"})", No},
        {R"({"catalogue":{}})", No},
        {R"({"schema":1,"catalogue":[]})", No},
        {R"({"schema":2,"catalogue":{}})", Unknown},
        {R"({"schema":"1","catalogue":{}})", Unknown},
    };
    Make("good", "");
    for (const auto& c : cases) {
        std::ofstream("C:\\KorTest\\compare\\bad", std::ios::binary) << c.bytes;
        const std::string error =
            std::string("kordiag compare: C:\\KorTest\\compare\\bad") + c.error;
        for (const test::Outcome& outcome :
             {Run({L"bad", L"good"}), Run({L"good", L"bad"}), Run({L"bad", L"--json"})}) {
            EXPECT_EQ(outcome.Code, ExitCode::NotCompared) << c.bytes;
            EXPECT_EQ(outcome.Out, "");
            EXPECT_EQ(outcome.Err, error);
        }
    }
    const test::Outcome missing = Run({L"none"});
    EXPECT_EQ(missing.Code, ExitCode::NotCompared);
    EXPECT_EQ(missing.Err,
              "kordiag compare: C:\\KorTest\\compare\\none cannot be opened (error 2)\n");
}

TEST_F(CompareCommand, TakesOneReportOrTwo) {
    constexpr char Usage[] = "usage: kordiag compare A.json [B.json] [--json]\n";
    const test::Outcome none = Run({});
    EXPECT_EQ(none.Code, ExitCode::WrongUsage);
    EXPECT_EQ(none.Err, std::string("kordiag compare: missing operand\n") + Usage);
    const test::Outcome three = Run({L"a", L"b", L"c"});
    EXPECT_EQ(three.Code, ExitCode::WrongUsage);
    EXPECT_EQ(three.Err,
              std::string("kordiag compare: unexpected argument: C:\\KorTest\\compare\\c\n") +
                  Usage);
}

} // namespace
