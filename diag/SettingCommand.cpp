// kordiag setting.
#include "diag/Commands.h"
#include "diag/Reading.h"
#include "env/FolderSettings.h"

namespace {

// The source as the two forms name it.
std::wstring NameOf(const SettingStep& step) {
    switch (step.Source) {
    case SettingSource::DebugUser:
        return L"debug-user";
    case SettingSource::DebugMachine:
        return L"debug-machine";
    default:
        return std::wstring(L"environment ") + step.Name.Text();
    }
}

const wchar_t* OutcomeOf(const SettingStep& step) {
    if (!step.IsFound) {
        return L": not set";
    }
    return step.IsAnswer ? L": " : L": not an existing folder: ";
}

} // namespace

ExitCode RunSetting(const Arguments& arguments, Streams& streams) {
    bool isFound = false;
    Answer(arguments, streams,
           [&](auto& output) { isFound = WriteSetting(output, arguments.Operand(0)); });
    return isFound ? ExitCode::Answered : ExitCode::No;
}

bool WriteSetting(JsonWriter& json, const CKORString& name) {
    CKORString value;
    CTable1D<SettingStep> steps;
    const bool isFound = QueryEnvironmentSetting(name.Text(), value, &steps);
    json.BeginObject();
    json.Key(L"name").Text(name);
    json.Key(L"found").Boolean(isFound);
    json.Key(L"value").Text(value);
    // The search ends with the source that had the answer.
    json.Key(L"source").Text(isFound ? NameOf(steps[steps.Count() - 1]) : std::wstring());
    json.EndObject();
    return isFound;
}

bool WriteSetting(Utf8Output& output, const CKORString& name) {
    CKORString value;
    CTable1D<SettingStep> steps;
    const bool isFound = QueryEnvironmentSetting(name.Text(), value, &steps);
    output.Write(Printable(name), isFound ? L" = " : L" is not set", Printable(value), L"\n");
    for (const SettingStep& step : steps) {
        output.Write(L"  ", Printable(NameOf(step).c_str()));
        if (step.Source != SettingSource::Environment) {
            output.Write(L" ", step.Name);
        }
        output.Write(OutcomeOf(step), Printable(step.Value), L"\n");
    }
    return isFound;
}
