// Tables: columns by what their content needs and what their cells ask for, rows as tall as their
// tallest cell.
#include <algorithm>
#include <cmath>

#include "wine/htmldocument/engine/LayoutEngine.h"

namespace html {

LayoutEngine::Rows LayoutEngine::RowsOf(const Node& table) {
    Rows rows;
    for (const NodePtr& group : table.Children()) {
        if (group->IsText() || StyleOf(*group).display != Display::RowGroup) {
            continue;
        }
        for (const NodePtr& row : group->Children()) {
            if (row->IsText() || StyleOf(*row).display != Display::Row) {
                continue;
            }
            rows.emplace_back();
            for (const NodePtr& cell : row->Children()) {
                if (!cell->IsText() && StyleOf(*cell).display == Display::Cell) {
                    rows.back().push_back(cell.get());
                }
            }
        }
    }
    return rows;
}

std::vector<LayoutEngine::Column> LayoutEngine::ColumnsOf(const Rows& rows) {
    std::vector<Column> columns;
    for (const std::vector<const Node*>& row : rows) {
        columns.resize(std::max(columns.size(), row.size()));
        for (size_t i = 0; i < row.size(); ++i) {
            Column& column = columns[i];
            const Style& style = StyleOf(*row[i]);
            Widths widths = WidthsOf(*row[i]);
            if (style.width.kind == Width::Kind::Pixels) {
                widths.maximum = std::max(widths.minimum, style.width.value);
            } else if (style.width.kind == Width::Kind::Percent) {
                column.percent = std::max(column.percent, style.width.value);
            }
            column.widths.minimum = std::max(column.widths.minimum, widths.minimum);
            column.widths.maximum = std::max(column.widths.maximum, widths.maximum);
        }
    }
    return columns;
}

double LayoutEngine::TableWidth(const Node& table, const std::vector<Column>& columns,
                                double available) {
    const Style& style = StyleOf(table);
    const double frame = style.border.left + style.border.right +
                         style.cellSpacing * static_cast<double>(columns.size() + 1);
    double minimum = frame;
    double maximum = frame;
    for (const Column& column : columns) {
        minimum += column.widths.minimum;
        maximum += column.widths.maximum;
    }
    double width = std::min(maximum, available);
    if (style.width.kind == Width::Kind::Percent) {
        width = available * style.width.value / 100;
    } else if (style.width.kind == Width::Kind::Pixels) {
        width = style.width.value;
    }
    return std::round(std::max(width, minimum));
}

// Percentages first, the rest to the columns without one, nobody below what its words need.
void LayoutEngine::ShareWidth(std::vector<Column>& columns, double width) {
    double flexible = 0;
    double percents = 0;
    for (const Column& column : columns) {
        flexible += column.percent > 0 ? 0 : std::max(1.0, column.widths.maximum);
        percents += column.percent;
    }
    const double whole = flexible > 0 ? std::max(100.0, percents) : percents;
    const double left = width * std::max(0.0, 1 - percents / std::max(whole, 1.0));
    double excess = -width;
    for (Column& column : columns) {
        column.width = column.percent > 0 ? width * column.percent / whole
                                          : left * std::max(1.0, column.widths.maximum) / flexible;
        column.width = std::max(column.width, column.widths.minimum);
        excess += column.width;
    }
    // Who has more than it needs gives up its part of what is too much.
    double spare = 0;
    for (const Column& column : columns) {
        spare += column.width - column.widths.minimum;
    }
    if (excess > 0 && spare > 0) {
        const double part = std::min(1.0, excess / spare);
        for (Column& column : columns) {
            column.width -= part * (column.width - column.widths.minimum);
        }
    }
    // Whole pixels, without losing any on the way.
    double exact = 0;
    double taken = 0;
    for (Column& column : columns) {
        exact += column.width;
        column.width = std::round(exact - taken);
        taken += column.width;
    }
}

void LayoutEngine::LayOutTable(const Node& table, double x, double available, Flow& flow) {
    Settle(flow);
    const Style& style = StyleOf(table);
    const Rows rows = RowsOf(table);
    std::vector<Column> columns = ColumnsOf(rows);
    const double width = TableWidth(table, columns, available);
    const double spacings = style.cellSpacing * static_cast<double>(columns.size() + 1);
    ShareWidth(columns, std::max(0.0, width - style.border.left - style.border.right - spacings));

    const size_t index = AddBox(table, style, {x, flow.y, width, 0});
    double y = flow.y + style.border.top;
    for (const std::vector<const Node*>& row : rows) {
        y += style.cellSpacing;
        y += LayOutRow(row, columns, x + style.border.left, y, style.cellSpacing);
    }
    y += (rows.empty() ? 0 : style.cellSpacing) + style.border.bottom;
    m_layout.boxes[index].area.height = y - flow.y;
    flow.y = y;
}

// The height of the row.
double LayoutEngine::LayOutRow(const std::vector<const Node*>& row,
                               const std::vector<Column>& columns, double x, double y,
                               double spacing) {
    struct Placed {
        size_t box;
        size_t text;
        double height;
    };
    std::vector<Placed> cells;
    double rowHeight = 0;
    for (size_t i = 0; i < row.size(); ++i) {
        x += spacing;
        const Style& style = StyleOf(*row[i]);
        const double before = style.border.left + style.padding.left;
        const double after = style.border.right + style.padding.right;
        const size_t text = m_layout.texts.size();
        const size_t box = AddBox(*row[i], style, {x, y, columns[i].width, 0});
        Flow flow;
        flow.y = y + style.border.top + style.padding.top;
        flow.atCellStart = true;
        LayOutChildren(*row[i], x + before, std::max(0.0, columns[i].width - before - after), flow);
        Settle(flow);
        const double height = flow.y + style.padding.bottom + style.border.bottom - y;
        cells.push_back({box, text, height});
        rowHeight = std::max(rowHeight, std::ceil(height));
        x += columns[i].width;
    }
    // The last cell first: what follows a cell must not move with it.
    for (size_t i = row.size(); i-- > 0;) {
        const VerticalAlign align = StyleOf(*row[i]).verticalAlign;
        const double spare = rowHeight - cells[i].height;
        const double shift = align == VerticalAlign::Middle   ? std::floor(spare / 2)
                             : align == VerticalAlign::Bottom ? spare
                                                              : 0;
        m_layout.boxes[cells[i].box].area.height = rowHeight;
        const size_t endBox = i + 1 < row.size() ? cells[i + 1].box : m_layout.boxes.size();
        const size_t endText = i + 1 < row.size() ? cells[i + 1].text : m_layout.texts.size();
        Shift(cells[i].box + 1, endBox, cells[i].text, endText, shift);
    }
    return rowHeight;
}

LayoutEngine::Widths LayoutEngine::WidthsOf(const InlineItems& items) {
    Widths widths;
    double line = 0;
    double chunk = 0;
    for (const InlineItem& item : items) {
        const bool breaks = item.kind == InlineItem::Kind::Break;
        line = breaks ? 0 : line + item.width;
        chunk = breaks || item.kind == InlineItem::Kind::Space ? 0 : chunk + item.width;
        widths.minimum = std::max(widths.minimum, chunk);
        widths.maximum = std::max(widths.maximum, line);
    }
    return widths;
}

LayoutEngine::Widths LayoutEngine::WidthsOfChildren(const Node& node) {
    Widths widths;
    InlineItems items;
    const auto include = [&widths](const Widths& part) {
        widths.minimum = std::max(widths.minimum, part.minimum);
        widths.maximum = std::max(widths.maximum, part.maximum);
    };
    for (const NodePtr& child : node.Children()) {
        if (IsInlineLevel(*child)) {
            CollectInline(*child, items);
        } else if (StyleOf(*child).display != Display::None) {
            include(WidthsOf(items));
            items.clear();
            include(WidthsOf(*child));
        }
    }
    include(WidthsOf(items));
    return widths;
}

LayoutEngine::Widths LayoutEngine::WidthsOf(const Node& node) {
    const auto known = m_widths.find(&node);
    if (known != m_widths.end()) {
        return known->second;
    }
    const Style& style = StyleOf(node);
    Widths widths;
    double frame = style.border.left + style.border.right;
    if (style.display == Display::Table) {
        const std::vector<Column> columns = ColumnsOf(RowsOf(node));
        frame += style.cellSpacing * static_cast<double>(columns.size() + 1);
        for (const Column& column : columns) {
            widths.minimum += column.widths.minimum;
            widths.maximum += column.widths.maximum;
        }
    } else {
        widths = WidthsOfChildren(node);
        frame += style.padding.left + style.padding.right + style.margin.left + style.margin.right;
    }
    widths.minimum = std::max(0.0, widths.minimum + frame);
    widths.maximum = std::max(0.0, widths.maximum + frame);
    m_widths[&node] = widths;
    return widths;
}

} // namespace html
