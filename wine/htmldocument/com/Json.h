// Text in the form that JSON wants.
#pragma once

#include <string>
#include <string_view>

namespace html {

// In quotes and UTF-8. Half of a surrogate pair is escaped, so the result is always valid.
std::string JsonText(std::wstring_view text);

} // namespace html
