#include "catalogue/ControlCenterSection.h"

ControlCenterSection::ControlCenterSection(const CKORString& key, const CKORString& title)
    : Key(key), Title(title) {}

ControlCenterSection::~ControlCenterSection() {
    DeleteAll(*this);
}
