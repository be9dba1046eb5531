#pragma once

#include "records/calendars/CalendarForDaysItem.h"
#include "records/calendars/DayGridMetrics.h"

#include <QPointF>
#include <QRectF>
#include <QSizeF>

#include <array>
#include <optional>
#include <vector>

/// The sizes in the grid of a month, in pixels.
struct MonthGridMetrics
{
    /// Height of a bar.
    int eventHeight = 15;
    /// Lower edge of the day's number in its cell.
    double dayLabelBottom = 24;
    /// The room for the count of hidden bars at the foot of a cell.
    double moreLabelHeight = 17;

    /// For a text one line of which takes that height; never less than usual.
    static MonthGridMetrics forText(double textHeight);

    int laneHeight() const;
};

/// Where cells, bars and counts of hidden bars stand in the grid of a month: a value made from the items of
/// each row and the sizes, which painting, hit test, accessibility and printing share.
class MonthGridLayout
{
public:
    struct Bar
    {
        int row = 0;
        /// Its place among the items of the row.
        int item = 0;
        /// As long as the task, so that it may go on beyond the last column.
        QRectF frame;
        /// False for what is counted instead of shown.
        bool isVisible = false;
    };
    struct Cell
    {
        int row = 0;
        int column = 0;
    };

    /// A row for each list of items.
    MonthGridLayout(QSizeF size, const MonthGridMetrics &metrics,
                    const std::vector<CalendarForDaysItems> &rows);

    int rowCount() const { return static_cast<int>(hidden.size()); }
    QRectF cellFrame(Cell cell) const;
    /// The cell at a point; absent outside of the grid.
    std::optional<Cell> cellAt(QPointF point) const;
    /// How many lanes fit below the day's number; less than 1 in a low window.
    int maxVisibleRows() const;
    /// All bars, row by row and lane by lane.
    const std::vector<Bar> &bars() const { return placed; }
    /// The visible bar at a point, by its place among `bars`.
    std::optional<int> barAt(QPointF point) const;
    /// How many bars that are not shown cover a cell.
    int hiddenIn(Cell cell) const;
    /// Where that count stands.
    QRectF moreLabelFrame(Cell cell) const;

private:
    double rowHeight() const;
    QRectF frameOf(const CalendarForDaysItem &item, int row) const;
    void countHidden(const CalendarForDaysItem &item, int row);

    DayColumns columns;
    double height;
    MonthGridMetrics sizes;
    std::vector<std::array<int, CalendarManager::daysInWeek>> hidden;
    std::vector<Bar> placed;
};
