// A JSON document that was read.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "diag/JsonWriter.h"

struct JsonValue {
    enum class Kind { Null, False, True, Number, Text, Array, Object };

    // The value of the member; null when there is none, or when this is no object.
    const JsonValue* Find(std::wstring_view name) const;

    Kind Type = Kind::Null;
    std::wstring Text;               // of a text; a number as it was written
    std::vector<std::wstring> Names; // of an object, one for each value
    std::vector<JsonValue> Values;   // of an object or an array
};

void Write(JsonWriter& json, const JsonValue& value);
