#pragma once

#include "records/calendars/DayGridMetrics.h"

#include <QRectF>

/// Where the all-day bars of a week stand, or in one column those of a day, which are a list.
struct AllDayLanes
{
    DayColumns columns;
    DayGridMetrics metrics;

    int laneHeight() const;
    /// The frame of a bar in a lane, counted from 1. A bar that goes on beyond the last column is as long as
    /// it says.
    QRectF frame(qint64 lane, qint64 column, qint64 duration) const;
    QRectF frame(const CalendarForDaysItem &item) const;
    /// The height of all lanes, and what of it is shown before it scrolls: ten lanes of a week, eight of a
    /// day.
    double documentHeight(qint64 lanes) const;
    double areaHeight(qint64 lanes) const;
    /// The lane at a position, at least 1.
    int laneAt(double y) const;

private:
    bool isList() const { return columns.count == 1; }
};
