// kordiag report: every reading command at once.
#include <windows.h>

#include "diag/Commands.h"
#include "diag/InstallKeys.h"
#include "diag/NewFile.h"
#include "diag/Reading.h"
#include "diag/SystemFacts.h"
#include "diag/Version.h"

namespace {

// The settings that the library's programs ask for.
constexpr const wchar_t* Settings[] = {L"TEMP", L"TRACEFOLDER", L"KOR_PATH", L"KOR_PATH64"};

std::wstring NowInUtc() {
    SYSTEMTIME now = {};
    GetSystemTime(&now);
    return InIso8601(now);
}

void WriteReport(JsonWriter& json, bool isRedacted) {
    const PageState state;
    json.BeginObject();
    json.Key(L"schema").Number(SchemaVersion);
    json.Key(L"version").Text(std::wstring_view(ProgramVersion));
    json.Key(L"redacted").Boolean(isRedacted);
    json.Key(L"system").Text(std::wstring_view(SystemName()));
    json.Key(L"facts");
    WriteFacts(json);
    json.Key(L"dpi").Number(std::int64_t{state.Dpi});
    json.Key(L"date").Text(std::wstring_view(NowInUtc()));
    json.Key(L"queries");
    WriteQueries(json);
    json.Key(L"installKeys");
    WriteInstallKeys(json);
    json.Key(L"catalogue");
    WriteCatalogue(json, CatalogueAnswer(state));
    json.Key(L"sizes");
    WriteSizes(json, state);
    json.Key(L"roots");
    WriteRoots(json, false);
    json.Key(L"rtxRoots");
    WriteRoots(json, true);
    json.Key(L"settings").BeginArray();
    for (const wchar_t* const name : Settings) {
        WriteSetting(json, name);
    }
    json.EndArray();
    json.Key(L"page").Text(state.Page.PageHtml);
    json.EndObject();
}

void WriteReport(Utf8Output& output) {
    const PageState state;
    output.Write(L"kordiag ", ProgramVersion, L", ", NowInUtc(), L"\n", SystemName(), L", ",
                 state.Dpi, L" DPI\n\nSystem\n\n");
    WriteFacts(output);
    output.Write(L"\nInstallation\n\n");
    WriteQueries(output);
    output.Write(L"\nKeys of the installation\n\n");
    WriteInstallKeys(output);
    output.Write(L"\nCatalogue\n\n");
    WriteCatalogue(output, CatalogueAnswer(state));
    output.Write(L"\nSizes\n\n");
    WriteSizes(output, state);
    output.Write(L"\nRoots\n\n");
    WriteRoots(output, false);
    output.Write(L"\nRoots in the RTX layout\n\n");
    WriteRoots(output, true);
    output.Write(L"\nSettings\n\n");
    for (const wchar_t* const name : Settings) {
        WriteSetting(output, name);
    }
    output.Write(L"\nPage\n\n", state.Page.PageHtml, L"\n");
}

Redaction RedactionFor(bool redacts) {
    return redacts ? Redaction::OfThisUser() : Redaction();
}

// The whole answer, without the names of the user and the computer if they are to be left out.
std::wstring ReportText(const Arguments& arguments) {
    const bool redacts = arguments.Has(OptionRedact);
    if (arguments.Has(OptionJson)) {
        return ReportDocument(redacts) + L"\n";
    }
    Utf8Output kept;
    WriteReport(kept);
    return RedactionFor(redacts).Apply(kept.Take());
}

ExitCode Refuse(Streams& streams, const wchar_t* path, const wchar_t* why, DWORD error) {
    streams.Err.Write(L"kordiag report: ", path, why);
    if (error != ERROR_SUCCESS) {
        streams.Err.Write(L" (error ", static_cast<std::int64_t>(error), L")");
    }
    streams.Err.Write(L"\n");
    return ExitCode::No;
}

ExitCode WriteFile(const Arguments& arguments, Streams& streams) {
    const wchar_t* const path = arguments.Output.c_str();
    const bool replaces = arguments.Has(OptionForce);
    if (!replaces && GetFileAttributesW(path) != INVALID_FILE_ATTRIBUTES) {
        return Refuse(streams, path, L" exists; --force replaces it", ERROR_SUCCESS);
    }
    NewFile file(arguments.Output);
    if (file.Handle() == INVALID_HANDLE_VALUE) {
        return Refuse(streams, path, L" cannot be created", GetLastError());
    }
    Utf8Output output(file.Handle());
    output.Write(ReportText(arguments));
    output.Flush();
    if (!output.IsOpen()) {
        return Refuse(streams, path, L" cannot be written", output.Error());
    }
    return file.Finish(replaces) ? ExitCode::Answered
                                 : Refuse(streams, path, L" cannot be written", GetLastError());
}

} // namespace

std::wstring ReportDocument(bool redacts) {
    const Redaction redaction = RedactionFor(redacts);
    Utf8Output kept;
    JsonWriter json(kept, &redaction);
    WriteReport(json, redacts);
    return kept.Take();
}

ExitCode RunReport(const Arguments& arguments, Streams& streams) {
    if (arguments.Has(OptionOutput)) {
        return WriteFile(arguments, streams);
    }
    streams.Out.Write(ReportText(arguments));
    return ExitCode::Answered;
}
