// The markup that the tests show: a grid as the launcher composes it.
#pragma once

#include <string>

namespace test {

// sections cells, two to a row, each with that many items; an odd number leaves the last cell
// opened and never closed. Items are called S<section>_<item>.
inline std::wstring GridMarkup(int sections, int items) {
    std::wstring html = L"<table class=\"innertable\" width=\"100%\">\n";
    for (int s = 0; s < sections; ++s) {
        const std::wstring number = std::to_wstring(s);
        html += s % 2 == 0 ? L"<tr>\n\n" : L"";
        html += L"<td class =\"column\" width=\"50%\" valign=\"top\"><div id=Title " + number +
                L"Section><h2>Title " + number + L"</h2><ul>";
        for (int i = 0; i < items; ++i) {
            html += L"<li>before <SPAN class=item id=S" + number + L"_" + std::to_wstring(i) +
                    L" style=color:#0000FF;text-decoration:underline>Item " + std::to_wstring(i) +
                    L" of section " + number + L"</SPAN> after</li>";
        }
        html += L"</ul></div></td>";
        html += s % 2 == 1 ? L"</tr>" : L"";
    }
    if (sections % 2 == 1) {
        html += L"<td class =\"column\" width=\"50%\" valign=\"top\"></tr>";
    }
    return html + L"</table>";
}

} // namespace test
