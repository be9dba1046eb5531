#include "records/calendars/MonthGridLayout.h"

#include "records/calendars/Truncation.h"

MonthGridMetrics MonthGridMetrics::forText(double textHeight)
{
    constexpr double dayLabelTop = 7;
    const MonthGridMetrics usual;
    const double least = std::ceil(textHeight);
    return {std::max(usual.eventHeight, truncated<int>(least)),
            std::max(usual.dayLabelBottom, dayLabelTop + least), std::max(usual.moreLabelHeight, least)};
}

int MonthGridMetrics::laneHeight() const
{
    constexpr int gap = 2;
    return eventHeight + gap;
}

MonthGridLayout::MonthGridLayout(QSizeF size, const MonthGridMetrics &metrics,
                                 const std::vector<CalendarForDaysItems> &rows)
    : columns{CalendarManager::daysInWeek, size.width()}
    , height(size.height())
    , sizes(metrics)
    , hidden(rows.size())
{
    const int mostRows = maxVisibleRows();
    for (int row = 0; row < rowCount(); ++row) {
        const CalendarForDaysItems &items = rows[static_cast<size_t>(row)];
        for (size_t number = 0; number < items.size(); ++number) {
            const bool isVisible = items[number].row <= mostRows;
            placed.push_back({row, static_cast<int>(number), frameOf(items[number], row), isVisible});
            if (!isVisible)
                countHidden(items[number], row);
        }
    }
}

double MonthGridLayout::rowHeight() const
{
    return rowCount() > 0 ? height / rowCount() : 0;
}

QRectF MonthGridLayout::cellFrame(Cell cell) const
{
    return {columns.positionOf(cell.column), rowHeight() * cell.row, columns.columnWidth(), rowHeight()};
}

std::optional<MonthGridLayout::Cell> MonthGridLayout::cellAt(QPointF point) const
{
    const int column = columns.columnAt(point.x());
    const int row = truncated<int>(point.y() / rowHeight());
    if (column < 0 || point.y() < 0 || row >= rowCount())
        return std::nullopt;
    return Cell{row, column};
}

int MonthGridLayout::maxVisibleRows() const
{
    return truncated<int>((rowHeight() - sizes.dayLabelBottom - sizes.moreLabelHeight) / sizes.laneHeight());
}

QRectF MonthGridLayout::frameOf(const CalendarForDaysItem &item, int row) const
{
    constexpr double gap = 4;
    const QRectF start = cellFrame({row, static_cast<int>(item.column)});
    const double width = item.duration < 1 ? 0 : start.width() * static_cast<double>(item.duration) - 3;
    return {start.x() + 1,
            start.y() + sizes.dayLabelBottom + static_cast<double>(item.row - 1) * sizes.laneHeight() + gap,
            width, static_cast<double>(sizes.eventHeight)};
}

/// In the cell of its start in any case, then up to its last one.
void MonthGridLayout::countHidden(const CalendarForDaysItem &item, int row)
{
    const qint64 end = std::min<qint64>(item.column + std::max<qint64>(item.duration, 1), columns.count);
    for (qint64 column = std::max<qint64>(item.column, 0); column < end; ++column)
        ++hidden[static_cast<size_t>(row)][static_cast<size_t>(column)];
}

std::optional<int> MonthGridLayout::barAt(QPointF point) const
{
    const auto topmost = std::find_if(placed.rbegin(), placed.rend(), [point](const Bar &bar) {
        return bar.isVisible && bar.frame.contains(point);
    });
    return topmost == placed.rend() ? std::nullopt
                                    : std::optional(static_cast<int>(placed.rend() - topmost) - 1);
}

int MonthGridLayout::hiddenIn(Cell cell) const
{
    return hidden.at(static_cast<size_t>(cell.row)).at(static_cast<size_t>(cell.column));
}

QRectF MonthGridLayout::moreLabelFrame(Cell cell) const
{
    constexpr double indent = 9;
    const QRectF frame = cellFrame(cell);
    return {frame.x() + indent, frame.bottom() - sizes.moreLabelHeight - 1, frame.width() - indent,
            sizes.moreLabelHeight};
}
