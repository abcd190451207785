// Tags, comments, texts: the lexical half of the parser.
#include "wine/htmldocument/engine/Tokenizer.h"

#include "wine/htmldocument/engine/TextTools.h"

namespace html {
namespace {

bool IsRawTextTag(std::wstring_view tag) {
    return tag == L"style" || tag == L"script" || tag == L"title" || tag == L"textarea";
}

std::wstring WithoutNulls(std::wstring_view text) {
    std::wstring clean;
    clean.reserve(text.size());
    for (const wchar_t c : text) {
        if (c != L'\0') {
            clean += c;
        }
    }
    return clean;
}

} // namespace

void Tokenizer::SkipSpaces() {
    while (!AtEnd() && IsHtmlSpace(Peek())) {
        ++m_at;
    }
}

Token Tokenizer::Next() {
    Token token;
    if (!m_rawTextEnd.empty()) {
        ReadRawText(token);
        if (!token.text.empty()) {
            return token;
        }
    }
    while (!AtEnd()) {
        if (Peek() == L'<') {
            if (SkipComment()) {
                continue;
            }
            const size_t start = m_at;
            if (ReadTag(token)) {
                return token;
            }
            if (m_at != start) {
                break; // the input ends within a tag
            }
        }
        ReadText(token);
        return token;
    }
    return Token();
}

// "<!--", "<!", "<?" and "</" without a name all begin something that is not shown.
bool Tokenizer::SkipComment() {
    const wchar_t second = Peek(1);
    const bool bogusEnd = second == L'/' && m_at + 2 < m_markup.size() && !IsAsciiLetter(Peek(2));
    if (second != L'!' && second != L'?' && !bogusEnd) {
        return false;
    }
    const bool comment = m_markup.substr(m_at, 4) == L"<!--";
    const std::wstring_view end = comment ? L"-->" : L">";
    const size_t found = m_markup.find(end, m_at + 2);
    m_at = found == std::wstring_view::npos ? m_markup.size() : found + end.size();
    return true;
}

// False and nothing read where no tag begins; false and the input at its end where it ends within
// the tag.
bool Tokenizer::ReadTag(Token& token) {
    const bool isEnd = Peek(1) == L'/';
    const size_t nameAt = m_at + (isEnd ? 2 : 1);
    if (nameAt >= m_markup.size() || !IsAsciiLetter(m_markup[nameAt])) {
        return false;
    }
    m_at = nameAt;
    while (!AtEnd() && !IsHtmlSpace(Peek()) && Peek() != L'>' && Peek() != L'/') {
        token.text += ToLowerAscii(Peek());
        ++m_at;
    }
    token.kind = isEnd ? Token::Kind::EndTag : Token::Kind::StartTag;
    if (!ReadAttributes(token)) {
        return false;
    }
    if (!isEnd && IsRawTextTag(token.text)) {
        m_rawTextEnd = token.text;
    }
    return true;
}

bool Tokenizer::ReadAttributes(Token& token) {
    for (;;) {
        while (!AtEnd() && (IsHtmlSpace(Peek()) || Peek() == L'/')) {
            ++m_at;
        }
        if (AtEnd()) {
            return false;
        }
        if (Peek() == L'>') {
            ++m_at;
            return true;
        }
        Attribute attribute;
        // A leading '=' belongs to the name, so each round takes at least one character.
        do {
            attribute.name += ToLowerAscii(Peek());
            ++m_at;
        } while (!AtEnd() && !IsHtmlSpace(Peek()) && Peek() != L'=' && Peek() != L'>' &&
                 Peek() != L'/');
        SkipSpaces();
        if (Peek() == L'=') {
            ++m_at;
            SkipSpaces();
            attribute.value = ReadAttributeValue();
        }
        bool repeated = false;
        for (const Attribute& earlier : token.attributes) {
            repeated = repeated || earlier.name == attribute.name;
        }
        if (!repeated) {
            token.attributes.push_back(std::move(attribute));
        }
    }
}

std::wstring Tokenizer::ReadAttributeValue() {
    size_t end = m_at;
    const wchar_t quote = Peek();
    if (quote == L'"' || quote == L'\'') {
        const size_t start = ++m_at;
        end = m_markup.find(quote, start);
        if (end == std::wstring_view::npos) {
            end = m_markup.size();
        }
        m_at = end < m_markup.size() ? end + 1 : end;
        return DecodeReferences(m_markup.substr(start, end - start), true);
    }
    while (end < m_markup.size() && !IsHtmlSpace(m_markup[end]) && m_markup[end] != L'>') {
        ++end;
    }
    const std::wstring_view raw = m_markup.substr(m_at, end - m_at);
    m_at = end;
    return DecodeReferences(raw, true);
}

void Tokenizer::ReadText(Token& token) {
    // The first character is text even if it is a '<' that begins no tag.
    size_t end = m_markup.find(L'<', m_at + 1);
    if (end == std::wstring_view::npos) {
        end = m_markup.size();
    }
    token.kind = Token::Kind::Text;
    token.text = DecodeReferences(WithoutNulls(m_markup.substr(m_at, end - m_at)), false);
    m_at = end;
}

void Tokenizer::ReadRawText(Token& token) {
    const std::wstring endTag = L"</" + m_rawTextEnd;
    const bool decode = m_rawTextEnd == L"title" || m_rawTextEnd == L"textarea";
    m_rawTextEnd.clear();
    size_t end = m_at;
    while (end < m_markup.size() && !EqualNoCase(m_markup.substr(end, endTag.size()), endTag)) {
        ++end;
    }
    const std::wstring raw = WithoutNulls(m_markup.substr(m_at, end - m_at));
    token.kind = Token::Kind::Text;
    token.text = decode ? DecodeReferences(raw, false) : raw;
    m_at = end;
}

} // namespace html
