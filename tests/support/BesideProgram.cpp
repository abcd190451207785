// Asks where the running program is.
#include "tests/support/BesideProgram.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>

namespace test {

std::wstring BesideProgram(const std::wstring& name) {
    std::wstring program(32768, L'\0');
    program.resize(GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size())));
    const std::filesystem::path file = std::filesystem::path(program).replace_filename(name);
    EXPECT_TRUE(std::filesystem::exists(file)) << testing::PrintToString(file.wstring());
    return file.wstring();
}

} // namespace test
