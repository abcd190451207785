// kordiag compare: two reports, or a report and the computer as it is now.
#include <windows.h>

#include <algorithm>
#include <string>

#include "diag/Commands.h"
#include "diag/Comparison.h"
#include "diag/JsonFile.h"
#include "diag/JsonReader.h"
#include "diag/Reading.h"

namespace {

struct Side {
    std::wstring File; // empty for this computer
    JsonValue Report;
};

const wchar_t* WhyNoReport(const JsonValue& document) {
    const JsonValue* const schema = document.Find(L"schema");
    const JsonValue* const catalogue = document.Find(L"catalogue");
    if (schema == nullptr || catalogue == nullptr || catalogue->Type != JsonValue::Kind::Object) {
        return L"is no report; kordiag report --json --output FILE writes one";
    }
    const bool isKnown =
        schema->Type == JsonValue::Kind::Number && schema->Text == std::to_wstring(SchemaVersion);
    return isKnown ? nullptr : L"is a report of a form that this kordiag does not know";
}

bool ReadReport(Side& side, Streams& streams) {
    std::wstring error;
    if (ReadJsonFile(side.File, side.Report, error)) {
        const wchar_t* const why = WhyNoReport(side.Report);
        if (why == nullptr) {
            return true;
        }
        error = why;
    }
    streams.Err.Write(L"kordiag compare: ", side.File, L" ", error, L"\n");
    return false;
}

bool IsRedacted(const Side& side) {
    const JsonValue* const redacted = side.Report.Find(L"redacted");
    return redacted != nullptr && redacted->Type == JsonValue::Kind::True;
}

std::wstring InWords(const JsonValue* value) {
    if (value == nullptr) {
        return L"nothing";
    }
    if (value->Type == JsonValue::Kind::Text) {
        return L"\"" + PrintableText(value->Text) + L"\"";
    }
    Utf8Output kept;
    JsonWriter json(kept);
    Write(json, *value);
    return kept.Take();
}

// What is long, the page above all, is shown where the difference begins.
std::wstring Excerpt(const std::wstring& text, std::size_t difference) {
    constexpr std::size_t Most = 160;
    constexpr std::size_t Before = 40;
    if (text.size() <= Most) {
        return text;
    }
    const std::size_t start = difference > Before ? difference - Before : 0;
    const std::size_t length = std::min(Most, text.size() - start);
    return (start > 0 ? L"..." : L"") + text.substr(start, length) +
           (start + length < text.size() ? L"..." : L"");
}

void Write(Utf8Output& output, const Difference& difference) {
    const std::wstring a = InWords(difference.A);
    const std::wstring b = InWords(difference.B);
    const auto at = static_cast<std::size_t>(
        std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first - a.begin());
    output.Write(difference.Path, L"\n  A: ", Excerpt(a, at), L"\n  B: ", Excerpt(b, at), L"\n");
}

void WriteHeading(Utf8Output& output, const wchar_t* letter, const Side& side) {
    const JsonValue* const date = side.Report.Find(L"date");
    output.Write(letter, L": ", side.File.empty() ? L"this computer, now" : side.File,
                 !side.File.empty() && date != nullptr ? L", " + PrintableText(date->Text) : L"",
                 L"\n");
}

void Write(Utf8Output& output, const Side& a, const Side& b,
           const std::vector<Difference>& differences) {
    WriteHeading(output, L"A", a);
    WriteHeading(output, L"B", b);
    output.Write(L"\n");
    for (const Difference& difference : differences) {
        Write(output, difference);
    }
    if (differences.empty()) {
        output.Write(L"no differences\n");
    } else {
        output.Write(L"\ndifferences: ", static_cast<std::int64_t>(differences.size()), L"\n");
    }
}

void WriteMember(JsonWriter& json, const wchar_t* name, const JsonValue* value) {
    if (value != nullptr) {
        json.Key(name);
        Write(json, *value);
    }
}

void WriteMember(JsonWriter& json, const wchar_t* name, const Side& side) {
    json.Key(name);
    if (side.File.empty()) {
        json.Null();
    } else {
        json.Text(std::wstring_view(side.File));
    }
}

void Write(JsonWriter& json, const Side& a, const Side& b,
           const std::vector<Difference>& differences) {
    json.BeginObject();
    json.Key(L"schema").Number(SchemaVersion);
    WriteMember(json, L"a", a);
    WriteMember(json, L"b", b);
    json.Key(L"same").Boolean(differences.empty());
    json.Key(L"differences").BeginArray();
    for (const Difference& difference : differences) {
        json.BeginObject();
        json.Key(L"path").Text(std::wstring_view(difference.Path));
        WriteMember(json, L"a", difference.A);
        WriteMember(json, L"b", difference.B);
        json.EndObject();
    }
    json.EndArray();
    json.EndObject();
}

} // namespace

ExitCode RunCompare(const Arguments& arguments, Streams& streams) {
    Side a = {arguments.Operands[0], {}};
    Side b;
    if (!ReadReport(a, streams)) {
        return ExitCode::NotCompared;
    }
    if (arguments.Operands.size() > 1) {
        b.File = arguments.Operands[1];
        if (!ReadReport(b, streams)) {
            return ExitCode::NotCompared;
        }
    } else {
        // Names that were left out there are left out here. What this program writes is JSON.
        std::wstring error;
        static_cast<void>(ReadJson(ReportDocument(IsRedacted(a)), b.Report, error));
    }
    if (IsRedacted(a) != IsRedacted(b)) {
        streams.Err.Write(
            L"kordiag compare: only one of the reports was made with --redact, so names "
            L"differ\n");
    }
    const std::vector<Difference> differences = Compare(a.Report, b.Report);
    Answer(arguments, streams, [&](auto& output) { Write(output, a, b, differences); });
    return differences.empty() ? ExitCode::Answered : ExitCode::No;
}
