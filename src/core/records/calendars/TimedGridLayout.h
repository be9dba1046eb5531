#pragma once

#include "records/calendars/DayGridMetrics.h"
#include "store/queries/DBWorker.h"

#include <QPointF>
#include <QRectF>
#include <QSizeF>

#include <optional>
#include <vector>

/// What the timed grid needs of an Appointment or an Email/Call.
struct TimedItem
{
    TaskPtr task;
    bool isEmailCall = false;
    OptionalDate startDate;
    OptionalDate dueDate;

    /// Those of some days, each once.
    static std::vector<TimedItem> ofDays(const std::vector<TaskList> &days);
};

/// Where timed items stand in a grid of one or several days: a value made from the items and the sizes, which
/// painting, hit test, accessibility and printing share.
///
/// Coordinates are those of the grid, without the column of hour labels. In a grid of several days an item
/// stands on the day of its start, and has no place if that one is not shown; in the grid of one day
/// everything has one. An Appointment and an Email/Call that cross share the width; items of one type lie on
/// each other.
class TimedGridLayout
{
public:
    struct Placed
    {
        /// Its place among the items given.
        int item = 0;
        int column = 0;
        QRectF frame;
        /// Whether its edges are two moments. An Email/Call has only one.
        bool isResizable = false;
    };
    /// The items nearest to what is visible of a column, by their places among the items given.
    struct Hidden
    {
        std::optional<int> above, below;
    };
    struct HourLabel
    {
        int hour = 0;
        /// In the column of labels.
        QRectF frame;
    };

    /// The grid of `columns` days from a day on.
    TimedGridLayout(Date firstDay, DayColumns columns, const DayGridMetrics &metrics,
                    const std::vector<TimedItem> &items);

    QSizeF size() const { return {grid.width, sizes.heightOfDay()}; }
    const DayColumns &columns() const { return grid; }
    /// In the order of painting: the last one is on top.
    const std::vector<Placed> &placed() const { return frames; }
    /// The topmost item at a point, by its place among the items given.
    std::optional<int> itemAt(QPointF point) const;
    /// The moment at a point; absent beside the columns.
    OptionalDate momentAt(QPointF point, CalendarManager::DragStep step) const;

    /// What a column hides above and below a visible stretch.
    Hidden hiddenIn(int column, double visibleTop, double visibleBottom) const;
    /// Left edge and width of the strips that point to hidden items; from the left of the hour labels.
    QRectF markerOf(int column) const;

    /// The full hours but midnight, for labels of that height.
    std::vector<HourLabel> hourLabels(double textHeight) const;
    /// The line of the present moment across all columns; absent while none of the days is today.
    std::optional<QRectF> currentTimeLine(Date now) const;

private:
    std::optional<int> columnOf(Date start) const;
    std::optional<Placed> place(const TimedItem &item) const;
    void shareColumns(const std::vector<TimedItem> &items);

    Date day;
    DayColumns grid;
    DayGridMetrics sizes;
    std::vector<Placed> frames;
};
