// Reads style blocks and finds the rules that apply to an element.
#include "wine/htmldocument/engine/StyleSheet.h"

#include <algorithm>

#include "wine/htmldocument/engine/TextTools.h"

namespace html {
namespace {

constexpr int IdWeight = 10000;
constexpr int ClassWeight = 100;
constexpr int TagWeight = 1;

void RemoveAll(std::wstring& text, std::wstring_view begin, std::wstring_view end) {
    for (size_t at = text.find(begin); at != std::wstring::npos; at = text.find(begin, at)) {
        const size_t found = text.find(end, at + begin.size());
        text.erase(at, found == std::wstring::npos ? found : found + end.size() - at);
    }
}

// Calls the function with each piece between the separators.
template <typename Function>
void ForEachPiece(std::wstring_view text, wchar_t separator, Function function) {
    for (;;) {
        const size_t end = text.find(separator);
        function(text.substr(0, end));
        if (end == std::wstring_view::npos) {
            return;
        }
        text.remove_prefix(end + 1);
    }
}

bool IsNameCharacter(wchar_t c) {
    return IsAsciiLetter(c) || IsAsciiDigit(c) || c == L'-' || c == L'_' || c >= 0x80;
}

} // namespace

Declarations ParseDeclarations(std::wstring_view text) {
    Declarations declarations;
    ForEachPiece(text, L';', [&](std::wstring_view piece) {
        const size_t colon = piece.find(L':');
        if (colon == std::wstring_view::npos) {
            return;
        }
        const std::wstring_view property = Trim(piece.substr(0, colon));
        const std::wstring_view value = Trim(piece.substr(colon + 1));
        if (!property.empty() && !value.empty()) {
            declarations.push_back({LowerAscii(property), std::wstring(value)});
        }
    });
    return declarations;
}

void StyleSheet::Add(std::wstring_view source) {
    std::wstring text(source);
    RemoveAll(text, L"/*", L"*/");
    // Old pages hide their style block in a comment.
    RemoveAll(text, L"<!--", L"");
    RemoveAll(text, L"-->", L"");
    std::wstring_view rest = text;
    for (;;) {
        const size_t open = rest.find(L'{');
        if (open == std::wstring_view::npos) {
            break;
        }
        size_t close = rest.find(L'}', open);
        if (close == std::wstring_view::npos) {
            close = rest.size();
        }
        const Declarations declarations =
            ParseDeclarations(rest.substr(open + 1, close - open - 1));
        ForEachPiece(rest.substr(0, open), L',', [&](std::wstring_view selector) {
            Rule rule;
            if (ParseSelector(selector, rule)) {
                rule.declarations = declarations;
                m_rules.push_back(std::move(rule));
            }
        });
        rest.remove_prefix(std::min(close + 1, rest.size()));
    }
    std::stable_sort(m_rules.begin(), m_rules.end(),
                     [](const Rule& a, const Rule& b) { return a.specificity < b.specificity; });
}

bool StyleSheet::ParseCompound(std::wstring_view text, Compound& compound) {
    bool first = true;
    while (!text.empty()) {
        const wchar_t kind = text.front();
        if (kind == L'*' && first) {
            text.remove_prefix(1);
            first = false;
            continue;
        }
        const bool marked = kind == L'#' || kind == L'.';
        if (!marked && !first) {
            return false;
        }
        const size_t start = marked ? 1 : 0;
        size_t end = start;
        while (end < text.size() && IsNameCharacter(text[end])) {
            ++end;
        }
        if (end == start) {
            return false;
        }
        const std::wstring_view name = text.substr(start, end - start);
        if (kind == L'#') {
            compound.id = name;
        } else if (kind == L'.') {
            compound.classes.emplace_back(name);
        } else {
            compound.tag = LowerAscii(name);
        }
        text.remove_prefix(end);
        first = false;
    }
    return !first;
}

bool StyleSheet::ParseSelector(std::wstring_view text, Rule& rule) {
    for (std::wstring_view word = TakeWord(text); !word.empty(); word = TakeWord(text)) {
        Compound compound;
        if (!ParseCompound(word, compound)) {
            return false;
        }
        rule.specificity += (compound.id.empty() ? 0 : IdWeight) +
                            (compound.tag.empty() ? 0 : TagWeight) +
                            ClassWeight * static_cast<int>(compound.classes.size());
        rule.path.push_back(std::move(compound));
    }
    return !rule.path.empty();
}

bool StyleSheet::Matches(const Compound& compound, const Node& element) {
    if (!compound.tag.empty() && compound.tag != element.Tag()) {
        return false;
    }
    if (!compound.id.empty() && !EqualNoCase(compound.id, element.AttributeOr(L"id", L""))) {
        return false;
    }
    return std::all_of(compound.classes.begin(), compound.classes.end(),
                       [&](const std::wstring& name) { return element.HasClass(name); });
}

bool StyleSheet::Matches(const Rule& rule, const Node& element) {
    if (!Matches(rule.path.back(), element)) {
        return false;
    }
    // The nearest ancestor that fits leaves the most for the rest, so no step is ever taken back.
    size_t left = rule.path.size() - 1;
    for (const Node* node = element.Parent(); node != nullptr && left > 0; node = node->Parent()) {
        if (Matches(rule.path[left - 1], *node)) {
            --left;
        }
    }
    return left == 0;
}

Declarations StyleSheet::MatchesOf(const Node& element) const {
    Declarations declarations;
    for (const Rule& rule : m_rules) {
        if (Matches(rule, element)) {
            declarations.insert(declarations.end(), rule.declarations.begin(),
                                rule.declarations.end());
        }
    }
    return declarations;
}

} // namespace html
