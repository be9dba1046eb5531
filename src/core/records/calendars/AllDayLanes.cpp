#include "records/calendars/AllDayLanes.h"

#include "records/calendars/Truncation.h"

int AllDayLanes::laneHeight() const
{
    constexpr int gap = 4;
    return metrics.eventHeight() + gap;
}

QRectF AllDayLanes::frame(qint64 lane, qint64 column, qint64 duration) const
{
    constexpr double top = 2;
    constexpr double indent = DayGridMetrics::indentX;
    const double width = static_cast<double>(duration) * columns.columnWidth() - (2 * indent + 1);
    return {columns.positionOf(column) + indent, static_cast<double>(lane - 1) * laneHeight() + top,
            std::max(0.0, width), static_cast<double>(metrics.eventHeight())};
}

QRectF AllDayLanes::frame(const CalendarForDaysItem &item) const
{
    return frame(item.row, item.column, item.duration);
}

double AllDayLanes::documentHeight(qint64 lanes) const
{
    // The list of a day keeps room below its bars, which stand a little lower than their lanes.
    constexpr double roomOfList = 2;
    return static_cast<double>(lanes) * laneHeight() + (isList() ? roomOfList : 0);
}

double AllDayLanes::areaHeight(qint64 lanes) const
{
    constexpr qint64 mostOfList = 8;
    constexpr qint64 mostOfWeek = 10;
    return documentHeight(std::min(lanes, isList() ? mostOfList : mostOfWeek));
}

int AllDayLanes::laneAt(double y) const
{
    return std::max(1, truncated<int>(std::ceil(y / laneHeight())));
}
