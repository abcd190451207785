// The tree that the parser builds. Parents own their children; a child knows its parent only while
// it is in the tree, so a node that somebody holds outlives the markup that it came from.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "wine/htmldocument/engine/Declarations.h"

namespace html {

class Node;
using NodePtr = std::shared_ptr<Node>;

struct Attribute {
    std::wstring name; // lower case
    std::wstring value;
};

class Node : public std::enable_shared_from_this<Node> {
public:
    static NodePtr MakeElement(std::wstring tag, std::vector<Attribute> attributes);
    static NodePtr MakeText(std::wstring text);
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;
    ~Node();

    bool IsText() const { return m_tag.empty(); }
    const std::wstring& Tag() const { return m_tag; } // lower case, empty for a text
    const std::wstring& Text() const { return m_text; }
    Node* Parent() const { return m_parent; }
    const std::vector<NodePtr>& Children() const { return m_children; }
    const std::vector<Attribute>& Attributes() const { return m_attributes; }

    // Null where the attribute is missing.
    const std::wstring* FindAttribute(std::wstring_view name) const;
    std::wstring AttributeOr(std::wstring_view name, std::wstring_view other) const;
    void SetAttribute(std::wstring_view name, std::wstring value);
    bool HasClass(std::wstring_view name) const;

    // The declarations of the style attribute, and of whoever set the style since.
    const Declarations& InlineStyle() const { return m_inlineStyle; }
    void SetInlineStyle(std::wstring_view property, std::wstring value);

    void AppendText(std::wstring_view text);
    void Append(NodePtr child);
    void InsertBefore(NodePtr child, const Node& successor);
    void ReplaceChildren(std::vector<NodePtr> children);

    // The first element of that id, in document order, this one included.
    Node* FindById(std::wstring_view id);
    // The first element of that tag, in document order, this one included.
    Node* FindByTag(std::wstring_view tag);
    bool Contains(const Node& other) const;

    std::wstring InnerText() const;
    std::wstring InnerHtml() const;
    std::wstring OuterHtml() const;

    // The one COM object that stands for this node, if it has one at present. The object clears it
    // when it goes.
    void* Wrapper() const { return m_wrapper; }
    void SetWrapper(void* wrapper) { m_wrapper = wrapper; }

private:
    Node() = default;
    void CollectText(std::wstring& text) const;
    void CollectHtml(std::wstring& text) const;

    std::wstring m_tag;
    std::wstring m_text;
    std::vector<Attribute> m_attributes;
    Declarations m_inlineStyle;
    std::vector<NodePtr> m_children;
    Node* m_parent = nullptr;
    void* m_wrapper = nullptr;
};

// Elements that never have content.
bool IsVoidTag(std::wstring_view tag);

} // namespace html
