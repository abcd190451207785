// Makes an item with its id.
#include "catalogue/ControlCenterItem.h"

#include <algorithm>
#include <cwchar>

#include "catalogue/ControlCenterSection.h"
#include "env/PathTests.h"

std::int64_t LongestLabelLength = 0;

ControlCenterItem::ControlCenterItem(const ControlCenterSection* section, const CKORString& label,
                                     const CKORString& prefix, const CKORString& suffix,
                                     const CKORString& path, ControlCenterItemType type,
                                     const CKORString& arguments)
    : Section(section) {
    Path = path;
    Label = label;
    Prefix = prefix;
    Suffix = suffix;
    Arguments = arguments;
    Type = type;
    LongestLabelLength = std::max(LongestLabelLength, Label.Length());
    Id = CKORString::Format(L"%s_%d", section->Key.Text(), static_cast<int>(section->Count()));
    // Catalogue::FindItem compares with the unchanged key: docs/quirks.md.
    std::replace(Id.begin(), Id.end(), L' ', L'-');
}

bool ControlCenterItem::IsShown() const {
    return kor::PathExists(Path.Text());
}
