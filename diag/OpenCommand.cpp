// kordiag open: starts an item as a click does, and says what the shell answered.
#include <windows.h>

#include <objbase.h>
#include <shellapi.h>

#include <algorithm>
#include <iterator>

#include "diag/CatalogueAnswer.h"
#include "diag/Commands.h"
#include "page/ShellCall.h"
#include "registry/StringUtilities.h"

namespace {

struct Reply {
    DWORD Error; // that the shell gave
    const wchar_t* Word;
    const wchar_t* Text;
};

constexpr Reply NotAsked = {ERROR_SUCCESS, L"not-asked", L"not asked"};
constexpr Reply Started = {ERROR_SUCCESS, L"started", L"started"};
constexpr Reply Failed = {ERROR_SUCCESS, L"failed", L"failed"};
constexpr Reply Refusals[] = {
    {ERROR_FILE_NOT_FOUND, L"file-missing", L"the file does not exist"},
    {ERROR_PATH_NOT_FOUND, L"file-missing", L"the file does not exist"},
    {ERROR_NO_ASSOCIATION, L"no-program-for-type", L"no program is registered for its type"},
    {ERROR_CANCELLED, L"refused-by-user", L"the user refused"},
};

struct Result {
    INT_PTR Number;
    DWORD Error;
};

// ShellExecute's own numbers; the others are errors of the system.
constexpr Result Results[] = {
    {0, ERROR_OUTOFMEMORY},
    {SE_ERR_SHARE, ERROR_SHARING_VIOLATION},
    {SE_ERR_ASSOCINCOMPLETE, ERROR_NO_ASSOCIATION},
    {SE_ERR_DDETIMEOUT, ERROR_DDE_FAIL},
    {SE_ERR_DDEFAIL, ERROR_DDE_FAIL},
    {SE_ERR_DDEBUSY, ERROR_DDE_FAIL},
    {SE_ERR_NOASSOC, ERROR_NO_ASSOCIATION},
    {SE_ERR_DLLNOTFOUND, ERROR_DLL_NOT_FOUND},
};

// A refusal of the user's is only in the thread's error: to ShellExecute, it is a denied access.
DWORD ErrorOf(const ShellAnswer& answer, bool isExtended) {
    if (answer.Error == ERROR_CANCELLED || (isExtended && answer.Error != ERROR_SUCCESS)) {
        return answer.Error;
    }
    const auto* const known =
        std::find_if(std::begin(Results), std::end(Results),
                     [&](const Result& row) { return row.Number == answer.Result; });
    return known != std::end(Results) ? known->Error : static_cast<DWORD>(answer.Result);
}

Reply ReplyOf(DWORD error) {
    const auto* const known = std::find_if(std::begin(Refusals), std::end(Refusals),
                                           [=](const Reply& row) { return row.Error == error; });
    return known != std::end(Refusals) ? *known : Reply{error, Failed.Word, Failed.Text};
}

// Makes the call as a program with windows does.
Reply Ask(const ShellCall& call) {
    const HRESULT started =
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE);
    // An error of before is none of the shell's.
    SetLastError(ERROR_SUCCESS);
    const ShellAnswer answer = call.Make();
    if (SUCCEEDED(started)) {
        CoUninitialize();
    }
    return answer.IsStarted ? Started : ReplyOf(ErrorOf(answer, call.IsExtended));
}

const wchar_t* NameOf(const ShellCall& call) {
    return call.IsExtended ? L"ShellExecuteEx" : L"ShellExecute";
}

void WriteOpen(JsonWriter& json, const ShellCall& call, const Reply& reply) {
    json.BeginObject();
    json.Key(L"schema").Number(SchemaVersion);
    json.Key(L"call").Text(std::wstring_view(NameOf(call)));
    json.Key(L"verb");
    call.Verb != nullptr ? json.Text(std::wstring_view(call.Verb)) : json.Null();
    json.Key(L"file").Text(call.File);
    json.Key(L"parameters");
    call.Parameters ? json.Text(*call.Parameters) : json.Null();
    json.Key(L"answer").Text(std::wstring_view(reply.Word));
    json.Key(L"error").Number(std::uint64_t{reply.Error});
    json.EndObject();
}

void WriteOpen(Utf8Output& output, const ShellCall& call, const Reply& reply) {
    output.Write(L"call:       ", NameOf(call), L"\nverb:       ",
                 call.Verb != nullptr ? call.Verb : L"(the default one)", L"\nfile:       ",
                 Printable(call.File), L"\nparameters: ",
                 call.Parameters ? L"\"" + Printable(*call.Parameters) + L"\"" : L"(none)",
                 L"\nshell:      ", reply.Text);
    if (reply.Error != ERROR_SUCCESS) {
        output.Write(L" (error ", std::int64_t{reply.Error}, L")");
    }
    output.Write(L"\n");
}

// Several items may have the id, of which one is shown.
const CatalogueAnswer::Item* FindAnswer(const CatalogueAnswer& catalogue, const CKORString& id) {
    const CatalogueAnswer::Item* found = nullptr;
    for (const auto& section : catalogue.Sections) {
        for (const CatalogueAnswer::Item& answer : section.Items) {
            if (kor::EqualIgnoringCase(answer.Item->Id.Text(), id.Text()) &&
                (found == nullptr || (answer.IsShown && !found->IsShown))) {
                found = &answer;
            }
        }
    }
    return found;
}

ExitCode Refuse(Streams& streams, const CKORString& why) {
    streams.Err.Write(L"kordiag open: ", Printable(why), L"\n");
    return ExitCode::No;
}

} // namespace

ExitCode RunOpen(const Arguments& arguments, Streams& streams) {
    const PageState state;
    const CatalogueAnswer catalogue(state);
    const CKORString id = arguments.Operand(0);
    const CatalogueAnswer::Item* const answer = FindAnswer(catalogue, id);
    if (answer == nullptr) {
        return Refuse(streams, L"there is no item " + id + L"; kordiag catalogue shows the ids");
    }
    if (!answer->IsShown) {
        return Refuse(streams, L"the item " + id + L" is not shown: " + answer->Why);
    }
    // The item that a click finds, and as much of it as a click asks for.
    const ControlCenterItem* const item = state.Page.Sections.FindItem(answer->Item->Id);
    const std::optional<ShellCall> call = item != nullptr && item->Path.Length() > 0
                                              ? CallOfItem(item->Path, item->Arguments, item->Type)
                                              : std::nullopt;
    if (!call) {
        return Refuse(streams, L"a click on the item " + id + L" starts nothing");
    }
    const Reply reply = arguments.Has(OptionDryRun) ? NotAsked : Ask(*call);
    Answer(arguments, streams, [&](auto& output) { WriteOpen(output, *call, reply); });
    return reply.Error == ERROR_SUCCESS ? ExitCode::Answered : ExitCode::No;
}
