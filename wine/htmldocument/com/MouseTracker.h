// Turns the mouse's messages into the document's events: over and out when the element under it
// changes, click when it goes down and up over the same one.
#pragma once

#include <windows.h>

#include "wine/htmldocument/engine/Node.h"

namespace html {

class Document;

class MouseTracker {
public:
    explicit MouseTracker(Document& document) : m_document(document) {}

    // element: what is under the mouse, null outside.
    void Move(const NodePtr& element, POINT client);
    void Press(const NodePtr& element) { m_pressed = element; }
    void Unpress(const NodePtr& element, POINT client);
    const NodePtr& Hovered() const { return m_hovered; }

private:
    Document& m_document;
    NodePtr m_hovered;
    NodePtr m_pressed;
};

} // namespace html
