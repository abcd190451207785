// One section of the page: a heading and its list of links.
#pragma once

#include "base/CKORString.h"
#include "base/CTable1D.h"
#include "catalogue/ControlCenterItem.h"

// Formatted with the id part, the heading and the list.
inline constexpr wchar_t SectionMarkup[] = L"<div id=%sSection><h2>%s</h2><ul>%s</ul></div>";
// The class of the page's elements that are items.
inline constexpr wchar_t ItemClass[] = L"item";

// The table itself is the list of items, in the order of the page; the section owns them.
class ControlCenterSection : public CTable1D<ControlCenterItem*> {
public:
    ControlCenterSection(const CKORString& key, const CKORString& title);
    ~ControlCenterSection() override;

    // The section's markup; sets ShownItemCount. An empty text when no item exists.
    CKORString ComposeSectionHtml();

    CKORString Key; // first part of its items' ids
    CKORString Title;
    std::int64_t ShownItemCount = 0;
    std::int64_t Column = -1;
    std::int64_t Row = 0;
};
