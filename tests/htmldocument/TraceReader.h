// Reads the document's trace file as any reader of JSON would: strictly.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace test {

// A JSON value. Asking for what is not there gives an empty value.
struct Json {
    enum class Kind { Null, Bool, Number, Text, Array, Object };
    Kind kind = Kind::Null;
    double number = 0; // 1 for true
    std::wstring text; // escapes resolved
    std::vector<Json> items;
    std::map<std::wstring, Json> members;

    const Json& operator[](const std::wstring& name) const;
    int Int() const { return static_cast<int>(number); }
};

// False for anything that is not one complete JSON value in valid UTF-8.
bool ParseJson(std::string_view bytes, Json& value);

// Where this test program's documents write their trace.
std::wstring TracePath();
// False while there is no file; a file that is no JSON fails the test that asks.
bool ReadTrace(Json& trace);
// The box of the element with that id, null if it is not shown.
const Json* FindBox(const Json& trace, const std::wstring& id);

} // namespace test
