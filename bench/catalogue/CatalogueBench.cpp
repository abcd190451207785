// What building the catalogue and composing the page cost beside the system calls that they make:
// both times, their ratio, the time for each version, and the number of calls. It runs in a prefix
// with the demonstration installation: bench/catalogue/run makes one and starts it there. An
// argument limits the number of installed versions.
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>

#include "bench/Measured.h"
#include "bench/catalogue/CallTrace.h"
#include "page/ControlCenterPage.h"

namespace {

constexpr wchar_t VersionsKey[] = L"Software\\Vantrel\\Vantrel Flow Forge\\Installed Versions";
constexpr wchar_t VersionFolder[] = L"C:\\Versions";

// The call counts of two runs of the work must agree, and the calls alone must find what it found.
bool Compare(const char* name, int versions, int rounds, const std::function<void()>& work) {
    CallTrace trace = CallTrace::Of(work);
    const long again = CallTrace::Of(work).Count();
    bench::Measured our;
    bench::Measured bare;
    bool same = again == trace.Count();
    for (int i = 0; i < rounds; ++i) {
        our.Take([] {}, work, 1);
        bare.Take([] {}, [&] { same = trace.Replay() && same; }, 1);
    }
    std::printf("%5d versions, %-8s %10.1f us %10.1f us %7.3f %9.1f us %7ld %7ld%s\n", versions,
                name, our.best, bare.best, our.best / bare.best, our.best / std::max(versions, 1),
                again, trace.Count(), same ? "" : " THE CALLS DIFFER");
    return same;
}

bool CompareCatalogue(int versions, int rounds) {
    ControlCenterPage page;
    page.QueryInstallation();
    bool same = Compare("build", versions, rounds, [&] { page.BuildSections(); });
    same = Compare("compose", versions, rounds, [&] { page.ComposePage(); }) && same;
    return Compare("both", versions, rounds,
                   [&] {
                       page.BuildSections();
                       page.ComposePage();
                   }) &&
           same;
}

// In place of those of the demonstration.
void InstallVersions(int count) {
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, VersionsKey);
    std::filesystem::create_directories(VersionFolder);
    std::ofstream(std::filesystem::path(VersionFolder) / "FlowForge.exe") << "x";
    for (int i = 0; i < count; ++i) {
        const std::wstring key = VersionsKey + (L"\\3." + std::to_wstring(i));
        RegSetKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), L"InstallationPath", REG_SZ, VersionFolder,
                        sizeof VersionFolder);
    }
}

} // namespace

int main(int argc, char** argv) {
    if (GetEnvironmentVariableW(L"KOR_TEST_SANDBOX", nullptr, 0) == 0) {
        std::fputs("This program changes the registry. It runs only in a throw-away prefix: start "
                   "bench/catalogue/run.\n",
                   stderr);
        return 2;
    }
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    const int largest = argc > 1 ? std::atoi(argv[1]) : 1000;
    std::printf("%-24s %13s %13s %7s %12s %7s %7s\n", "", "ours", "bare calls", "ratio",
                "a version", "calls", "bare");
    std::puts("The demonstration:");
    bool same = CompareCatalogue(3, 300);
    std::puts("Other numbers of versions:");
    for (const int versions : {10, 100, 1000}) {
        if (versions <= largest) {
            InstallVersions(versions);
            same = CompareCatalogue(versions, 3000 / versions) && same;
        }
    }
    return same ? 0 : 1;
}
