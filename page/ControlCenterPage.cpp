// Composes the page's markup and adds up its rows.
#include "page/ControlCenterPage.h"

#include <algorithm>

#include "page/InstallationQueries.h"

namespace {

constexpr wchar_t GridOpening[] = L"<table class=\"innertable\" width=\"100%\">\n";
constexpr wchar_t RowOpening[] = L"<tr>\n\n";
// Formatted with the column's width in percent; the rest is appended as it stands. The blank behind
// "class": docs/quirks.md.
constexpr wchar_t CellOpeningWidth[] = L"<td class =\"column\" width=\"%d";
constexpr wchar_t CellOpeningRest[] = L"%\" valign=\"top\">";
constexpr wchar_t CellClosing[] = L"</td>";
constexpr wchar_t RowClosing[] = L"</tr>";
constexpr wchar_t GridClosing[] = L"</table>";
constexpr wchar_t NotInstalledMessage[] = L"This KOR hasn't been installed by a valid install";

} // namespace

void ControlCenterPage::Start(const ScreenMetrics& metrics, CTable1D<std::int64_t>* rowHeights) {
    static_cast<PageSizes&>(*this) = ComputePageSizes(metrics);
    QueryInstallation();
    Refill(rowHeights);
}

void ControlCenterPage::Refill(CTable1D<std::int64_t>* rowHeights) {
    WindowHeight = BaseHeight;
    BuildSections();
    ComposePage(rowHeights);
}

void ControlCenterPage::QueryInstallation() {
    for (const AskedQuery& query : AskedQueries) {
        if (query.Text != nullptr) {
            this->*query.Text = query.AskText();
        }
    }
}

void ControlCenterPage::BuildSections() {
    Sections.Build(*this, IsDevelopmentInstallation());
    RowCount = Sections.PlaceOnGrid(ColumnCount);
}

void ControlCenterPage::ComposePage(CTable1D<std::int64_t>* rowHeights) {
    CTable1D<std::int64_t> heights;
    CTable1D<std::int64_t>& rows = rowHeights != nullptr ? *rowHeights : heights;
    rows.SetSize(0, false);
    IsValid = IsValidInstallation();
    if (!IsValid) {
        PageHtml = CKORString::Format(SectionMarkup, L"KOR", NotInstalledMessage, L"");
        return;
    }
    PageHtml = L"";
    if (ColumnCount > 1) {
        PageHtml += GridOpening;
    }
    // A text that is appended is searched for the end of what it is appended to; a string is not.
    // So a row is composed by itself, and the page, which may be long, gets strings only.
    const CKORString rowClosing(RowClosing);
    for (std::int64_t row = 0; row < RowCount; ++row) {
        CKORString html(RowOpening);
        rows.Add(0);
        for (std::int64_t column = 0; column < ColumnCount; ++column) {
            ComposeCell(row, column, html, rows[row]);
        }
        PageHtml += html;
        WindowHeight += rows[row];
        PageHtml += rowClosing;
    }
    // Also when no opening was written: docs/quirks.md.
    PageHtml += GridClosing;
}

void ControlCenterPage::ComposeCell(std::int64_t row, std::int64_t column, CKORString& html,
                                    std::int64_t& rowHeight) {
    html += CKORString::Format(CellOpeningWidth, static_cast<int>(100 / ColumnCount));
    html += CellOpeningRest;
    ControlCenterSection* const section = FindSection(row, column);
    if (section == nullptr) {
        // The cell stays open: docs/quirks.md.
        return;
    }
    html += section->ComposeSectionHtml();
    html += CellClosing;
    rowHeight = std::max(rowHeight, SectionBaseHeight + ItemHeight * section->ShownItemCount);
}

// Sections stand in the order of their places: those of the rows above are passed over.
ControlCenterSection* ControlCenterPage::FindSection(std::int64_t row, std::int64_t column) const {
    const auto found = std::find_if(
        Sections.begin() + std::min(row * ColumnCount, Sections.Count()), Sections.end(),
        [&](const ControlCenterSection* section) {
            return section->Row == row && (ColumnCount == 1 || section->Column == column);
        });
    return found != Sections.end() ? *found : nullptr;
}
