#pragma once

#include "foundation/Date.h"

#include <vector>

/// One row of a month: a week, some days of which may belong to the months beside it.
struct CalendarMonthRow
{
    /// Its place, from 0.
    int row = 0;
    /// The first day at 00:00:01 and the last one at 23:59:59.
    Date startDate;
    Date endDate;

    /// The rows that show the month of a date, by the user's first weekday.
    static std::vector<CalendarMonthRow> rowsOfMonth(Date month);
    /// The day of a column, at 00:00:01.
    Date dateOfColumn(int column) const;
};

/// The day cells of a row.
class CalendarMonthColumn
{
public:
    /// The column of a date's day in a row, 0 to 6; -1 for a day outside of it.
    static int getColumnNumberWithDate(Date date, const CalendarMonthRow &row);
};
