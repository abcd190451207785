// From the words of the command line to a command of the table.
#include <algorithm>
#include <cwchar>
#include <iterator>

#include "diag/Commands.h"
#include "diag/Version.h"

namespace {

constexpr wchar_t Registry[] = L"registry";

constexpr Command Commands[] = {
    {nullptr, L"page", L"", L"the page's HTML; as a file for any browser", OptionDocument, RunPage},
    {nullptr, L"sizes", L"", L"the window's and the rows' sizes", OptionDpi | OptionJson, RunSizes},
    {nullptr, L"catalogue", L"", L"all sections and items; why some are not shown", OptionJson,
     RunCatalogue},
    {nullptr, L"check", L"", L"what is wrong, and what to do about it", OptionJson | OptionStrict,
     RunCheck},
    {nullptr, L"open", L"ID", L"starts an item as a click does", OptionJson | OptionDryRun,
     RunOpen},
    {nullptr, L"queries", L"", L"what the registry says about the installation", OptionJson,
     RunQueries},
    {nullptr, L"roots", L"", L"the symbolic roots of registry paths", OptionRtx | OptionJson,
     RunRoots},
    {nullptr, L"setting", L"NAME", L"TEMP, TRACEFOLDER, KOR_PATH or any variable", OptionJson,
     RunSetting},
    {nullptr, L"report", L"", L"all of that, for a support ticket",
     OptionJson | OptionRedact | OptionOutput | OptionForce, RunReport},
    {nullptr, L"compare", L"A.json [B.json]", L"what differs between reports, or from now",
     OptionJson, RunCompare},
    {nullptr, L"completion", L"powershell|bash", L"makes that shell complete these words", NoOption,
     RunCompletion},
    {Registry, L"get", L"PATH NAME", L"a value's data", OptionRtx | OptionJson, RunRegistryGet},
    {Registry, L"list", L"PATH", L"subkeys and values", OptionRtx | OptionJson, RunRegistryList},
    {Registry, L"type", L"PATH NAME", L"a value's type", OptionRtx, RunRegistryType},
    {Registry, L"name", L"PATH", L"the key's real name", OptionRtx | OptionCreate, RunRegistryName},
    {Registry, L"set", L"PATH NAME dword|qword|string|expand|binary DATA", L"writes a value",
     OptionRtx | OptionCreate | OptionAnywhere, RunRegistrySet},
    {Registry, L"delete-value", L"PATH NAME", L"deletes it", OptionRtx, RunRegistryDeleteValue},
    {Registry, L"create-key", L"PATH SUBKEY", L"creates a subkey", OptionRtx | OptionCreate,
     RunRegistryCreateKey},
    {Registry, L"delete-key", L"PATH SUBKEY", L"deletes it with all in it", OptionRtx,
     RunRegistryDeleteKey},
    {Registry, L"delete-tree", L"PATH SUBKEY", L"empties it", OptionRtx, RunRegistryDeleteTree},
    {Registry, L"copy-values", L"SRC DST", L"copies a key's values", OptionRtx | OptionAnywhere,
     RunRegistryCopyValues},
    {Registry, L"copy-tree", L"SRC DST", L"with all below it", OptionRtx | OptionAnywhere,
     RunRegistryCopyTree},
    {Registry, L"clear-volatile", L"", L"empties the user's volatile data", OptionRtx,
     RunRegistryClearVolatile},
    {Registry, L"lock", L"PATH", L"runs it with the mutex held",
     OptionRtx | OptionCreate | OptionCommand, RunRegistryLock},
};

struct OptionWord {
    const wchar_t* Word;
    const wchar_t* Value; // what follows the word
    Option Flag;
};

// In the order of the usage.
constexpr OptionWord OptionWords[] = {
    {L"--document", L"", OptionDocument}, {L"--dpi", L" N", OptionDpi},
    {L"--rtx", L"", OptionRtx},           {L"--create", L"", OptionCreate},
    {L"--anywhere", L"", OptionAnywhere}, {L"--json", L"", OptionJson},
    {L"--strict", L"", OptionStrict},     {L"--dry-run", L"", OptionDryRun},
    {L"--redact", L"", OptionRedact},     {L"--output", L" FILE", OptionOutput},
    {L"--force", L"", OptionForce},
};

using Words = std::vector<std::wstring>;

constexpr int SmallestDpi = 1;
constexpr int LargestDpi = 9600;

bool IsHelp(const std::wstring& word) {
    return word == L"--help" || word == L"-h" || word == L"/?";
}

std::wstring NameOf(const Command& command) {
    return command.Group != nullptr ? std::wstring(command.Group) + L" " + command.Name
                                    : command.Name;
}

// What may follow the name, each piece behind a blank.
std::wstring UsageOf(const Command& command, unsigned options) {
    std::wstring usage(command.Operands[0] != L'\0' ? L" " : L"");
    usage += command.Operands;
    for (const OptionWord& row : OptionWords) {
        if ((options & row.Flag) != 0) {
            usage += std::wstring(L" [") + row.Word + row.Value + L"]";
        }
    }
    return (options & OptionCommand) != 0 ? usage + L" -- COMMAND..." : usage;
}

std::size_t CountInOperands(const Command& command, wchar_t c) {
    const std::wstring_view words(command.Operands);
    return static_cast<std::size_t>(std::count(words.begin(), words.end(), c));
}

std::size_t MostOperands(const Command& command) {
    return command.Operands[0] != L'\0' ? CountInOperands(command, L' ') + 1 : 0;
}

std::size_t LeastOperands(const Command& command) {
    return MostOperands(command) - CountInOperands(command, L'[');
}

void WriteUsage(Utf8Output& output, const Command& command) {
    output.Write(L"usage: kordiag ", NameOf(command), UsageOf(command, command.Options), L"\n");
}

std::wstring Padded(std::wstring text, std::size_t width) {
    text.resize(std::max(text.size(), width), L' ');
    return text;
}

void WriteHelp(Utf8Output& output) {
    constexpr std::size_t UsageWidth = 36;
    output.Write(
        L"kordiag shows what the Control Center sees, and why a tool is not on its page.\n");
    for (const Command& command : Commands) {
        // The options of the registry commands are told at the end.
        const unsigned options =
            command.Group != nullptr ? command.Options & OptionCommand : command.Options;
        const std::wstring usage = L"  " + NameOf(command) + UsageOf(command, options);
        output.Write(Padded(usage, UsageWidth), L" ", command.Summary, L"\n");
    }
    output.Write(
        L"\nRegistry commands take --rtx (RTX layout), get and list --json; --create creates the key of PATH,\n"
        L"--anywhere allows writes outside the writable root. Also: kordiag COMMAND --help, kordiag --version\n"
        L"Exit code: 0 answered or same, 1 not found, failed or different, 2 wrong usage, 3 not comparable\n");
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
        if (arguments.Operands.size() < LeastOperands(m_command)) {
            return Refuse(L"missing operand", L"");
        }
        const std::size_t mostOperands = MostOperands(m_command);
        if (arguments.Operands.size() > mostOperands) {
            return Refuse(L"unexpected argument: ", arguments.Operands[mostOperands]);
        }
        if ((m_command.Options & OptionCommand) != 0 && arguments.CommandLine.empty()) {
            return Refuse(L"missing \"--\" and a command", L"");
        }
        return true;
    }

private:
    bool TakeOption(Words::const_iterator& word, Words::const_iterator end, Arguments& arguments) {
        const auto* const known =
            std::find_if(std::begin(OptionWords), std::end(OptionWords),
                         [&](const OptionWord& row) { return *word == row.Word; });
        if (known == std::end(OptionWords) || (m_command.Options & known->Flag) == 0) {
            return Refuse(L"unknown option: ", *word);
        }
        arguments.Options |= known->Flag;
        if (known->Value[0] == L'\0') {
            return true;
        }
        const std::wstring value = word + 1 != end ? *++word : std::wstring();
        if (known->Flag == OptionDpi && !ParseDpi(value, arguments.Dpi)) {
            return Refuse(L"--dpi takes a number from 1 to 9600", L"");
        }
        if (known->Flag == OptionOutput && value.empty()) {
            return Refuse(L"--output takes the name of a file", L"");
        }
        if (known->Flag == OptionOutput) {
            arguments.Output = value;
        }
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
        m_errors.Write(L"kordiag ", NameOf(m_command), L": ", message, word, L"\n");
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

// The alternatives among its operands, and its options, with blanks between them.
std::wstring WordsOf(const Command& command) {
    std::wstring words;
    const std::wstring operands = std::wstring(command.Operands) + L" ";
    for (std::size_t start = 0, end = 0; end + 1 < operands.size(); start = end + 1) {
        end = operands.find(L' ', start);
        const std::wstring operand = operands.substr(start, end + 1 - start);
        if (operand.find(L'|') != operand.npos) {
            words += operand;
        }
    }
    std::replace(words.begin(), words.end(), L'|', L' ');
    for (const OptionWord& row : OptionWords) {
        if ((command.Options & row.Flag) != 0) {
            words += std::wstring(row.Word) + L" ";
        }
    }
    return words + L"--help";
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

std::vector<Choices> AllChoices() {
    std::vector<Choices> ofCommands;
    std::wstring first;
    std::wstring inGroup;
    for (const Command& command : Commands) {
        (command.Group == nullptr ? first : inGroup) += std::wstring(command.Name) + L" ";
        ofCommands.push_back({NameOf(command), true, WordsOf(command)});
    }
    std::vector<Choices> choices = {{L"", false, first + Registry + L" --help --version"},
                                    {Registry, false, inGroup + L"--help"}};
    choices.insert(choices.end(), ofCommands.begin(), ofCommands.end());
    return choices;
}

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
        streams.Err.Write(L"kordiag: unknown command: ", Printable(words[0].c_str()),
                          words.size() > 1 ? L" " : L"",
                          Printable(words.size() > 1 ? words[1].c_str() : L""), L"\n");
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
