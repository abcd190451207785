// Questions to a finished layout.
#include "wine/htmldocument/Layout.h"

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
    for (const BoxItem& box : boxes) {
        if (box.element == &element) {
            area = box.area;
            return true;
        }
    }
    bool found = false;
    for (const TextItem& item : texts) {
        if (item.isBullet || !element.Contains(*item.element)) {
            continue;
        }
        if (!found) {
            area = item.area;
            found = true;
            continue;
        }
        const double right = std::max(area.x + area.width, item.area.x + item.area.width);
        const double bottom = std::max(area.y + area.height, item.area.y + item.area.height);
        area.x = std::min(area.x, item.area.x);
        area.y = std::min(area.y, item.area.y);
        area.width = right - area.x;
        area.height = bottom - area.y;
    }
    return found;
}

} // namespace html
