#pragma once

#include "records/calendars/CalendarManager.h"

/// Days side by side over a width, all equally wide.
struct DayColumns
{
    int count = CalendarManager::daysInWeek;
    double width = 0;

    double columnWidth() const { return width / count; }
    double positionOf(qint64 column) const { return columnWidth() * static_cast<double>(column); }
    /// The column at a position; -1 beside them.
    int columnAt(double x) const;
};

/// The sizes in the grids of a day and of a week, in pixels. The defaults are those of a usual text.
struct DayGridMetrics
{
    /// Height of half an hour; 0 stands for the usual one.
    double rowHeight = CalendarManager::defaultRowHeight;
    /// Width of the column of hour labels.
    double gridIndent = 50;
    /// The least that the title of an item needs.
    double textHeight = 0;

    /// Between an item and the edge of its column.
    static constexpr double indentX = 1;

    /// For a text that is larger than usual by a factor, one line of which takes that height.
    static DayGridMetrics scaled(double factor, double textHeight);

    double heightOfRow() const { return rowHeight > 0 ? rowHeight : CalendarManager::defaultRowHeight; }
    double heightOfDay() const { return CalendarManager::rowCount * heightOfRow(); }
    /// Height of an all-day bar, and the least of a timed item.
    int eventHeight() const;
};
