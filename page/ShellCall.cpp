// From an item's type to the call that starts it.
#include "page/ShellCall.h"

#include <shellapi.h>
#include <shlobj.h>

#include "catalogue/ControlCenterItem.h"

namespace {

// From here on, the results of ShellExecute are no failures.
constexpr INT_PTR FirstSuccess = 33;

const wchar_t* ParametersOf(const ShellCall& call) {
    return call.Parameters ? call.Parameters->Text() : nullptr;
}

ShellAnswer Execute(const ShellCall& call) {
    const auto result = reinterpret_cast<INT_PTR>(ShellExecute(
        nullptr, call.Verb, call.File.Text(), ParametersOf(call), nullptr, SW_SHOWNORMAL));
    return {result >= FirstSuccess, result, GetLastError()};
}

// The handle of the started process stays open: docs/quirks.md.
ShellAnswer ExecuteExtended(const ShellCall& call) {
    SHELLEXECUTEINFO start = {};
    start.cbSize = sizeof(start);
    start.fMask = SEE_MASK_NOCLOSEPROCESS;
    start.lpVerb = call.Verb;
    start.lpFile = call.File.Text();
    start.lpParameters = ParametersOf(call);
    start.nShow = SW_SHOWNORMAL;
    const bool isStarted = ShellExecuteEx(&start) != FALSE;
    return {isStarted, reinterpret_cast<INT_PTR>(start.hInstApp), GetLastError()};
}

} // namespace

ShellAnswer ShellCall::Make() const {
    return IsExtended ? ExecuteExtended(*this) : Execute(*this);
}

ShellCall CallOfProgram(const CKORString& path, const CKORString& arguments, bool elevate) {
    const wchar_t* const verb = elevate && IsUserAnAdmin() != TRUE ? L"runas" : nullptr;
    return {true, verb, path, arguments};
}

std::optional<ShellCall> CallOfItem(const CKORString& path, const CKORString& arguments, int type) {
    switch (type) {
    case ItemProgram:
        return CallOfProgram(path, arguments, false);
    case ItemFolder:
    case ItemDocument:
        // Without the arguments: docs/quirks.md.
        return ShellCall{false, nullptr, path, std::nullopt};
    case ItemElevatedProgram:
        return CallOfProgram(path, arguments, true);
    case ItemHelpTopic:
        // By its bare name: docs/quirks.md.
        return ShellCall{false, nullptr, L"hh.exe", path + arguments};
    default:
        return std::nullopt;
    }
}
