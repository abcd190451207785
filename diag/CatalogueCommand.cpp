// kordiag catalogue: what the page could show, and why it does not show all of it.
#include "diag/Commands.h"
#include "diag/Reading.h"

namespace {

constexpr const wchar_t* ItemTypeNames[] = {L"program", L"folder", L"document", L"elevated",
                                            L"help"};

const wchar_t* TypeNameOf(const ControlCenterItem& item) {
    return ItemTypeNames[static_cast<std::size_t>(item.Type)];
}

void WriteItem(JsonWriter& json, const CatalogueAnswer::Item& answer) {
    const ControlCenterItem& item = *answer.Item;
    json.BeginObject();
    json.Key(L"id").Text(item.Id);
    json.Key(L"label").Text(item.Label);
    json.Key(L"type").Text(std::wstring_view(TypeNameOf(item)));
    json.Key(L"path").Text(item.Path);
    json.Key(L"arguments").Text(item.Arguments);
    json.Key(L"shown").Boolean(answer.IsShown);
    json.Key(L"why").Text(answer.Why);
    json.EndObject();
}

void WriteItem(Utf8Output& output, const CatalogueAnswer::Item& answer) {
    const ControlCenterItem& item = *answer.Item;
    output.Write(answer.IsShown ? L"  shown    " : L"  MISSING  ", Printable(item.Label), L" (",
                 Printable(item.Id), L")\n");
    output.Write(L"           ", TypeNameOf(item), L" ", Printable(item.Path));
    if (item.Arguments.Length() > 0) {
        output.Write(L", arguments \"", Printable(item.Arguments), L"\"");
    }
    output.Write(L"\n");
    if (answer.Why.Length() > 0) {
        output.Write(L"           why: ", Printable(answer.Why), L"\n");
    }
}

} // namespace

ExitCode RunCatalogue(const Arguments& arguments, Streams& streams) {
    const PageState state;
    const CatalogueAnswer catalogue(state);
    return Answer(arguments, streams, [&](auto& output) { WriteCatalogue(output, catalogue); });
}

void WriteCatalogue(JsonWriter& json, const CatalogueAnswer& catalogue) {
    json.BeginObject();
    json.Key(L"sections").BeginArray();
    for (const auto& [section, items] : catalogue.Sections) {
        json.BeginObject();
        json.Key(L"key").Text(section->Key);
        json.Key(L"title").Text(section->Title);
        json.Key(L"row").Number(section->Row);
        json.Key(L"column").Number(section->Column);
        json.Key(L"shown").Number(section->ShownItemCount);
        json.Key(L"items").BeginArray();
        for (const CatalogueAnswer::Item& item : items) {
            WriteItem(json, item);
        }
        json.EndArray();
        json.EndObject();
    }
    json.EndArray();
    json.Key(L"notBuilt").BeginArray();
    for (const auto& [note, causes, why] : catalogue.Omitted) {
        json.BeginObject();
        json.Key(L"section").Text(note->Title);
        json.Key(L"item").Text(note->Label);
        json.Key(L"why").Text(why);
        json.EndObject();
    }
    json.EndArray();
    json.EndObject();
}

void WriteCatalogue(Utf8Output& output, const CatalogueAnswer& catalogue) {
    for (const auto& [section, items] : catalogue.Sections) {
        output.Write(Printable(section->Title), L" (", Printable(section->Key), L"), row ",
                     section->Row, L", column ", section->Column, L": ", section->ShownItemCount,
                     L" of ", section->Count(), L" items shown\n");
        for (const CatalogueAnswer::Item& item : items) {
            WriteItem(output, item);
        }
        output.Write(L"\n");
    }
    if (!catalogue.Omitted.empty()) {
        output.Write(L"Not built:\n");
    }
    for (const auto& [note, causes, why] : catalogue.Omitted) {
        output.Write(L"  ", Printable(note->Title));
        if (note->Label.Length() > 0) {
            output.Write(L", item \"", Printable(note->Label), L"\"");
        }
        output.Write(L"\n           why: ", Printable(why), L"\n");
    }
}
