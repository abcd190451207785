// Writes commands as somebody types them.
#include "diag/Cause.h"

#include <iterator>

static_assert(std::size(CodeWords) == static_cast<std::size_t>(Code::PageNotLoadable) + 1);

namespace {

// In quotes if need be, which some programs mind around their options, with backslashes doubled
// where a quote follows.
void AppendArgument(std::wstring& line, const std::wstring& argument) {
    if (!argument.empty() && argument.find_first_of(L" \t\"") == std::wstring::npos) {
        line += argument;
        return;
    }
    line += L'"';
    std::size_t backslashes = 0;
    for (const wchar_t c : argument) {
        if (c == L'"') {
            line.append(backslashes + 1, L'\\');
        }
        backslashes = c == L'\\' ? backslashes + 1 : 0;
        line += c;
    }
    line.append(backslashes, L'\\');
    line += L'"';
}

} // namespace

std::wstring CommandLineOf(const std::vector<std::wstring>& words) {
    std::wstring line;
    for (const std::wstring& word : words) {
        if (!line.empty()) {
            line += L' ';
        }
        AppendArgument(line, word);
    }
    return line;
}
