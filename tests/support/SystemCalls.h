// The registry and file-system calls that a piece of the page's work makes.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace test {

using Calls = std::vector<std::string>;

// Each call as a line that names its key, value or path. Keys may only be opened below the local
// machine and for reading; the attempt to create one is recorded and refused.
Calls CallsOf(const std::function<void()>& work);

// The ASCII text of a name.
std::string Narrow(const wchar_t* text);

} // namespace test
