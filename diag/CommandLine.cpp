// From the words of the command line to a command of the table.
#include <algorithm>
#include <cwchar>
#include <iterator>

#include "diag/Commands.h"
#include "diag/Version.h"

namespace {

constexpr wchar_t Registry[] = L"registry";

constexpr Command Commands[] = {
    {nullptr, L"page", L"[--document]", L"the page's HTML; as a file for any browser", 0,
     OptionDocument, RunPage},
    {nullptr, L"sizes", L"[--dpi N] [--json]", L"the window's and the rows' sizes", 0,
     OptionDpi | OptionJson, RunSizes},
    {nullptr, L"catalogue", L"[--json]", L"all sections and items; why some are not shown", 0,
     OptionJson, RunCatalogue},
    {nullptr, L"queries", L"[--json]", L"what the registry says about the installation", 0,
     OptionJson, RunQueries},
    {nullptr, L"roots", L"[--rtx] [--json]", L"the symbolic roots of registry paths", 0,
     OptionRtx | OptionJson, RunRoots},
    {nullptr, L"setting", L"NAME [--json]", L"TEMP, TRACEFOLDER, KOR_PATH or any variable", 1,
     OptionJson, RunSetting},
    {nullptr, L"report", L"[--json]", L"all of that at once, for a support ticket", 0, OptionJson,
     RunReport},
    {Registry, L"get", L"PATH NAME [--rtx] [--json]", L"a value's data", 2, OptionRtx | OptionJson,
     RunRegistryGet},
    {Registry, L"list", L"PATH [--rtx] [--json]", L"subkeys and values", 1, OptionRtx | OptionJson,
     RunRegistryList},
    {Registry, L"type", L"PATH NAME [--rtx]", L"a value's type", 2, OptionRtx, RunRegistryType},
    {Registry, L"name", L"PATH [--rtx] [--create]", L"the key's real name", 1,
     OptionRtx | OptionCreate, RunRegistryName},
    {Registry, L"set",
     L"PATH NAME dword|qword|string|expand|binary DATA [--rtx] [--create] [--anywhere]",
     L"writes a value", 4, OptionRtx | OptionCreate | OptionAnywhere, RunRegistrySet},
    {Registry, L"delete-value", L"PATH NAME [--rtx]", L"deletes it", 2, OptionRtx,
     RunRegistryDeleteValue},
    {Registry, L"create-key", L"PATH SUBKEY [--rtx] [--create]", L"creates a subkey", 2,
     OptionRtx | OptionCreate, RunRegistryCreateKey},
    {Registry, L"delete-key", L"PATH SUBKEY [--rtx]", L"deletes it with all in it", 2, OptionRtx,
     RunRegistryDeleteKey},
    {Registry, L"delete-tree", L"PATH SUBKEY [--rtx]", L"empties it", 2, OptionRtx,
     RunRegistryDeleteTree},
    {Registry, L"copy-values", L"SRC DST [--rtx] [--anywhere]", L"copies a key's values", 2,
     OptionRtx | OptionAnywhere, RunRegistryCopyValues},
    {Registry, L"copy-tree", L"SRC DST [--rtx] [--anywhere]", L"with all below it", 2,
     OptionRtx | OptionAnywhere, RunRegistryCopyTree},
    {Registry, L"clear-volatile", L"[--rtx]", L"empties the user's volatile data", 0, OptionRtx,
     RunRegistryClearVolatile},
    {Registry, L"lock", L"PATH [--rtx] [--create] -- COMMAND...", L"runs it with the mutex held", 1,
     OptionRtx | OptionCreate | OptionCommand, RunRegistryLock},
};

struct OptionWord {
    const wchar_t* word;
    Option option;
};

constexpr OptionWord OptionWords[] = {
    {L"--json", OptionJson},         {L"--rtx", OptionRtx},           {L"--create", OptionCreate},
    {L"--anywhere", OptionAnywhere}, {L"--document", OptionDocument}, {L"--dpi", OptionDpi},
};

using Words = std::vector<std::wstring>;

constexpr int SmallestDpi = 1;
constexpr int LargestDpi = 9600;

bool IsHelp(const std::wstring& word) {
    return word == L"--help" || word == L"-h" || word == L"/?";
}

void WriteName(Utf8Output& output, const Command& command) {
    output.Write(L"kordiag ");
    if (command.Group != nullptr) {
        output.Write(command.Group, L" ");
    }
    output.Write(command.Name);
}

void WriteUsage(Utf8Output& output, const Command& command) {
    output.Write(L"usage: ");
    WriteName(output, command);
    output.Write(L" ", command.Usage, L"\n");
}

std::wstring Padded(std::wstring text, std::size_t width) {
    text.resize(std::max(text.size(), width), L' ');
    return text;
}

// What follows the name, without the options of the registry commands, which are told at the end.
std::wstring BriefUsage(const Command& command) {
    std::wstring usage(command.Usage);
    if (command.Group != nullptr) {
        for (std::size_t option = 0; (option = usage.find(L"[--")) != std::wstring::npos;) {
            usage.erase(option, usage.find(L']', option) + 2 - option);
        }
    }
    return usage;
}

void WriteHelp(Utf8Output& output) {
    constexpr std::size_t UsageWidth = 36;
    output.Write(
        L"kordiag tells what the control center sees, and why a tool is not on its page.\n\n");
    for (const Command& command : Commands) {
        std::wstring usage(L"  ");
        if (command.Group != nullptr) {
            usage.append(command.Group).append(L" ");
        }
        usage.append(command.Name).append(L" ").append(BriefUsage(command));
        output.Write(Padded(usage, UsageWidth), L" ", command.Summary, L"\n");
    }
    output.Write(
        L"\nThe registry commands take --rtx for the RTX layout, get and list --json, those that may\n"
        L"have to create the key --create, and writes outside the writable root --anywhere.\n"
        L"kordiag COMMAND --help shows its usage, kordiag --version the version.\n"
        L"Exit code: 0 answered, 1 no or not there, 2 wrong usage.\n");
}

// Returns false with a message when the words are not what the command takes.
class Parser {
public:
    Parser(const Command& command, Utf8Output& errors) : m_command(command), m_errors(errors) {}

