// kordiag registry get, list, type, name.
#include "diag/RegistryAccess.h"
#include "diag/ValueTypes.h"

namespace {

RegValueType TypeOf(const CRegistryKey& key, const CKORString& name) {
    RegValueType type = RegValueType::Unknown;
    key.GetValueType(name, type);
    return type;
}

bool HasValue(const Arguments& arguments, Streams& streams, const CRegistryKey& key) {
    if (key.ValueExists(arguments.Operand(1))) {
        return true;
    }
    Complain(streams, CKORString(L"the value \"") + arguments.Operand(1) + L"\" of " +
                          key.GetFullName() + L" does not exist");
    return false;
}

void ComplainOfType(const Arguments& arguments, Streams& streams) {
    Complain(streams, CKORString(L"the library cannot read the type or the size of the value \"") +
                          arguments.Operand(1) + L"\"");
}

void WriteMember(JsonWriter& json, CRegistryKey& key, const CKORString& name) {
    const RegValueType type = TypeOf(key, name);
    json.Key(L"name").Text(name);
    json.Key(L"type").Text(std::wstring_view(TypeName(type)));
    json.Key(L"data");
    WriteData(json, key, name, type);
}

// Values are read while the names are walked, so that nothing is collected, and the walk ends when
// nobody reads on.
bool List(Utf8Output& output, CRegistryKey& key) {
    output.Write(Printable(key.GetFullName()), L"\n");
    return key.VisitSubKeyNames([&](const wchar_t* name) {
        output.Write(L"  [", Printable(name), L"]\n");
        return output.IsOpen();
    }) && key.VisitValueNames([&](const wchar_t* name) {
        const RegValueType type = TypeOf(key, name);
        output.Write(L"  \"", Printable(name), L"\" ", TypeName(type));
        if (CKORString text; ReadData(key, name, type, text)) {
            output.Write(L" \"", Printable(text), L"\"");
        }
        output.Write(L"\n");
        return output.IsOpen();
    });
}

bool ListAsJson(Utf8Output& output, CRegistryKey& key) {
    JsonWriter json(output);
    json.BeginObject();
    json.Key(L"key").Text(key.GetFullName());
    json.Key(L"subkeys").BeginArray();
    bool isComplete = key.VisitSubKeyNames([&](const wchar_t* name) {
        json.Text(std::wstring_view(name));
        return output.IsOpen();
    });
    json.EndArray();
    json.Key(L"values").BeginArray();
    isComplete = key.VisitValueNames([&](const wchar_t* name) {
        json.BeginObject();
        WriteMember(json, key, name);
        json.EndObject();
        return output.IsOpen();
    }) && isComplete;
    json.EndArray();
    json.EndObject();
    output.Write(L"\n");
    return isComplete;
}

} // namespace

ExitCode RunRegistryGet(const Arguments& arguments, Streams& streams) {
    SelectLayoutAndRule(arguments);
    CRegistryKey key;
    if (!OpenKey(arguments, streams, key) || !HasValue(arguments, streams, key)) {
        return ExitCode::No;
    }
    const CKORString name = arguments.Operand(1);
    CKORString text;
    if (!ReadData(key, name, TypeOf(key, name), text)) {
        ComplainOfType(arguments, streams);
        return ExitCode::No;
    }
    if (!arguments.Has(OptionJson)) {
        streams.Out.Write(text, L"\n");
        return ExitCode::Answered;
    }
    JsonWriter json(streams.Out);
    json.BeginObject();
    json.Key(L"key").Text(key.GetFullName());
    WriteMember(json, key, name);
    json.EndObject();
    streams.Out.Write(L"\n");
    return ExitCode::Answered;
}

ExitCode RunRegistryList(const Arguments& arguments, Streams& streams) {
    SelectLayoutAndRule(arguments);
    CRegistryKey key;
    if (!OpenKey(arguments, streams, key)) {
        return ExitCode::No;
    }
    const bool isComplete =
        arguments.Has(OptionJson) ? ListAsJson(streams.Out, key) : List(streams.Out, key);
    if (!isComplete) {
        Complain(streams, L"the list is incomplete: the system ended it");
    }
    return isComplete ? ExitCode::Answered : ExitCode::No;
}

ExitCode RunRegistryType(const Arguments& arguments, Streams& streams) {
    SelectLayoutAndRule(arguments);
    CRegistryKey key;
    if (!OpenKey(arguments, streams, key) || !HasValue(arguments, streams, key)) {
        return ExitCode::No;
    }
    RegValueType type = RegValueType::Unknown;
    if (!key.GetValueType(arguments.Operand(1), type)) {
        ComplainOfType(arguments, streams);
        return ExitCode::No;
    }
    streams.Out.Write(TypeName(type), L"\n");
    return ExitCode::Answered;
}

ExitCode RunRegistryName(const Arguments& arguments, Streams& streams) {
    SelectLayoutAndRule(arguments);
    CRegistryKey key;
    if (!OpenKey(arguments, streams, key)) {
        return ExitCode::No;
    }
    streams.Out.Write(key.GetFullName(), L"\n");
    return ExitCode::Answered;
}
