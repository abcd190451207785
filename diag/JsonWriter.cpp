// Writes JSON with its commas and escapes.
#include "diag/JsonWriter.h"

namespace {

constexpr wchar_t FirstLowSurrogate = 0xDC00;

bool IsSurrogate(wchar_t c) {
    return c >= 0xD800 && c <= 0xDFFF;
}

bool IsPair(wchar_t high, wchar_t low) {
    return IsSurrogate(high) && high < FirstLowSurrogate && IsSurrogate(low) &&
           low >= FirstLowSurrogate;
}

void AppendCode(std::wstring& to, wchar_t c) {
    constexpr wchar_t Digits[] = L"0123456789abcdef";
    to += L"\\u";
    for (int shift = 12; shift >= 0; shift -= 4) {
        to += Digits[(static_cast<unsigned>(c) >> static_cast<unsigned>(shift)) & 0xFU];
    }
}

// The delete character and the ones behind it up to 0x9F would act on a terminal.
void AppendVisible(std::wstring& to, wchar_t c) {
    if (c < 0x20 || (c >= 0x7F && c < 0xA0) || IsSurrogate(c)) {
        AppendCode(to, c);
    } else {
        to += c;
    }
}

void AppendEscaped(std::wstring& to, wchar_t c) {
    switch (c) {
    case L'"':
        to += L"\\\"";
        break;
    case L'\\':
        to += L"\\\\";
        break;
    case L'\n':
        to += L"\\n";
        break;
    case L'\r':
        to += L"\\r";
        break;
    case L'\t':
        to += L"\\t";
        break;
    default:
        AppendVisible(to, c);
    }
}

// Appends each character through the function, surrogate pairs as they are.
template <typename Append>
void AppendText(std::wstring& to, std::wstring_view text, Append append) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (i + 1 < text.size() && IsPair(text[i], text[i + 1])) {
            to.append(text.substr(i, 2));
            ++i;
        } else {
            append(to, text[i]);
        }
    }
}

std::wstring_view ViewOf(const CKORString& text) {
    return {text.Text(), static_cast<std::size_t>(text.Length())};
}

} // namespace

std::wstring Quoted(std::wstring_view text) {
    std::wstring quoted(L"\"");
    AppendText(quoted, text, AppendEscaped);
    quoted += L'"';
    return quoted;
}

std::wstring Quoted(const CKORString& text) {
    return Quoted(ViewOf(text));
}

std::wstring Printable(const CKORString& text) {
    return PrintableText(ViewOf(text));
}

std::wstring PrintableText(std::wstring_view text) {
    std::wstring printable;
    AppendText(printable, text, AppendVisible);
    return printable;
}

JsonWriter& JsonWriter::Key(std::wstring_view name) {
    Separate();
    m_output.Write(Quoted(name), L":");
    m_needsComma = false;
    return *this;
}

void JsonWriter::Text(std::wstring_view text) {
    Value(m_redaction != nullptr ? Quoted(std::wstring_view(m_redaction->Apply(text)))
                                 : Quoted(text));
}

void JsonWriter::Text(const CKORString& text) {
    Text(ViewOf(text));
}

void JsonWriter::Separate() {
    if (m_needsComma) {
        m_output.Write(L",");
    }
}

void JsonWriter::Begin(const wchar_t* bracket) {
    Separate();
    m_output.Write(bracket);
    m_needsComma = false;
}

void JsonWriter::End(const wchar_t* bracket) {
    m_output.Write(bracket);
    m_needsComma = true;
}

void JsonWriter::Value(std::wstring_view text) {
    Separate();
    m_output.Write(text);
    m_needsComma = true;
}
