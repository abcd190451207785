// kordiag completion: a script that completes kordiag's words in a shell.
#include <algorithm>
#include <iterator>

#include "diag/Commands.h"

namespace {

struct Shell {
    const wchar_t* Name;
    const wchar_t* Beginning;
    // Of each case: around the words before, and behind what may follow them.
    const wchar_t* Open;
    const wchar_t* EndOfWords;
    const wchar_t* EndOfWordsAndMore;
    const wchar_t* Close;
    const wchar_t* End;
};

// The words before the one to be completed stand between blanks: " registry get ".
constexpr Shell Shells[] = {
    {L"powershell", LR"(# Completes the words of kordiag. To be run from the profile ($PROFILE):
#     kordiag completion powershell | Out-String | Invoke-Expression
Register-ArgumentCompleter -Native -CommandName kordiag, kordiag.exe -ScriptBlock {
    param($word, $line, $cursor)
    $before = $line.CommandElements | Select-Object -Skip 1 | Where-Object { $_.Extent.EndOffset -lt $cursor }
    $choices = switch -Wildcard (' ' + (@($before) -join ' ') + ' ') {
)",
     L"        '", L"' { '", L"*' { '", L"'; break }\n", LR"(    }
    -split $choices | Where-Object { $_ -and $_ -like "$word*" } |
        ForEach-Object { [System.Management.Automation.CompletionResult]::new($_) }
}
)"},
    {L"bash", LR"(# Completes the words of kordiag. To be run from ~/.bashrc:
#     source <(kordiag completion bash)
_kordiag() {
    local choices=
    case " ${COMP_WORDS[*]:1:COMP_CWORD-1} " in
)",
     L"        '", L"') choices='", L"'*) choices='", L"' ;;\n", LR"(    esac
    mapfile -t COMPREPLY < <(compgen -W "$choices" -- "${COMP_WORDS[COMP_CWORD]}")
}
complete -o default -F _kordiag kordiag kordiag.exe
)"},
};

} // namespace

ExitCode RunCompletion(const Arguments& arguments, Streams& streams) {
    const auto* const shell =
        std::find_if(std::begin(Shells), std::end(Shells),
                     [&](const Shell& row) { return arguments.Operands[0] == row.Name; });
    if (shell == std::end(Shells)) {
        streams.Err.Write(L"kordiag completion: unknown shell: ", Printable(arguments.Operand(0)),
                          L"\n");
        return ExitCode::WrongUsage;
    }
    streams.Out.Write(shell->Beginning);
    for (const Choices& choices : AllChoices()) {
        streams.Out.Write(shell->Open, L" ", choices.Before, L" ",
                          choices.GoesOn ? shell->EndOfWordsAndMore : shell->EndOfWords,
                          choices.Words, shell->Close);
    }
    streams.Out.Write(shell->End);
    return ExitCode::Answered;
}
