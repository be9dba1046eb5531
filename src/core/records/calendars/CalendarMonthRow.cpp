#include "records/calendars/CalendarMonthRow.h"

#include "foundation/Calendar.h"
#include "records/dates/MVDate.h"

std::vector<CalendarMonthRow> CalendarMonthRow::rowsOfMonth(Date month)
{
    // From a midnight: of a moment in the last second of a day, the start of the week is the day after.
    const Date firstDay = *MVDate::firstDayOfMonth(MVDate::getStartOfDay(month));
    Date start = MVDate::setTimeWithCurrentDate(MVDate::startOfWeek(firstDay), 0, 0, 1);
    std::vector<CalendarMonthRow> rows;
    const int count = MVDate::weekCountOfMonth(month);
    for (int row = 0; row < count; ++row) {
        rows.push_back({row, start, MVDate::endOfWeek(start)});
        start = MVDate::addWeekWithDate(start);
    }
    return rows;
}

Date CalendarMonthRow::dateOfColumn(int column) const
{
    return MVDate::addDay(column, startDate);
}

int CalendarMonthColumn::getColumnNumberWithDate(Date date, const CalendarMonthRow &row)
{
    constexpr int lastColumn = 6;
    const Calendar calendar = Calendar::current();
    const int column = calendar.dayNumber(date) - calendar.dayNumber(row.startDate);
    return column >= 0 && column <= lastColumn ? column : -1;
}
