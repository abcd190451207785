// kordiag catalogue: what the page could show, and why it does not show all of it.
#include "diag/Commands.h"
#include "diag/MissingPath.h"
#include "diag/QueryAnswers.h"
#include "diag/Reading.h"

namespace {

constexpr const wchar_t* ItemTypeNames[] = {L"program", L"folder", L"document", L"elevated",
                                            L"help"};

const wchar_t* TypeNameOf(const ControlCenterItem& item) {
    return ItemTypeNames[static_cast<std::size_t>(item.Type)];
}

void AppendReason(CKORString& reasons, const CKORString& reason) {
    if (reason.Length() > 0) {
        reasons += reasons.Length() > 0 ? L"; " : L"";
        reasons += reason;
    }
}

// What is wrong with a path that begins with the base.
CKORString WhyMissing(const CKORString& path, PathBase base, bool isFolder,
                      const Installation& installation) {
    if (base == PathBase::RuntimeManager && path.Length() == 0) {
        return L"no installed version has the file Tools/FlowForgeRuntimeManager.exe";
    }
    const BaseFault fault = FaultOf(path, base, installation);
    CKORString reasons;
    // The rest of a path without its beginning says nothing.
    if (!fault.IsEmpty) {
        AppendReason(reasons, WhatIsMissingOf(path, isFolder));
    }
    AppendReason(reasons, fault.Words);
    return reasons;
}

bool IsOnPage(const ControlCenterItem& item, const PageState& state) {
    return state.IsValid && item.IsShown();
}

// Empty for an item that is on the page.
CKORString WhyNotShown(const ControlCenterItem& item, const PageState& state) {
    CKORString reasons;
    if (!state.IsValid) {
        reasons = L"this is no valid installation: ";
        reasons += WhyNotValid();
    }
    if (!item.IsShown()) {
        AppendReason(reasons,
                     WhyMissing(item.Path, item.Base, item.Type == ItemFolder, state.Page));
    }
    return reasons;
}

void WriteItem(JsonWriter& json, const ControlCenterItem& item, const PageState& state) {
    json.BeginObject();
    json.Key(L"id").Text(item.Id);
    json.Key(L"label").Text(item.Label);
    json.Key(L"type").Text(std::wstring_view(TypeNameOf(item)));
    json.Key(L"path").Text(item.Path);
    json.Key(L"arguments").Text(item.Arguments);
    json.Key(L"shown").Boolean(IsOnPage(item, state));
    json.Key(L"why").Text(WhyNotShown(item, state));
    json.EndObject();
}

void WriteItem(Utf8Output& output, const ControlCenterItem& item, const PageState& state) {
    output.Write(IsOnPage(item, state) ? L"  shown    " : L"  MISSING  ", Printable(item.Label),
                 L"\n");
    output.Write(L"           ", TypeNameOf(item), L" ", Printable(item.Path));
    if (item.Arguments.Length() > 0) {
        output.Write(L", arguments \"", Printable(item.Arguments), L"\"");
    }
    output.Write(L"\n");
    const CKORString why = WhyNotShown(item, state);
    if (why.Length() > 0) {
        output.Write(L"           why: ", Printable(why), L"\n");
    }
}

CKORString WhyOmitted(const Omission& omission, const PageState& state) {
    CKORString detail;
    if (omission.Base != PathBase::None) {
        // Each path that a builder tests is a file's, but for those of items.
        detail =
            WhyMissing(omission.Tested, omission.Base, omission.Label.Length() > 0, state.Page);
    } else if (omission.Tested.Length() == 0) {
        detail = WhyNotDevelopment();
    }
    return CKORString(omission.Reason) + L": " + (detail.Length() > 0 ? detail : omission.Tested);
}

} // namespace

ExitCode RunCatalogue(const Arguments& arguments, Streams& streams) {
    const PageState state;
    if (arguments.Has(OptionJson)) {
        JsonWriter json(streams.Out);
        WriteCatalogue(json, state);
        streams.Out.Write(L"\n");
    } else {
        WriteCatalogue(streams.Out, state);
    }
    return ExitCode::Answered;
}

void WriteCatalogue(JsonWriter& json, const PageState& state) {
    json.BeginArray();
    for (const ControlCenterSection* const section : state.Page.Sections) {
        json.BeginObject();
        json.Key(L"key").Text(section->Key);
        json.Key(L"title").Text(section->Title);
        json.Key(L"row").Number(section->Row);
        json.Key(L"column").Number(section->Column);
        json.Key(L"shown").Number(section->ShownItemCount);
        json.Key(L"items").BeginArray();
        for (const ControlCenterItem* const item : *section) {
            WriteItem(json, *item, state);
        }
        json.EndArray();
        json.EndObject();
    }
    json.EndArray();
}

void WriteCatalogue(Utf8Output& output, const PageState& state) {
    for (const ControlCenterSection* const section : state.Page.Sections) {
        output.Write(Printable(section->Title), L" (", Printable(section->Key), L"), row ",
                     section->Row, L", column ", section->Column, L": ", section->ShownItemCount,
                     L" of ", section->Count(), L" items shown\n");
        for (const ControlCenterItem* const item : *section) {
            WriteItem(output, *item, state);
        }
        output.Write(L"\n");
    }
    if (state.Page.Sections.Omissions.Count() > 0) {
        output.Write(L"Not built:\n");
    }
    for (const Omission& omission : state.Page.Sections.Omissions) {
        output.Write(L"  ", Printable(omission.Title));
        if (omission.Label.Length() > 0) {
            output.Write(L", item \"", Printable(omission.Label), L"\"");
        }
        output.Write(L"\n           why: ", Printable(WhyOmitted(omission, state)), L"\n");
    }
}
