// What a section must hold, written down by hand beside the product's own tables.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "catalogue/Catalogue.h"
#include "catalogue/ControlCenterSection.h"
#include "catalogue/SectionBuilders.h"

namespace test {

enum { Program = 0, Folder = 1, Document = 2, HelpTopic = 4 };

struct ExpectedItem {
    const wchar_t* Label;
    const wchar_t* Path; // what stands behind the text that all of the section's paths begin with
    int Type = Program;
    const wchar_t* Arguments = L"";
};

// An item's id is the section's key and the item's position.
inline void ExpectSection(const ControlCenterSection& section, const std::wstring& key,
                          const wchar_t* title, const std::wstring& pathStart,
                          const std::vector<ExpectedItem>& items) {
    EXPECT_EQ(section.Key.Text(), key);
    EXPECT_STREQ(section.Title.Text(), title);
    ASSERT_EQ(section.Count(), static_cast<std::int64_t>(items.size()));
    for (std::int64_t i = 0; i < section.Count(); ++i) {
        const ExpectedItem& expected = items[static_cast<std::size_t>(i)];
        const ControlCenterItem& item = *section[i];
        SCOPED_TRACE(testing::PrintToString(std::wstring(expected.Label)));
        EXPECT_STREQ(item.Label.Text(), expected.Label);
        EXPECT_EQ(item.Path.Text(), pathStart + expected.Path);
        EXPECT_EQ(static_cast<int>(item.Type), expected.Type);
        EXPECT_STREQ(item.Arguments.Text(), expected.Arguments);
        EXPECT_EQ(item.Id.Text(), key + L"_" + std::to_wstring(i));
        EXPECT_STREQ(item.Prefix.Text(), L"");
        EXPECT_STREQ(item.Suffix.Text(), L"");
        EXPECT_EQ(item.Section, &section);
    }
}

// The same, of a catalogue that holds no other section.
inline void ExpectOneSection(const Catalogue& sections, const std::wstring& key,
                             const wchar_t* title, const std::wstring& pathStart,
                             const std::vector<ExpectedItem>& items) {
    ASSERT_EQ(sections.Count(), 1);
    ExpectSection(*sections[0], key, title, pathStart, items);
}

} // namespace test
