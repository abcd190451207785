// The tree-building half of the parser: which element is closed by which tag.
#include "wine/htmldocument/engine/HtmlParser.h"

#include <algorithm>
#include <initializer_list>

#include "wine/htmldocument/engine/TextTools.h"
#include "wine/htmldocument/engine/Tokenizer.h"

namespace html {
namespace {

// Deeper elements become siblings, so that no page can exhaust the stack of whoever walks the tree.
constexpr size_t MaxDepth = 200;

using Tags = std::initializer_list<std::wstring_view>;

bool IsOneOf(std::wstring_view tag, Tags tags) {
    return std::find(tags.begin(), tags.end(), tag) != tags.end();
}

bool IsTableStructure(std::wstring_view tag) {
    return IsOneOf(tag, {L"table", L"tbody", L"thead", L"tfoot", L"tr"});
}

bool IsHeading(std::wstring_view tag) {
    return tag.size() == 2 && tag[0] == L'h' && tag[1] >= L'1' && tag[1] <= L'6';
}

bool IsBlock(std::wstring_view tag) {
    return IsHeading(tag) || IsTableStructure(tag) ||
           IsOneOf(tag, {L"address", L"blockquote", L"body", L"center", L"dd", L"div", L"dl", L"dt",
                         L"form", L"hr", L"html", L"li", L"ol", L"p", L"pre", L"td", L"th", L"ul"});
}

bool IsHeadContent(std::wstring_view tag) {
    return IsOneOf(tag, {L"base", L"link", L"meta", L"script", L"style", L"title"});
}

bool IsOnlySpaces(std::wstring_view text) {
    return Trim(text).empty();
}

class TreeBuilder {
public:
    explicit TreeBuilder(NodePtr root) { m_open.push_back(std::move(root)); }
    void Build(std::wstring_view markup);

protected:
    virtual bool HandleStructure(const Token& token);
    virtual void BeforeContent(const Token&) {}
    Node& Current() const { return *m_open.back(); }
    void Push(NodePtr node);
    void CloseDownTo(size_t depth) { m_open.resize(std::max<size_t>(depth, 1)); }
    ~TreeBuilder() = default;

private:
    void AddText(std::wstring text);
    void AddElement(Token&& token);
    void CloseElement(const std::wstring& tag);
    void Insert(const NodePtr& node);
    bool PrepareTablePart(const std::wstring& tag);
    // The depth of the innermost open element of one of these tags, 0 if one of the barriers (or
    // the root) comes first.
    size_t FindOpen(Tags tags, Tags barriers) const;
    void CloseInnermost(Tags tags, Tags barriers);

