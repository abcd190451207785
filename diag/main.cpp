// kordiag.exe: tells support people and scripts what the control center sees.
#include <windows.h>

#include <shellapi.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "base/SystemLibraries.h"
#include "diag/Commands.h"

namespace {

std::vector<std::wstring> WordsOfCommandLine() {
    int count = 0;
    wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::wstring> result;
    if (words != nullptr) {
        result.assign(words + (count > 0 ? 1 : 0), words + count);
        LocalFree(words);
    }
    return result;
}

} // namespace

int main() {
    LoadLibrariesFromSystemOnly();
    Utf8Output out(GetStdHandle(STD_OUTPUT_HANDLE));
    Utf8Output err(GetStdHandle(STD_ERROR_HANDLE));
    Streams streams = {out, err};
    const ExitCode code = RunCommandLine(WordsOfCommandLine(), streams);
    out.Flush();
    if (!out.IsOpen() && !out.ReaderIsGone()) {
        err.Write(L"kordiag: the output could not be written\n");
        return static_cast<int>(ExitCode::No);
    }
    return static_cast<int>(code);
}
