// Questions to a finished layout.
#include "wine/htmldocument/engine/Layout.h"

#include <algorithm>

namespace html {

const Node* Layout::HitTest(double x, double y) const {
    for (const TextItem& item : texts) {
        if (!item.isBullet && item.area.Contains(x, y)) {
            return item.element;
        }
    }
    for (size_t i = boxes.size(); i-- > 0;) {
        if (boxes[i].area.Contains(x, y)) {
            return boxes[i].element;
        }
    }
    return nullptr;
}

bool Layout::AreaOf(const Node& element, Area& area) const {
    if (m_areas.empty()) {
        CollectAreas();
    }
    const auto found = m_areas.find(&element);
    if (found == m_areas.end()) {
        return false;
    }
    area = found->second;
    return true;
}

// In one walk: a page with thousands of links is asked for every one of them.
void Layout::CollectAreas() const {
    for (const BoxItem& box : boxes) {
        m_areas.emplace(box.element, box.area);
    }
    const auto boxed = m_areas;
    for (const TextItem& item : texts) {
        const Node* element = item.isBullet ? nullptr : item.element;
        for (; element != nullptr; element = element->Parent()) {
            if (boxed.count(element) == 0) {
                Area& area = m_areas.emplace(element, item.area).first->second;
                const double right = std::max(area.x + area.width, item.area.x + item.area.width);
                const double bottom =
                    std::max(area.y + area.height, item.area.y + item.area.height);
                area.x = std::min(area.x, item.area.x);
                area.y = std::min(area.y, item.area.y);
                area.width = right - area.x;
                area.height = bottom - area.y;
            }
        }
    }
}

} // namespace html
