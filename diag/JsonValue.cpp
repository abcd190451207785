// Finds members, and writes a value again.
#include "diag/JsonValue.h"

#include <algorithm>

const JsonValue* JsonValue::Find(std::wstring_view name) const {
    const auto found = std::find(Names.begin(), Names.end(), name);
    return found != Names.end() ? &Values[static_cast<std::size_t>(found - Names.begin())]
                                : nullptr;
}

void Write(JsonWriter& json, const JsonValue& value) {
    switch (value.Type) {
    case JsonValue::Kind::Null:
        json.Null();
        break;
    case JsonValue::Kind::False:
    case JsonValue::Kind::True:
        json.Boolean(value.Type == JsonValue::Kind::True);
        break;
    case JsonValue::Kind::Number:
        json.Number(std::wstring_view(value.Text));
        break;
    case JsonValue::Kind::Text:
        json.Text(std::wstring_view(value.Text));
        break;
    case JsonValue::Kind::Array:
        json.BeginArray();
        for (const JsonValue& element : value.Values) {
            Write(json, element);
        }
        json.EndArray();
        break;
    case JsonValue::Kind::Object:
        json.BeginObject();
        for (std::size_t i = 0; i < value.Names.size(); ++i) {
            json.Key(std::wstring_view(value.Names[i]));
            Write(json, value.Values[i]);
        }
        json.EndObject();
        break;
    }
}
