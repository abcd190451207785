// A string's text, count, length, capacity and end at once.
#pragma once

#include <gtest/gtest.h>

#include <cwchar>

#include "base/CKORString.h"
#include "tests/support/Printing.h"

namespace test {

inline constexpr wchar_t FortyCharacters[] = L"0123456789012345678901234567890123456789";

inline void ExpectString(const CKORString& text, const wchar_t* expected, std::int64_t capacity) {
    EXPECT_EQ(text, expected);
    EXPECT_EQ(text.Count(), static_cast<std::int64_t>(std::wcslen(expected)) + 1);
    EXPECT_EQ(text.Length(), static_cast<std::int64_t>(std::wcslen(expected)));
    EXPECT_EQ(text.Capacity(), capacity);
    EXPECT_EQ(text.Data()[text.Count() - 1], L'\0');
}

} // namespace test
