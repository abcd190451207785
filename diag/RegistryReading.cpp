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

void WriteValue(Utf8Output& output, const CRegistryKey& /*key*/, const CKORString& /*name*/,
                const CKORString& text) {
    output.Write(text, L"\n");
}

void WriteValue(JsonWriter& json, CRegistryKey& key, const CKORString& name,
                const CKORString& /*text*/) {
    json.BeginObject();
    json.Key(L"key").Text(key.GetFullName());
    WriteMember(json, key, name);
    json.EndObject();
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

bool List(JsonWriter& json, CRegistryKey& key) {
    json.BeginObject();
    json.Key(L"key").Text(key.GetFullName());
    json.Key(L"subkeys").BeginArray();
    bool isComplete = key.VisitSubKeyNames([&](const wchar_t* name) {
        json.Text(std::wstring_view(name));
        return json.IsOpen();
    });
    json.EndArray();
    json.Key(L"values").BeginArray();
    isComplete = key.VisitValueNames([&](const wchar_t* name) {
        json.BeginObject();
        WriteMember(json, key, name);
        json.EndObject();
        return json.IsOpen();
    }) && isComplete;
    json.EndArray();
    json.EndObject();
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
    return Answer(arguments, streams, [&](auto& output) { WriteValue(output, key, name, text); });
}

ExitCode RunRegistryList(const Arguments& arguments, Streams& streams) {
    SelectLayoutAndRule(arguments);
    CRegistryKey key;
    if (!OpenKey(arguments, streams, key)) {
        return ExitCode::No;
    }
    bool isComplete = false;
    Answer(arguments, streams, [&](auto& output) { isComplete = List(output, key); });
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
