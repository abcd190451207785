// Files that a test program brings along.
#pragma once

#include <string>

namespace test {

// The path of the file in the folder of the test program; kor_beside lays it there.
std::wstring BesideProgram(const std::wstring& name);

} // namespace test
