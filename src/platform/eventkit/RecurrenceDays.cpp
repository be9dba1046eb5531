#include "eventkit/RecurrenceDays.h"

#include <algorithm>

using std::chrono::days;
using std::chrono::sys_days;
using std::chrono::year_month;
using std::chrono::year_month_day;

namespace {

/// The day of a week that decides to which year it belongs: week 1 has at least four days in its year.
constexpr int decidingDay = 3;

int lengthOf(std::chrono::year year)
{
    return year.is_leap() ? 366 : 365;
}

int lengthOf(int year)
{
    return lengthOf(std::chrono::year(year));
}

} // namespace

RecurrenceDay::RecurrenceDay(sys_days day)
    : date(day)
    , weekday(static_cast<int>(std::chrono::weekday(day).c_encoding()))
{
    const year_month_day fields(day);
    dayOfMonth = static_cast<int>(static_cast<unsigned>(fields.day()));
    dayOfYear = static_cast<int>((day - sys_days(fields.year() / 1 / 1)).count()) + 1;
    takeMonth(fields.year() / fields.month());
}

void RecurrenceDay::takeMonth(year_month yearMonth)
{
    year = static_cast<int>(yearMonth.year());
    month = static_cast<int>(static_cast<unsigned>(yearMonth.month()));
    const auto last = (yearMonth / std::chrono::last).day();
    daysInMonth = static_cast<int>(static_cast<unsigned>(last));
    daysInYear = lengthOf(yearMonth.year());
}

void RecurrenceDay::advance()
{
    date += days(1);
    weekday = (weekday + 1) % daysOfAWeek;
    ++dayOfYear;
    if (++dayOfMonth <= daysInMonth)
        return;
    dayOfMonth = 1;
    if (month == 12)
        dayOfYear = 1;
    takeMonth(std::chrono::year(year) / month + std::chrono::months(1));
}

RecurrenceDayFilter::Positions::Positions(const std::vector<int> &values)
    : isUsed(!values.empty())
{
    for (const int value : values)
        (value > 0 ? fromBeginning : fromEnd).set(std::size_t(std::abs(value)));
}

RecurrenceDayFilter::RecurrenceDayFilter(const RecurrencePattern &pattern, const RecurrenceDay &start)
    : monthDays(pattern.byMonthDay)
    , yearDays(pattern.byYearDay)
    , weekNumbers(pattern.byWeekNo)
    , weekStart(static_cast<int>(pattern.weekStart) - 1)
    , countsInMonth(pattern.frequency == RecurrenceUnit::Monthly || !pattern.byMonth.empty())
{
    for (const int month : pattern.byMonth)
        months.set(std::size_t(month));
    const bool countsPositions = pattern.frequency >= RecurrenceUnit::Monthly;
    for (const EKRecurrenceDayOfWeek &day : pattern.byDay)
        takeWeekday(day, countsPositions);
    takeMissingParts(pattern.frequency, start);
}

void RecurrenceDayFilter::takeWeekday(EKRecurrenceDayOfWeek day, bool countsPositions)
{
    hasWeekdays = true;
    if (day.weekNumber == 0 || !countsPositions)
        everyWeekday.set(std::size_t(day.dayOfTheWeek) - 1);
    else
        positionedWeekdays.push_back(day);
}

void RecurrenceDayFilter::takeMissingParts(RecurrenceUnit frequency, const RecurrenceDay &start)
{
    if (frequency < RecurrenceUnit::Weekly || hasWeekdays || monthDays.isUsed || yearDays.isUsed)
        return;
    if (frequency == RecurrenceUnit::Weekly || weekNumbers.isUsed) {
        takeWeekday({static_cast<EKWeekday>(start.weekday + 1)}, false);
        return;
    }
    monthDays = Positions({start.dayOfMonth});
    if (frequency == RecurrenceUnit::Yearly && months.none())
        months.set(std::size_t(start.month));
}

bool RecurrenceDayFilter::matchesWeekday(const RecurrenceDay &day) const
{
    if (everyWeekday.test(std::size_t(day.weekday)))
        return true;
    const int position = countsInMonth ? day.dayOfMonth : day.dayOfYear;
    const int last = countsInMonth ? day.daysInMonth : day.daysInYear;
    const int fromBeginning = (position - 1) / daysOfAWeek + 1;
    const int fromEnd = -((last - position) / daysOfAWeek + 1);
    return std::any_of(positionedWeekdays.begin(), positionedWeekdays.end(), [&](const auto &wanted) {
        return static_cast<int>(wanted.dayOfTheWeek) == day.weekday + 1 &&
               (wanted.weekNumber == fromBeginning || wanted.weekNumber == fromEnd);
    });
}

bool RecurrenceDayFilter::matchesWeekNumber(const RecurrenceDay &day) const
{
    const int daysIntoWeek = (day.weekday - weekStart + daysOfAWeek) % daysOfAWeek;
    int position = day.dayOfYear - daysIntoWeek + decidingDay;
    int last = day.daysInYear;
    if (position < 1) {
        last = lengthOf(day.year - 1);
        position += last;
    } else if (position > last) {
        position -= last;
        last = lengthOf(day.year + 1);
    }
    const int week = (position - 1) / daysOfAWeek + 1;
    return weekNumbers.matches(week, week + (last - position) / daysOfAWeek);
}
