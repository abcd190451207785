// Cuts markup into tags and texts. Any sequence of characters is markup: what looks like a tag and
// is none is text, and what is never closed ends with the input.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "wine/htmldocument/engine/Node.h"

namespace html {

struct Token {
    enum class Kind { Text, StartTag, EndTag, End };
    Kind kind = Kind::End;
    std::wstring text; // the text, or the tag's name in lower case
    std::vector<Attribute> attributes;
};

class Tokenizer {
public:
    explicit Tokenizer(std::wstring_view markup) : m_markup(markup) {}
    // Adjacent texts may come in pieces. The content of style, script and title comes as one text.
    Token Next();

private:
    bool AtEnd() const { return m_at >= m_markup.size(); }
    wchar_t Peek(size_t ahead = 0) const {
        return m_at + ahead < m_markup.size() ? m_markup[m_at + ahead] : L'\0';
    }
    void SkipSpaces();
    bool SkipComment();
    bool ReadTag(Token& token);
    bool ReadAttributes(Token& token);
    std::wstring ReadAttributeValue();
    void ReadText(Token& token);
    void ReadRawText(Token& token);

    std::wstring_view m_markup;
    size_t m_at = 0;
    std::wstring m_rawTextEnd; // the tag whose end tag ends a raw text; empty outside
};

// The text with its character references replaced by the characters.
std::wstring DecodeReferences(std::wstring_view text, bool inAttribute);

} // namespace html
