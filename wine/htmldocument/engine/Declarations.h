// The "property: value" lists of style attributes and style sheets.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace html {

struct Declaration {
    std::wstring property; // lower case
    std::wstring value;
};
using Declarations = std::vector<Declaration>;

// What cannot be read is left out.
Declarations ParseDeclarations(std::wstring_view text);

} // namespace html
