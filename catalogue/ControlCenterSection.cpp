// Makes a section's markup of its items.
#include "catalogue/ControlCenterSection.h"

namespace {

// Formatted with prefix, class, id, label and suffix.
constexpr wchar_t ItemMarkup[] =
    L"<li>%s <SPAN class=%s id=%s style=color:#0000FF;text-decoration:underline>%s</SPAN> %s</li>";

} // namespace

ControlCenterSection::ControlCenterSection(const CKORString& key, const CKORString& title)
    : Key(key), Title(title) {}

ControlCenterSection::~ControlCenterSection() {
    DeleteAll(*this);
}

// Inserts texts as they are, without escaping: docs/quirks.md.
CKORString ControlCenterSection::ComposeSectionHtml() {
    CKORString list;
    std::int64_t shown = 0;
    for (ControlCenterItem* const item : *this) {
        item->WasShown = item->IsShown();
        if (item->WasShown) {
            ++shown;
            list += CKORString::Format(ItemMarkup, item->Prefix.Text(), ItemClass, item->Id.Text(),
                                       item->Label.Text(), item->Suffix.Text());
        }
    }
    if (shown == 0) {
        // The count stays as it was: docs/quirks.md.
        return CKORString();
    }
    ShownItemCount = shown;
    // The id is the title with its blanks: docs/quirks.md.
    return CKORString::Format(SectionMarkup, Title.Text(), Title.Text(), list.Text());
}
