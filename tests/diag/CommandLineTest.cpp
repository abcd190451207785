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

using test::Kordiag;
using test::Outcome;

TEST(CommandLine, HelpFitsOneScreen) {
    const Outcome help = Kordiag({});
    EXPECT_EQ(help.Code, ExitCode::Answered);
    EXPECT_EQ(help.Err, "");
    EXPECT_LE(std::count(help.Out.begin(), help.Out.end(), '\n'), 30);
    std::size_t length = 0;
    for (const char c : help.Out) {
        length = c == '\n' ? 0 : length + 1;
        ASSERT_LE(length, 100U);
    }
    EXPECT_EQ(Kordiag({L"--help"}).Out, help.Out);
    EXPECT_EQ(Kordiag({L"-h"}).Out, help.Out);
}

TEST(CommandLine, EachCommandTellsItsUsage) {
    const Outcome usage = Kordiag({L"sizes", L"--help"});
    EXPECT_EQ(usage.Code, ExitCode::Answered);
    EXPECT_EQ(usage.Out, "usage: kordiag sizes [--dpi N] [--json]\n");
    EXPECT_EQ(usage.Err, "");
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
        EXPECT_EQ(outcome.Code, ExitCode::WrongUsage) << c.message;
        EXPECT_EQ(outcome.Out, "") << c.message;
        EXPECT_EQ(outcome.Err, std::string(c.message) + c.usage);
    }
}

TEST(CommandLine, TakesOptionsAnywhereAndNamesBehindDashes) {
    SetEnvironmentVariableW(L"--json", L"dashes");
    const Outcome outcome = Kordiag({L"setting", L"--json", L"--", L"--json"});
    SetEnvironmentVariableW(L"--json", nullptr);
    EXPECT_EQ(outcome.Code, ExitCode::Answered) << outcome.Err;
    EXPECT_EQ(outcome.Out, "{\"name\":\"--json\",\"found\":true,\"value\":\"dashes\",\"source\":"
                           "\"environment --json\"}\n");
}

TEST(CommandLine, ADpiOfAnySizeIsTaken) {
    const test::TestInstallation nothing;
    const Outcome outcome = Kordiag({L"sizes", L"--dpi", L"9600", L"--json"});
    EXPECT_EQ(outcome.Code, ExitCode::Answered);
    EXPECT_EQ(outcome.Out.rfind("{\"dpi\":9600,\"sectionBaseHeight\":4500,\"itemHeight\":2000,"
                                "\"baseWidth\":1405,",
                                0),
              0U)
        << outcome.Out;
}

TEST(CommandLine, ASettingThatIsNotThereIsANo) {
    EXPECT_EQ(Kordiag({L"setting", L"KOR_NO_SUCH_VARIABLE"}).Code, ExitCode::No);
    const Outcome json = Kordiag({L"setting", L"KOR_NO_SUCH_VARIABLE", L"--json"});
    EXPECT_EQ(json.Code, ExitCode::No);
    EXPECT_EQ(
        json.Out,
        "{\"name\":\"KOR_NO_SUCH_VARIABLE\",\"found\":false,\"value\":\"\",\"source\":\"\"}\n");
}

} // namespace
