// The commands of kordiag as a table, and what each gets and gives back.
#pragma once

#include <string>
#include <vector>

#include "base/CKORString.h"
#include "diag/JsonWriter.h"
#include "diag/Utf8Output.h"

enum class ExitCode : int {
    Answered = 0,
    No = 1, // what was asked for does not exist, or the operation gave false
    WrongUsage = 2,
    NotCompared = 3, // neither the same nor different: what was to be compared cannot be read
};

enum Option : unsigned {
    NoOption = 0,
    OptionJson = 1,
    OptionRtx = 2,
    OptionCreate = 4,
    OptionAnywhere = 8,
    OptionDocument = 16,
    OptionDpi = 32,
    OptionCommand = 64, // "--" and a command line follow the operands
    OptionStrict = 128,
    OptionOutput = 256,
    OptionForce = 512,
    OptionRedact = 1024,
    OptionDryRun = 2048,
};

struct Arguments {
    bool Has(Option option) const { return (Options & option) != 0; }
    CKORString Operand(std::size_t index) const { return Operands[index].c_str(); }

    std::vector<std::wstring> Operands;
    unsigned Options = NoOption;
    int Dpi = 0;
    std::wstring Output;                   // the name of a file
    std::vector<std::wstring> CommandLine; // with OptionCommand
};

struct Streams {
    Utf8Output& Out;
    Utf8Output& Err;
};

// Writes the answer to the standard output in the form that the arguments ask for: as one JSON
// document on a line of its own, or as text. write gets a JsonWriter or the output.
template <typename Write>
ExitCode Answer(const Arguments& arguments, Streams& streams, Write write) {
    if (arguments.Has(OptionJson)) {
        JsonWriter json(streams.Out);
        write(json);
        streams.Out.Write(L"\n");
    } else {
        write(streams.Out);
    }
    return ExitCode::Answered;
}

struct Command {
    const wchar_t* Group; // the word before the name; null when there is none
    const wchar_t* Name;
    const wchar_t* Operands; // one word each, in brackets if it may be left out
    const wchar_t* Summary;
    unsigned Options;
    ExitCode (*Run)(const Arguments& arguments, Streams& streams);
};

ExitCode RunPage(const Arguments& arguments, Streams& streams);
ExitCode RunSizes(const Arguments& arguments, Streams& streams);
ExitCode RunCatalogue(const Arguments& arguments, Streams& streams);
ExitCode RunCheck(const Arguments& arguments, Streams& streams);
ExitCode RunOpen(const Arguments& arguments, Streams& streams);
ExitCode RunQueries(const Arguments& arguments, Streams& streams);
ExitCode RunRoots(const Arguments& arguments, Streams& streams);
ExitCode RunSetting(const Arguments& arguments, Streams& streams);
ExitCode RunReport(const Arguments& arguments, Streams& streams);
ExitCode RunCompletion(const Arguments& arguments, Streams& streams);
ExitCode RunCompare(const Arguments& arguments, Streams& streams);
ExitCode RunRegistryGet(const Arguments& arguments, Streams& streams);
ExitCode RunRegistryList(const Arguments& arguments, Streams& streams);
ExitCode RunRegistryType(const Arguments& arguments, Streams& streams);
ExitCode RunRegistryName(const Arguments& arguments, Streams& streams);
ExitCode RunRegistrySet(const Arguments& arguments, Streams& streams);
ExitCode RunRegistryDeleteValue(const Arguments& arguments, Streams& streams);
ExitCode RunRegistryCreateKey(const Arguments& arguments, Streams& streams);
ExitCode RunRegistryDeleteKey(const Arguments& arguments, Streams& streams);
ExitCode RunRegistryDeleteTree(const Arguments& arguments, Streams& streams);
ExitCode RunRegistryCopyValues(const Arguments& arguments, Streams& streams);
ExitCode RunRegistryCopyTree(const Arguments& arguments, Streams& streams);
ExitCode RunRegistryClearVolatile(const Arguments& arguments, Streams& streams);
ExitCode RunRegistryLock(const Arguments& arguments, Streams& streams);

// What may follow on the command line.
struct Choices {
    std::wstring Before; // the words so far
    bool GoesOn;         // and any after them
    std::wstring Words;  // with blanks between them
};

// Of all commands, from the table.
std::vector<Choices> AllChoices();

// words are the program's arguments without its own name.
ExitCode RunCommandLine(const std::vector<std::wstring>& words, Streams& streams);
