// The words for the types of values.
#include "diag/ValueTypes.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace {

// By their numbers.
constexpr const wchar_t* TypeNames[] = {L"unknown", L"dword",  L"string", L"binary",
                                        L"qword",   L"expand", L"multi"};

} // namespace

const wchar_t* TypeName(RegValueType type) {
    return TypeNames[static_cast<std::size_t>(type)];
}

RegValueType TypeNamed(std::wstring_view word) {
    const auto* const found = std::find(std::begin(TypeNames), std::end(TypeNames), word);
    return found != std::end(TypeNames) ? static_cast<RegValueType>(found - TypeNames)
                                        : RegValueType::Unknown;
}
