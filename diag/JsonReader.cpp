// One function for each kind of value.
#include "diag/JsonReader.h"

#include <algorithm>
#include <set>

namespace {

constexpr wchar_t FirstPrintable = 0x20;

class Reader {
public:
    explicit Reader(std::wstring_view text) : m_text(text) {}

    bool ReadDocument(JsonValue& document) {
        if (!ReadValue(document, 0)) {
            return false;
        }
        SkipBlanks();
        return IsAtEnd() || Fail(L"something stands behind the document");
    }

    const std::wstring& Error() const { return m_error; }

private:
    bool IsAtEnd() const { return m_at == m_text.size(); }

    // A null at the end; one within the text stands nowhere where it may.
    wchar_t Next() const { return IsAtEnd() ? L'\0' : m_text[m_at]; }

    bool Take(wchar_t c) {
        const bool isNext = !IsAtEnd() && m_text[m_at] == c;
        m_at += isNext ? 1 : 0;
        return isNext;
    }

    void SkipBlanks() {
        m_at = std::min(m_text.find_first_not_of(L" \t\r\n", m_at), m_text.size());
    }

    bool Fail(const wchar_t* why) {
        const std::wstring_view before = m_text.substr(0, m_at);
        const auto lines = std::count(before.begin(), before.end(), L'\n');
        const std::size_t inLine = m_at - (before.rfind(L'\n') + 1);
        m_error = L"line " + std::to_wstring(lines + 1) + L", character " +
                  std::to_wstring(inLine + 1) + L": " + (IsAtEnd() ? L"it ends too early" : why);
        return false;
    }

    bool ReadValue(JsonValue& value, int depth) {
        SkipBlanks();
        switch (Next()) {
        case L'{':
            return depth < MostJsonDepth ? ReadObject(value, depth) : FailAtDepth();
        case L'[':
            return depth < MostJsonDepth ? ReadArray(value, depth) : FailAtDepth();
        case L'"':
            value.Type = JsonValue::Kind::Text;
            return ReadText(value.Text);
        case L'n':
            return ReadWord(value, L"null", JsonValue::Kind::Null);
        case L'f':
            return ReadWord(value, L"false", JsonValue::Kind::False);
        case L't':
            return ReadWord(value, L"true", JsonValue::Kind::True);
        default:
            return ReadNumber(value);
        }
    }

    bool FailAtDepth() { return Fail(L"too many values in each other"); }

    bool ReadObject(JsonValue& value, int depth) {
        value.Type = JsonValue::Kind::Object;
        std::set<std::wstring> names;
        ++m_at; // the bracket
        SkipBlanks();
        if (Take(L'}')) {
            return true;
        }
        do {
            SkipBlanks();
            if (Next() != L'"') {
                return Fail(L"a name is missing");
            }
            value.Names.emplace_back();
            if (!ReadText(value.Names.back())) {
                return false;
            }
            if (!names.insert(value.Names.back()).second) {
                return Fail(L"the object has this name twice");
            }
            SkipBlanks();
            if (!Take(L':')) {
                return Fail(L"a colon is missing");
            }
            if (!ReadElement(value, depth)) {
                return false;
            }
        } while (Take(L','));
        return Take(L'}') || Fail(L"a comma or } is missing");
    }

    bool ReadArray(JsonValue& value, int depth) {
        value.Type = JsonValue::Kind::Array;
        ++m_at; // the bracket
        SkipBlanks();
        if (Take(L']')) {
            return true;
        }
        do {
            if (!ReadElement(value, depth)) {
                return false;
            }
        } while (Take(L','));
        return Take(L']') || Fail(L"a comma or ] is missing");
    }

    // With the blanks behind it.
    bool ReadElement(JsonValue& container, int depth) {
        container.Values.emplace_back();
        const bool isRead = ReadValue(container.Values.back(), depth + 1);
        SkipBlanks();
        return isRead;
    }

    bool ReadWord(JsonValue& value, std::wstring_view word, JsonValue::Kind type) {
        for (const wchar_t c : word) {
            if (!Take(c)) {
                return Fail(L"no value of JSON");
            }
        }
        value.Type = type;
        return true;
    }

    bool SkipDigits() {
        const std::size_t start = m_at;
        m_at = std::min(m_text.find_first_not_of(L"0123456789", m_at), m_text.size());
        return m_at > start;
    }

    bool ReadNumber(JsonValue& value) {
        const std::size_t start = m_at;
        Take(L'-');
        if (!Take(L'0') && !SkipDigits()) {
            return Fail(L"no value of JSON");
        }
        if (Take(L'.') && !SkipDigits()) {
            return Fail(L"digits are missing");
        }
        if (Take(L'e') || Take(L'E')) {
            if (!Take(L'+')) {
                Take(L'-');
            }
            if (!SkipDigits()) {
                return Fail(L"digits are missing");
            }
        }
        value.Type = JsonValue::Kind::Number;
        value.Text = m_text.substr(start, m_at - start);
        return true;
    }

    bool ReadText(std::wstring& text) {
        ++m_at; // the quote
        while (!Take(L'"')) {
            if (Take(L'\\')) {
                if (!ReadEscape(text)) {
                    return false;
                }
            } else if (Next() < FirstPrintable) {
                return Fail(L"a control character in a text");
            } else {
                text += m_text[m_at++];
            }
        }
        return true;
    }

    bool ReadEscape(std::wstring& text) {
        constexpr std::wstring_view Letters = L"\"\\/bfnrt";
        constexpr wchar_t Meanings[] = L"\"\\/\b\f\n\r\t";
        if (Take(L'u')) {
            return ReadCode(text);
        }
        const std::size_t letter = Letters.find(Next());
        if (letter == std::wstring_view::npos) {
            return Fail(L"no such character behind a backslash");
        }
        text += Meanings[letter];
        ++m_at;
        return true;
    }

    bool ReadCode(std::wstring& text) {
        constexpr std::wstring_view Digits = L"0123456789abcdefABCDEF";
        std::size_t code = 0;
        for (int i = 0; i < 4; ++i) {
            const std::size_t digit = Digits.find(Next());
            if (digit == std::wstring_view::npos) {
                return Fail(L"\\u is not followed by four hexadecimal digits");
            }
            code = code * 16 + (digit < 16 ? digit : digit - 6);
            ++m_at;
        }
        text += static_cast<wchar_t>(code);
        return true;
    }

    std::wstring_view m_text;
    std::size_t m_at = 0;
    std::wstring m_error;
};

} // namespace

bool ReadJson(std::wstring_view text, JsonValue& document, std::wstring& error) {
    Reader reader(text);
    document = {};
    if (!reader.ReadDocument(document)) {
        error = reader.Error();
        return false;
    }
    return true;
}