    bool Parse(Words::const_iterator word, Words::const_iterator end, Arguments& arguments) {
        bool takesOptions = true;
        for (; word != end; ++word) {
            if (takesOptions && *word == L"--") {
                if ((m_command.Options & OptionCommand) != 0) {
                    arguments.CommandLine.assign(word + 1, end);
                    break;
                }
                takesOptions = false;
            } else if (takesOptions && word->compare(0, 2, L"--") == 0) {
                if (!TakeOption(word, end, arguments)) {
                    return false;
                }
            } else {
                arguments.Operands.push_back(*word);
            }
        }
        if (arguments.Operands.size() < m_command.OperandCount) {
            return Refuse(L"something is missing", L"");
        }
        if (arguments.Operands.size() > m_command.OperandCount) {
            return Refuse(L"this is too much: ", arguments.Operands[m_command.OperandCount]);
        }
        if ((m_command.Options & OptionCommand) != 0 && arguments.CommandLine.empty()) {
            return Refuse(L"\"--\" and a command are missing", L"");
        }
        return true;
    }

private:
    bool TakeOption(Words::const_iterator& word, Words::const_iterator end, Arguments& arguments) {
        const auto* const known =
            std::find_if(std::begin(OptionWords), std::end(OptionWords),
                         [&](const OptionWord& row) { return *word == row.word; });
        if (known == std::end(OptionWords) || (m_command.Options & known->option) == 0) {
            return Refuse(L"unknown option ", *word);
        }
        arguments.Options |= known->option;
        if (known->option != OptionDpi) {
            return true;
        }
        if (word + 1 == end || !ParseDpi(*(word + 1), arguments.Dpi)) {
            return Refuse(L"--dpi takes a number from 1 to 9600", L"");
        }
        ++word;
        return true;
    }

    static bool ParseDpi(const std::wstring& text, int& dpi) {
        wchar_t* end = nullptr;
        const unsigned long number = std::wcstoul(text.c_str(), &end, 10);
        const bool isNumber = !text.empty() && text.find_first_not_of(L"0123456789") == text.npos;
        if (!isNumber || number < SmallestDpi || number > LargestDpi) {
            return false;
        }
        dpi = static_cast<int>(number);
        return true;
    }

    bool Refuse(const wchar_t* message, const std::wstring& word) {
        WriteName(m_errors, m_command);
        m_errors.Write(L": ", message, word, L"\n");
        return false;
    }

    const Command& m_command;
    Utf8Output& m_errors;
};

const Command* FindCommand(const Words& words, std::size_t& nameWords) {
    for (const Command& command : Commands) {
        nameWords = command.Group != nullptr ? 2 : 1;
        if (words.size() >= nameWords && words[nameWords - 1] == command.Name &&
            (command.Group == nullptr || words[0] == command.Group)) {
            return &command;
        }
    }
    return nullptr;
}

bool WriteGroup(Utf8Output& output, const std::wstring& group) {
    bool isGroup = false;
    for (const Command& command : Commands) {
        if (command.Group != nullptr && group == command.Group) {
            isGroup = true;
            WriteUsage(output, command);
        }
    }
    return isGroup;
}

} // namespace

ExitCode RunCommandLine(const std::vector<std::wstring>& words, Streams& streams) {
    if (words.empty() || (words.size() == 1 && IsHelp(words[0]))) {
        WriteHelp(streams.Out);
        return ExitCode::Answered;
    }
    if (words.size() == 1 && words[0] == L"--version") {
        streams.Out.Write(L"kordiag ", ProgramVersion, L"\n");
        return ExitCode::Answered;
    }
    std::size_t nameWords = 0;
    const Command* const command = FindCommand(words, nameWords);
    if (command == nullptr) {
        if (words.size() == 2 && IsHelp(words[1]) && WriteGroup(streams.Out, words[0])) {
            return ExitCode::Answered;
        }
        streams.Err.Write(L"kordiag: there is no command ", Quoted(std::wstring_view(words[0])),
                          words.size() > 1 ? L" " : L"",
                          words.size() > 1 ? Quoted(std::wstring_view(words[1])) : L"", L"\n");
        if (!WriteGroup(streams.Err, words[0])) {
            streams.Err.Write(L"usage: kordiag COMMAND; kordiag --help lists the commands\n");
        }
        return ExitCode::WrongUsage;
    }
    const auto first = words.begin() + static_cast<std::ptrdiff_t>(nameWords);
    if (words.end() - first == 1 && IsHelp(*first)) {
        WriteUsage(streams.Out, *command);
        return ExitCode::Answered;
    }
    Arguments arguments;
    if (!Parser(*command, streams.Err).Parse(first, words.end(), arguments)) {
        WriteUsage(streams.Err, *command);
        return ExitCode::WrongUsage;
    }
    const ExitCode code = command->Run(arguments, streams);
    // A command that runs another one gives back that one's exit code.
    if (code == ExitCode::WrongUsage && (command->Options & OptionCommand) == 0) {
        WriteUsage(streams.Err, *command);
    }
    return code;
}
