#pragma once

#include "foundation/Date.h"
#include "records/calendars/CalendarForDaysItem.h"
#include "records/calendars/CalendarMonthRow.h"

#include <QRectF>

/// The arithmetic of the calendars: moments and pixels, days and columns, tasks and lanes. Stateless; what
/// reads tasks is for the main thread only.
///
/// Rectangles and positions are in pixels, y grows downwards. A column is 0 to 6, or -1 for a day that is
/// not shown. A row height is that of half an hour; 0 stands for the usual one.
class CalendarManager
{
public:
    CalendarManager() = delete;

    /// Half-hour rows of a day.
    static constexpr int rowCount = 48;
    static constexpr double defaultRowHeight = 35;
    static constexpr int daysInWeek = 7;

    /// How far below the start of its day a moment stands. Seconds do not count.
    static int convertTimeToPixel(Date date, double rowHeight);
    /// The moment of a day that stands at a position, in whole minutes and one second more. A position below
    /// the day belongs to the next one.
    static Date convertPixelToTime(Date day, double position, double rowHeight);
    /// What a drag counts in: quarters of an hour, or single minutes.
    enum class DragStep { Quarter, Minute };
    /// The moment that a drag to a position means, for the label beside it and for what is saved: the nearest
    /// quarter of an hour, but none beyond the day's last one, or the minute as `convertPixelToTime` gives
    /// it.
    static Date dragTime(Date day, double position, double rowHeight, DragStep step);

    /// Whether two rectangles get into each other's way. Side by side it is enough that they touch; one
    /// above the other they must share more than an edge of one pixel. Compared in single precision.
    static bool isCrossRect(const QRectF &one, const QRectF &withRect);

    /// The width of one of the seven columns of a rectangle.
    static double columnWidth(const QRectF &rect);
    /// The column at a position. Not limited to those that there are.
    static int columnWithPosition(int x, const QRectF &rect);
    static double positionXWithColumn(int column, const QRectF &rect);
    /// The column of a date's day in the week that begins with a day.
    static int columnWithDate(Date date, Date startWeek);
    /// The day of a column, at the clock time of the week's start.
    static Date dateWithColumn(int column, Date startWeek);
    /// The column of a date's day, the first one being the day after the reference day.
    static int monthColumnWithDate(Date date, Date month);

    /// Fits an item to the days that are shown: gives it its first column, its start and its length. The
    /// columns are those of the task's two dates; a date in a column must be there.
    static void settingEventItem(CalendarForDaysItem &item, Date startDate, Date endDate, int startColumn,
                                 int endColumn);

    /// Gives each item its lane, the long ones first, and puts them in the order of lanes; the last one
    /// stands in the highest lane. Gives back the same items.
    static CalendarForDaysItems &sortedEvents(CalendarForDaysItems &items);
    /// The first lane in which the item clashes with none of those that are placed. It clashes with another
    /// if one of its own ends lies within that one: what covers the other on both sides does not.
    static qint64 notBusyRow(const CalendarForDaysItem &item, const CalendarForDaysItems &events);

    /// The ToDos of the seven days from the start of a week, in their lanes.
    static CalendarForDaysItems dataBaseGetItemsWithStartWeek(Date startWeek, Date endWeek);
    /// The tasks of a row of a month, in their lanes.
    static CalendarForDaysItems dataBaseGetItemsWithStartMonth(Date startMonth, Date endMonth,
                                                               const CalendarMonthRow &row);
    /// The same for all rows of a month, which reads the tasks once.
    static std::vector<CalendarForDaysItems> dataBaseGetItems(const std::vector<CalendarMonthRow> &rows);
};
