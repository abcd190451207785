// The rules of a page's style blocks: selectors of tags, classes and ids, one inside the other.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "wine/htmldocument/engine/Declarations.h"
#include "wine/htmldocument/engine/Node.h"

namespace html {

class StyleSheet {
public:
    // Adds the text's rules after those that are there. Rules with selectors of other kinds are
    // left out.
    void Add(std::wstring_view text);

    // What the sheet says about the element, the weakest declaration first.
    Declarations MatchesOf(const Node& element) const;

private:
    struct Compound {
        std::wstring tag; // empty: any
        std::wstring id;
        std::vector<std::wstring> classes;
    };
    struct Rule {
        std::vector<Compound> path; // the innermost element last
        int specificity = 0;
        Declarations declarations;
    };
    static bool ParseCompound(std::wstring_view text, Compound& compound);
    static bool ParseSelector(std::wstring_view text, Rule& rule);
    static bool Matches(const Compound& compound, const Node& element);
    static bool Matches(const Rule& rule, const Node& element);

    std::vector<Rule> m_rules; // the weakest first, otherwise in the order of the page
};

} // namespace html
