// What a section must hold, written down by hand beside the product's own tables.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "catalogue/ControlCenterSection.h"
#include "catalogue/SectionBuilders.h"

namespace test {

struct ExpectedItem {
    const wchar_t* Label;
    const wchar_t* Path;
    int Type;
    const wchar_t* Arguments;
    const wchar_t* Id;
};

inline void ExpectSection(const ControlCenterSection& section, const wchar_t* key,
                          const wchar_t* title, const std::vector<ExpectedItem>& items) {
    EXPECT_STREQ(section.Key.Text(), key);
    EXPECT_STREQ(section.Title.Text(), title);
    ASSERT_EQ(section.Count(), static_cast<std::int64_t>(items.size()));
    for (std::int64_t i = 0; i < section.Count(); ++i) {
        const ExpectedItem& expected = items[static_cast<std::size_t>(i)];
        const ControlCenterItem& item = *section[i];
        SCOPED_TRACE(testing::PrintToString(std::wstring(expected.Label)));
        EXPECT_STREQ(item.Label.Text(), expected.Label);
        EXPECT_STREQ(item.Path.Text(), expected.Path);
        EXPECT_EQ(static_cast<int>(item.Type), expected.Type);
        EXPECT_STREQ(item.Arguments.Text(), expected.Arguments);
        EXPECT_STREQ(item.Id.Text(), expected.Id);
        EXPECT_STREQ(item.Prefix.Text(), L"");
        EXPECT_STREQ(item.Suffix.Text(), L"");
        EXPECT_EQ(item.Section, &section);
    }
}

} // namespace test