    std::vector<NodePtr> m_open;
};

void TreeBuilder::Build(std::wstring_view markup) {
    Tokenizer tokenizer(markup);
    for (Token token = tokenizer.Next(); token.kind != Token::Kind::End; token = tokenizer.Next()) {
        if (token.kind != Token::Kind::Text && HandleStructure(token)) {
            continue;
        }
        BeforeContent(token);
        if (token.kind == Token::Kind::Text) {
            AddText(std::move(token.text));
        } else if (token.kind == Token::Kind::StartTag) {
            AddElement(std::move(token));
        } else {
            CloseElement(token.text);
        }
    }
}

// Inside a fragment a document's own tags mean nothing.
bool TreeBuilder::HandleStructure(const Token& token) {
    return IsOneOf(token.text, {L"html", L"head", L"body"});
}

size_t TreeBuilder::FindOpen(Tags tags, Tags barriers) const {
    for (size_t depth = m_open.size(); depth-- > 1;) {
        if (IsOneOf(m_open[depth]->Tag(), tags)) {
            return depth;
        }
        if (IsOneOf(m_open[depth]->Tag(), barriers)) {
            return 0;
        }
    }
    return 0;
}

void TreeBuilder::CloseInnermost(Tags tags, Tags barriers) {
    if (const size_t depth = FindOpen(tags, barriers)) {
        CloseDownTo(depth);
    }
}

// Content between the rows of a table is shown before the table.
void TreeBuilder::Insert(const NodePtr& node) {
    if (IsTableStructure(Current().Tag()) && !IsTableStructure(node->Tag()) &&
        !IsOneOf(node->Tag(), {L"td", L"th"})) {
        const size_t table = FindOpen({L"table"}, {L"td", L"th"});
        if (table != 0 && m_open[table]->Parent() == m_open[table - 1].get()) {
            m_open[table - 1]->InsertBefore(node, *m_open[table]);
            return;
        }
    }
    Current().Append(node);
}

void TreeBuilder::Push(NodePtr node) {
    if (m_open.size() < MaxDepth) {
        m_open.push_back(std::move(node));
    }
}

void TreeBuilder::AddText(std::wstring text) {
    const std::wstring& around = Current().Tag();
    if ((IsTableStructure(around) || around == L"head") && IsOnlySpaces(text)) {
        return;
    }
    const std::vector<NodePtr>& siblings = Current().Children();
    if (!siblings.empty() && siblings.back()->IsText()) {
        siblings.back()->AppendText(text);
    } else {
        Insert(Node::MakeText(std::move(text)));
    }
}

// Opens what a row or a cell needs around it. False for a row or a cell outside of any table.
bool TreeBuilder::PrepareTablePart(const std::wstring& tag) {
    const size_t table = FindOpen({L"table"}, {});
    if (table == 0) {
        return false;
    }
    const bool isCell = IsOneOf(tag, {L"td", L"th"});
    const bool isRow = tag == L"tr";
    const size_t row = isCell ? FindOpen({L"tr"}, {L"table"}) : 0;
    const size_t body = isCell || isRow ? FindOpen({L"tbody", L"thead", L"tfoot"}, {L"table"}) : 0;
    CloseDownTo((row != 0 ? row : body != 0 ? body : table) + 1);
    if ((isCell || isRow) && Current().Tag() == L"table") {
        const NodePtr newBody = Node::MakeElement(L"tbody", {});
        Insert(newBody);
        Push(newBody);
    }
    if (isCell && Current().Tag() != L"tr") {
        const NodePtr newRow = Node::MakeElement(L"tr", {});
        Insert(newRow);
        Push(newRow);
    }
    return true;
}

void TreeBuilder::AddElement(Token&& token) {
    const std::wstring tag = token.text;
    if (IsOneOf(tag, {L"td", L"th", L"tr", L"tbody", L"thead", L"tfoot"})) {
        if (!PrepareTablePart(tag)) {
            return;
        }
    } else if (tag == L"table" && IsTableStructure(Current().Tag())) {
        CloseInnermost({L"table"}, {L"td", L"th"});
    } else if (tag == L"li") {
        CloseInnermost({L"li"}, {L"ul", L"ol", L"td", L"th", L"table"});
    } else if (IsBlock(tag)) {
        CloseInnermost({L"p"}, {L"td", L"th", L"table", L"li", L"div"});
        if (IsHeading(tag) && IsHeading(Current().Tag())) {
            CloseDownTo(m_open.size() - 1);
        }
    }
    const NodePtr node = Node::MakeElement(tag, std::move(token.attributes));
    Insert(node);
    if (!IsVoidTag(tag)) {
        Push(node);
    }
}

void TreeBuilder::CloseElement(const std::wstring& tag) {
    if (tag == L"table") {
        CloseInnermost({L"table"}, {});
    } else if (IsOneOf(tag, {L"td", L"th", L"tr", L"tbody", L"thead", L"tfoot"})) {
        CloseInnermost({tag}, {L"table"});
    } else if (tag == L"li") {
        CloseInnermost({L"li"}, {L"ul", L"ol", L"td", L"th", L"table"});
    } else if (IsHeading(tag)) {
        CloseInnermost({L"h1", L"h2", L"h3", L"h4", L"h5", L"h6"}, {L"td", L"th", L"table"});
    } else if (IsBlock(tag)) {
        CloseInnermost({tag}, {L"td", L"th", L"table"});
    } else {
        // An inline element does not close the block that was opened in it.
        for (size_t depth = m_open.size(); depth-- > 1;) {
            if (m_open[depth]->Tag() == tag) {
                CloseDownTo(depth);
                return;
            }
            if (IsBlock(m_open[depth]->Tag())) {
                return;
            }
        }
    }
}

// A whole document has its head and body whether they are written or not.
class DocumentBuilder final : public TreeBuilder {
public:
    explicit DocumentBuilder(const NodePtr& html)
        : TreeBuilder(html), m_html(html), m_head(Node::MakeElement(L"head", {})),
          m_body(Node::MakeElement(L"body", {})) {
        html->Append(m_head);
        html->Append(m_body);
        Push(m_head);
    }

protected:
    bool HandleStructure(const Token& token) override {
        const NodePtr known = token.text == L"html"   ? m_html
                              : token.text == L"head" ? m_head
                              : token.text == L"body" ? m_body
                                                      : nullptr;
        if (known == nullptr) {
            return false;
        }
        if (token.kind == Token::Kind::StartTag) {
            for (const Attribute& attribute : token.attributes) {
                if (known->FindAttribute(attribute.name) == nullptr) {
                    known->SetAttribute(attribute.name, attribute.value);
                }
            }
        }
        if (known == m_body || (known == m_head && token.kind == Token::Kind::EndTag)) {
            EnterBody();
        }
        return true;
    }
    void BeforeContent(const Token& token) override {
        if (&Current() != m_head.get()) {
            return;
        }
        const bool staysInHead =
            token.kind == Token::Kind::Text ? IsOnlySpaces(token.text) : IsHeadContent(token.text);
        if (!staysInHead) {
            EnterBody();
        }
    }

private:
    void EnterBody() {
        if (!m_inBody) {
            m_inBody = true;
            CloseDownTo(1);
            Push(m_body);
        }
    }

    NodePtr m_html;
    NodePtr m_head;
    NodePtr m_body;
    bool m_inBody = false;
};

class FragmentBuilder final : public TreeBuilder {
public:
    using TreeBuilder::TreeBuilder;
};

} // namespace

NodePtr ParseDocument(std::wstring_view markup) {
    NodePtr html = Node::MakeElement(L"html", {});
    DocumentBuilder(html).Build(markup);
    return html;
}

std::vector<NodePtr> ParseFragment(std::wstring_view markup) {
    const NodePtr root = Node::MakeElement(L"div", {});
    FragmentBuilder(root).Build(markup);
    std::vector<NodePtr> nodes = root->Children();
    root->ReplaceChildren({});
    return nodes;
}

} // namespace html
