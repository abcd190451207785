// Which events a move or a click of the mouse means.
#include "wine/htmldocument/com/MouseTracker.h"

#include <utility>

#include <mshtmdid.h>

#include "wine/htmldocument/com/Document.h"

namespace html {
namespace {

constexpr auto MouseOver = static_cast<DISPID>(DISPID_HTMLDOCUMENTEVENTS2_ONMOUSEOVER);
constexpr auto MouseOut = static_cast<DISPID>(DISPID_HTMLDOCUMENTEVENTS2_ONMOUSEOUT);
constexpr auto Click = static_cast<DISPID>(DISPID_HTMLDOCUMENTEVENTS2_ONCLICK);

} // namespace

void MouseTracker::Move(const NodePtr& element, POINT client) {
    if (element == m_hovered) {
        return;
    }
    const NodePtr left = std::exchange(m_hovered, element);
    m_document.Fire({MouseOut, L"mouseout", left, left, element, client, 0});
    m_document.Fire({MouseOver, L"mouseover", element, left, element, client, 0});
}

void MouseTracker::Unpress(const NodePtr& element, POINT client) {
    const NodePtr pressed = std::exchange(m_pressed, nullptr);
    if (element != nullptr && pressed == element) {
        m_document.Fire({Click, L"click", element, nullptr, nullptr, client, 0});
        m_document.FollowLink(*element);
    }
}

} // namespace html
