// The tree's own operations: attributes, structure, search, and the way back to text.
#include "wine/htmldocument/engine/Node.h"

#include <algorithm>

#include "wine/htmldocument/engine/TextTools.h"

namespace html {
namespace {

constexpr std::wstring_view VoidTags[] = {L"area", L"base",  L"br",   L"col",  L"embed", L"hr",
                                          L"img",  L"input", L"link", L"meta", L"param", L"wbr"};

void AppendEscaped(std::wstring& to, std::wstring_view text, bool inAttribute) {
    for (const wchar_t c : text) {
        if (c == L'&') {
            to += L"&amp;";
        } else if (c == L'\u00A0') {
            to += L"&nbsp;";
        } else if (inAttribute && c == L'"') {
            to += L"&quot;";
        } else if (!inAttribute && c == L'<') {
            to += L"&lt;";
        } else if (!inAttribute && c == L'>') {
            to += L"&gt;";
        } else {
            to += c;
        }
    }
}

bool IsRawText(std::wstring_view tag) {
    return tag == L"style" || tag == L"script";
}

} // namespace

bool IsVoidTag(std::wstring_view tag) {
    return std::find(std::begin(VoidTags), std::end(VoidTags), tag) != std::end(VoidTags);
}

NodePtr Node::MakeElement(std::wstring tag, std::vector<Attribute> attributes) {
    NodePtr node(new Node);
    node->m_tag = std::move(tag);
    for (Attribute& attribute : attributes) {
        node->SetAttribute(attribute.name, std::move(attribute.value));
    }
    return node;
}

NodePtr Node::MakeText(std::wstring text) {
    NodePtr node(new Node);
    node->m_text = std::move(text);
    return node;
}

Node::~Node() {
    for (const NodePtr& child : m_children) {
        child->m_parent = nullptr;
    }
}

const std::wstring* Node::FindAttribute(std::wstring_view name) const {
    for (const Attribute& attribute : m_attributes) {
        if (attribute.name == name) {
            return &attribute.value;
        }
    }
    return nullptr;
}

std::wstring Node::AttributeOr(std::wstring_view name, std::wstring_view other) const {
    const std::wstring* value = FindAttribute(name);
    return value != nullptr ? *value : std::wstring(other);
}

void Node::SetAttribute(std::wstring_view name, std::wstring value) {
    if (name == L"style") {
        m_inlineStyle = ParseDeclarations(value);
    }
    const auto found = std::find_if(m_attributes.begin(), m_attributes.end(),
                                    [name](const Attribute& a) { return a.name == name; });
    if (found != m_attributes.end()) {
        found->value = std::move(value);
    } else {
        m_attributes.push_back({std::wstring(name), std::move(value)});
    }
}

bool Node::HasClass(std::wstring_view name) const {
    const std::wstring* classes = FindAttribute(L"class");
    if (classes == nullptr) {
        return false;
    }
    std::wstring_view rest = *classes;
    for (std::wstring_view word = TakeWord(rest); !word.empty(); word = TakeWord(rest)) {
        if (EqualNoCase(word, name)) {
            return true;
        }
    }
    return false;
}

void Node::SetInlineStyle(std::wstring_view property, std::wstring value) {
    m_inlineStyle.erase(
        std::remove_if(m_inlineStyle.begin(), m_inlineStyle.end(),
                       [property](const Declaration& d) { return d.property == property; }),
        m_inlineStyle.end());
    m_inlineStyle.push_back({std::wstring(property), std::move(value)});
}

void Node::AppendText(std::wstring_view text) {
    m_text += text;
}

void Node::Append(NodePtr child) {
    child->m_parent = this;
    m_children.push_back(std::move(child));
}

void Node::InsertBefore(NodePtr child, const Node& successor) {
    const auto at = std::find_if(m_children.begin(), m_children.end(),
                                 [&](const NodePtr& c) { return c.get() == &successor; });
    child->m_parent = this;
    m_children.insert(at, std::move(child));
}

void Node::ReplaceChildren(std::vector<NodePtr> children) {
    for (const NodePtr& child : m_children) {
        child->m_parent = nullptr;
    }
    m_children = std::move(children);
    for (const NodePtr& child : m_children) {
        child->m_parent = this;
    }
}

Node* Node::FindById(std::wstring_view id) {
    const std::wstring* own = FindAttribute(L"id");
    if (own != nullptr && *own == id) {
        return this;
    }
    for (const NodePtr& child : m_children) {
        if (Node* found = child->FindById(id)) {
            return found;
        }
    }
    return nullptr;
}

Node* Node::FindByTag(std::wstring_view tag) {
    if (m_tag == tag) {
        return this;
    }
    for (const NodePtr& child : m_children) {
        if (Node* found = child->FindByTag(tag)) {
            return found;
        }
    }
    return nullptr;
}

bool Node::Contains(const Node& other) const {
    for (const Node* node = &other; node != nullptr; node = node->m_parent) {
        if (node == this) {
            return true;
        }
    }
    return false;
}

// As it is shown: runs of spaces are one, and none stands at either end of a line.
std::wstring Node::InnerText() const {
    std::wstring text;
    CollectText(text);
    while (!text.empty() && text.back() == L' ') {
        text.pop_back();
    }
    return text;
}

std::wstring Node::InnerHtml() const {
    std::wstring text;
    for (const NodePtr& child : m_children) {
        child->CollectHtml(text);
    }
    return text;
}

std::wstring Node::OuterHtml() const {
    std::wstring text;
    CollectHtml(text);
    return text;
}

void Node::CollectText(std::wstring& text) const {
    if (m_tag == L"br") {
        text += L"\r\n";
    }
    for (const wchar_t c : m_text) {
        const bool space = IsHtmlSpace(c);
        if (!space || (!text.empty() && text.back() != L' ' && text.back() != L'\n')) {
            text += space ? L' ' : c;
        }
    }
    for (const NodePtr& child : m_children) {
        child->CollectText(text);
    }
}

void Node::CollectHtml(std::wstring& text) const {
    if (IsText()) {
        if (m_parent != nullptr && IsRawText(m_parent->m_tag)) {
            text += m_text;
        } else {
            AppendEscaped(text, m_text, false);
        }
        return;
    }
    text += L'<' + m_tag;
    for (const Attribute& attribute : m_attributes) {
        if (attribute.name != L"style") {
            text += L' ' + attribute.name + L"=\"";
            AppendEscaped(text, attribute.value, true);
            text += L'"';
        }
    }
    if (!m_inlineStyle.empty()) {
        text += L" style=\"";
        for (const Declaration& declaration : m_inlineStyle) {
            AppendEscaped(text, declaration.property + L": " + declaration.value + L"; ", true);
        }
        text.back() = L'"';
    }
    text += L'>';
    if (!IsVoidTag(m_tag)) {
        for (const NodePtr& child : m_children) {
            child->CollectHtml(text);
        }
        text += L"</" + m_tag + L'>';
    }
}

} // namespace html
