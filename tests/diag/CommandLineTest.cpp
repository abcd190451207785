// How the words of the command line find their command; what the commands answer is tested with the
// finished program.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <string>
#include <vector>

#include "diag/Commands.h"
#include "tests/diag/Captured.h"
#include "tests/support/TestInstallation.h"

namespace {

struct Outcome {
    ExitCode code;
    std::string out;
    std::string err;
};

Outcome Kordiag(const std::vector<std::wstring>& words) {
    const test::Captured out;
    const test::Captured err;
    ExitCode code = ExitCode::Answered;
    {
        Utf8Output outStream(out.Handle());
        Utf8Output errStream(err.Handle());
        Streams streams = {outStream, errStream};
        code = RunCommandLine(words, streams);
    }
    return {code, out.Bytes(), err.Bytes()};
}

TEST(CommandLine, HelpFitsOneScreen) {
    const Outcome help = Kordiag({});
    EXPECT_EQ(help.code, ExitCode::Answered);
    EXPECT_EQ(help.err, "");
    EXPECT_LE(std::count(help.out.begin(), help.out.end(), '\n'), 30);
    std::size_t length = 0;
    for (const char c : help.out) {
        length = c == '\n' ? 0 : length + 1;
        ASSERT_LE(length, 100U);
    }
    EXPECT_EQ(Kordiag({L"--help"}).out, help.out);
    EXPECT_EQ(Kordiag({L"-h"}).out, help.out);
}

TEST(CommandLine, EachCommandTellsItsUsage) {
    const Outcome usage = Kordiag({L"sizes", L"--help"});
    EXPECT_EQ(usage.code, ExitCode::Answered);
    EXPECT_EQ(usage.out, "usage: kordiag sizes [--dpi N] [--json]\n");
    EXPECT_EQ(usage.err, "");
}

struct WrongUsage {
    std::vector<std::wstring> words;
    const char* message;
    const char* usage;
};

TEST(CommandLine, WrongUsageShowsTheUsageOfTheCommand) {
    constexpr char Sizes[] = "usage: kordiag sizes [--dpi N] [--json]\n";
    constexpr char Dpi[] = "kordiag sizes: --dpi takes a number from 1 to 9600\n";
    constexpr char General[] = "usage: kordiag COMMAND; kordiag --help lists the commands\n";
    const WrongUsage cases[] = {
        {{L"sizes", L"--rtx"}, "kordiag sizes: unknown option: --rtx\n", Sizes},
        {{L"sizes", L"--nonsense"}, "kordiag sizes: unknown option: --nonsense\n", Sizes},
        {{L"sizes", L"x"}, "kordiag sizes: unexpected argument: x\n", Sizes},
        {{L"sizes", L"--", L"--json"}, "kordiag sizes: unexpected argument: --json\n", Sizes},
        {{L"sizes", L"--dpi"}, Dpi, Sizes},
        {{L"sizes", L"--dpi", L""}, Dpi, Sizes},
        {{L"sizes", L"--dpi", L"0"}, Dpi, Sizes},
        {{L"sizes", L"--dpi", L"-96"}, Dpi, Sizes},
        {{L"sizes", L"--dpi", L"96x"}, Dpi, Sizes},
        {{L"sizes", L"--dpi", L"9601"}, Dpi, Sizes},
        {{L"sizes", L"--dpi", L"99999999999999999999"}, Dpi, Sizes},
        {{L"report", L"--output"},
         "kordiag report: --output takes the name of a file\n",
         "usage: kordiag report [--json] [--redact] [--output FILE] [--force]\n"},
        {{L"setting"},
         "kordiag setting: missing operand\n",
         "usage: kordiag setting NAME [--json]\n"},
        {{L"pages"}, "kordiag: unknown command: pages\n", General},
        {{L"Page"}, "kordiag: unknown command: Page\n", General},
        {{L""}, "kordiag: unknown command: \n", General},
        {{L"--version", L"x"}, "kordiag: unknown command: --version x\n", General},
    };
    for (const WrongUsage& c : cases) {
        const Outcome outcome = Kordiag(c.words);
        EXPECT_EQ(outcome.code, ExitCode::WrongUsage) << c.message;
        EXPECT_EQ(outcome.out, "") << c.message;
        EXPECT_EQ(outcome.err, std::string(c.message) + c.usage);
    }
}

TEST(CommandLine, TakesOptionsAnywhereAndNamesBehindDashes) {
    SetEnvironmentVariableW(L"--json", L"dashes");
    const Outcome outcome = Kordiag({L"setting", L"--json", L"--", L"--json"});
    SetEnvironmentVariableW(L"--json", nullptr);
    EXPECT_EQ(outcome.code, ExitCode::Answered) << outcome.err;
    EXPECT_EQ(outcome.out, "{\"name\":\"--json\",\"found\":true,\"value\":\"dashes\",\"source\":"
                           "\"environment --json\"}\n");
}

TEST(CommandLine, ADpiOfAnySizeIsTaken) {
    const test::TestInstallation nothing;
    const Outcome outcome = Kordiag({L"sizes", L"--dpi", L"9600", L"--json"});
    EXPECT_EQ(outcome.code, ExitCode::Answered);
    EXPECT_EQ(outcome.out.rfind("{\"dpi\":9600,\"sectionBaseHeight\":4500,\"itemHeight\":2000,"
                                "\"baseWidth\":1405,",
                                0),
              0U)
        << outcome.out;
}

TEST(CommandLine, ASettingThatIsNotThereIsANo) {
    EXPECT_EQ(Kordiag({L"setting", L"KOR_NO_SUCH_VARIABLE"}).code, ExitCode::No);
    const Outcome json = Kordiag({L"setting", L"KOR_NO_SUCH_VARIABLE", L"--json"});
    EXPECT_EQ(json.code, ExitCode::No);
    EXPECT_EQ(
        json.out,
        "{\"name\":\"KOR_NO_SUCH_VARIABLE\",\"found\":false,\"value\":\"\",\"source\":\"\"}\n");
}

} // namespace
