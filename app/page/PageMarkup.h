// The pieces of HTML of which the page is composed.
#pragma once

inline constexpr wchar_t GridOpening[] = L"<table class=\"innertable\" width=\"100%\">\n";
inline constexpr wchar_t RowOpening[] = L"<tr>\n\n";
// Formatted with the column's width in percent; the rest is appended as it stands.
inline constexpr wchar_t CellOpeningWidth[] = L"<td class =\"column\" width=\"%d";
inline constexpr wchar_t CellOpeningRest[] = L"%\" valign=\"top\">";
inline constexpr wchar_t CellClosing[] = L"</td>";
inline constexpr wchar_t RowClosing[] = L"</tr>";
inline constexpr wchar_t GridClosing[] = L"</table>";
// Formatted with the id part, the heading and the list.
inline constexpr wchar_t SectionMarkup[] = L"<div id=%sSection><h2>%s</h2><ul>%s</ul></div>";
// Formatted with prefix, class, id, label and suffix.
inline constexpr wchar_t ItemMarkup[] =
    L"<li>%s <SPAN class=%s id=%s style=color:#0000FF;text-decoration:underline>%s</SPAN> %s</li>";
inline constexpr wchar_t ItemClass[] = L"item";
inline constexpr wchar_t NotInstalledMessage[] =
    L"This KOR hasn't been installed by a valid install";
