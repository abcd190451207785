// kordiag check: only what is wrong, what to do about it, and a verdict.
#include <algorithm>

#include "diag/Commands.h"
#include "diag/Findings.h"

namespace {

struct Verdict {
    std::vector<Finding> Findings;
    std::int64_t Errors;
    std::int64_t Warnings;
    bool IsSound;
};

Verdict Judge(bool isStrict) {
    const PageState state;
    const CatalogueAnswer catalogue(state);
    Verdict verdict = {FindFaults(state, catalogue), 0, 0, false};
    verdict.Errors = std::count_if(verdict.Findings.begin(), verdict.Findings.end(),
                                   [](const Finding& f) { return f.How == Severity::Error; });
    verdict.Warnings = static_cast<std::int64_t>(verdict.Findings.size()) - verdict.Errors;
    verdict.IsSound = verdict.Errors == 0 && (!isStrict || verdict.Warnings == 0);
    return verdict;
}

const wchar_t* WordOf(Severity severity) {
    return severity == Severity::Error ? L"error" : L"warning";
}

void WriteCheck(JsonWriter& json, const Verdict& verdict) {
    json.BeginObject();
    json.Key(L"schema").Number(SchemaVersion);
    json.Key(L"verdict").Text(std::wstring_view(verdict.IsSound ? L"sound" : L"broken"));
    json.Key(L"errors").Number(verdict.Errors);
    json.Key(L"warnings").Number(verdict.Warnings);
    json.Key(L"findings").BeginArray();
    for (const auto& [severity, cause, subjects] : verdict.Findings) {
        json.BeginObject();
        json.Key(L"severity").Text(std::wstring_view(WordOf(severity)));
        json.Key(L"code").Text(std::wstring_view(cause.Word()));
        json.Key(L"subjects").BeginArray();
        for (const CKORString& subject : subjects) {
            json.Text(subject);
        }
        json.EndArray();
        json.Key(L"found").Text(cause.Found);
        json.Key(L"remedy").Text(cause.Remedy);
        json.Key(L"command").BeginArray();
        for (const std::wstring& word : cause.Command) {
            json.Text(std::wstring_view(word));
        }
        json.EndArray();
        json.EndObject();
    }
    json.EndArray();
    json.EndObject();
}

void WriteCheck(Utf8Output& output, const Verdict& verdict) {
    for (const auto& [severity, cause, subjects] : verdict.Findings) {
        output.Write(WordOf(severity), L": ", cause.Word(), L"\n  what:   ");
        const wchar_t* separator = L"";
        for (const CKORString& subject : subjects) {
            output.Write(separator, Printable(subject));
            separator = L", ";
        }
        output.Write(L"\n  found:  ", Printable(cause.Found), L"\n  remedy: ",
                     Printable(cause.Remedy), L"\n");
        if (!cause.Command.empty()) {
            output.Write(L"          ", Printable(CommandLineOf(cause.Command).c_str()), L"\n");
        }
        output.Write(L"\n");
    }
    output.Write(verdict.IsSound ? L"sound: " : L"broken: ", verdict.Errors, L" errors, ",
                 verdict.Warnings, L" warnings\n");
}

} // namespace

ExitCode RunCheck(const Arguments& arguments, Streams& streams) {
    const Verdict verdict = Judge(arguments.Has(OptionStrict));
    Answer(arguments, streams, [&](auto& output) { WriteCheck(output, verdict); });
    return verdict.IsSound ? ExitCode::Answered : ExitCode::No;
}
