// The markup that the tests show: a grid as the launcher composes it.
#pragma once

#include <sstream>
#include <string>

namespace test {

// sections cells, two to a row, each with that many items; an odd number leaves the last cell
// opened and never closed. Items are called S<section>_<item>.
inline std::wstring GridMarkup(int sections, int items) {
    std::wostringstream html;
    html << L"<table class=\"innertable\" width=\"100%\">\n";
    for (int s = 0; s < sections; ++s) {
        html << (s % 2 == 0 ? L"<tr>\n\n" : L"")
             << L"<td class =\"column\" width=\"50%\" valign=\"top\"><div id=Title " << s
             << L"Section><h2>Title " << s << L"</h2><ul>";
        for (int i = 0; i < items; ++i) {
            html << L"<li>before <SPAN class=item id=S" << s << L"_" << i
                 << L" style=color:#0000FF;text-decoration:underline>Item " << i << L" of section "
                 << s << L"</SPAN> after</li>";
        }
        html << L"</ul></div></td>" << (s % 2 == 1 ? L"</tr>" : L"");
    }
    if (sections % 2 == 1) {
        html << L"<td class =\"column\" width=\"50%\" valign=\"top\"></tr>";
    }
    html << L"</table>";
    return html.str();
}

} // namespace test
