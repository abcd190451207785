// The markup of one section. Texts are inserted as they are, without escaping: intended.
#include "app/page/PageMarkup.h"
#include "catalogue/ControlCenterSection.h"

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
        // The count stays as it was: a section that just lost its last item keeps its height.
        return CKORString();
    }
    ShownItemCount = shown;
    // The id is the title with its blanks: intended.
    return CKORString::Format(SectionMarkup, Title.Text(), Title.Text(), list.Text());
}
