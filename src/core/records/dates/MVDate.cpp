#include "records/dates/MVDate.h"

#include "foundation/Calendar.h"
#include "foundation/Clock.h"
#include "foundation/DateFormatter.h"

#include <QDate>

#include <cmath>

static constexpr double secondsPerDay = 86400.0;

/// The full set of fields: a fraction of a second is no part of it.
static DateComponents fullFields(const Calendar &calendar, Date date)
{
    DateComponents fields = calendar.components(date);
    fields.nanosecond.reset();
    return fields;
}

static Date composed(const Calendar &calendar, DateComponents fields, int hour, int minute, int second)
{
    fields.hour = hour;
    fields.minute = minute;
    fields.second = second;
    return calendar.dateFromComponents(fields);
}

bool MVDate::isPM_AM_String()
{
    using Style = DateFormatter::Style;
    const QString time = DateFormatter::string(date(), Style::None, Style::Short);
    return time.contains(DateFormatter::amSymbol()) || time.contains(DateFormatter::pmSymbol());
}

Date MVDate::dateNearest15Minute(Date date)
{
    static constexpr int quarter = 15;
    static constexpr int firstMinuteRoundedUp = 8;
    const Calendar calendar = Calendar::current();
    const DateComponents fields = fullFields(calendar, date);
    const int past = *fields.minute % quarter;
    const int start = *fields.minute - past;
    return composed(calendar, fields, *fields.hour, past < firstMinuteRoundedUp ? start : start + quarter, 0);
}

/// In single precision, as the calendar grids have always counted.
static int roundedDays(Date start, Date end)
{
    const auto days = static_cast<float>((end - start).count() / secondsPerDay);
    return static_cast<int>(std::lround(days));
}

int MVDate::duration(Date start, Date endDate)
{
    return roundedDays(start, endDate) + 1;
}

int MVDate::durationEvent(Date start, Date endDate)
{
    const int days = roundedDays(start, endDate);
    return days == 0 && endDate > start ? 1 : days;
}

/// Whether the two lie in the same month and `one` is that many days after the other in it.
static bool isDaysAfterInMonth(Date one, Date other, int days)
{
    const Calendar calendar = Calendar::current();
    const DateComponents first = calendar.shortComponents(one);
    const DateComponents second = calendar.shortComponents(other);
    return first.year == second.year && first.month == second.month && *first.day == *second.day + days;
}

bool MVDate::orTheSameDay(Date one, Date date)
{
    return isDaysAfterInMonth(one, date, 0);
}

bool MVDate::orYesterday(Date one, Date date)
{
    return isDaysAfterInMonth(one, date, 1);
}

bool MVDate::orTomorrow(Date one, Date date)
{
    return isDaysAfterInMonth(one, date, -1);
}

Date MVDate::date()
{
    return Clock::now();
}

Date MVDate::startOfWeek(Date date)
{
    const Calendar calendar = Calendar::current();
    const int daysIntoWeek = (calendar.weekday(date) + 7 - calendar.firstWeekday()) % 7;
    return calendar.dateByAdding(DateComponents{.day = -daysIntoWeek, .second = 1}, date);
}

Date MVDate::endOfWeek(Date date)
{
    const Calendar calendar = Calendar::current();
    DateComponents fields = fullFields(calendar, startOfWeek(date));
    fields.day = *fields.day + 6;
    return composed(calendar, fields, 23, 59, 59);
}

Date MVDate::setTimeWithCurrentDate(Date currentDate, int hour, int minute, int second)
{
    const Calendar calendar = Calendar::current();
    return composed(calendar, fullFields(calendar, currentDate), hour, minute, second);
}

Date MVDate::setDayWithCurrentDate(Date currentDate, int day, int hour, int minute, int second)
{
    const Calendar calendar = Calendar::current();
    DateComponents fields = fullFields(calendar, currentDate);
    fields.day = day;
    return composed(calendar, fields, hour, minute, second);
}

std::array<int, 4> MVDate::getDayHourMinutSecondWithDate(Date date)
{
    const DateComponents fields = Calendar::current().shortComponents(date);
    return {*fields.day, *fields.hour, *fields.minute, *fields.second};
}

Date MVDate::addDayWithDate(Date date)
{
    return addDay(1, date);
}

Date MVDate::addDay(int days, Date withDate)
{
    return Calendar::current().dateByAdding(CalendarUnit::Day, days, withDate);
}

Date MVDate::dateAddHour(int hours, Date withDate)
{
    return Calendar::current().dateByAdding(CalendarUnit::Hour, hours, withDate);
}

Date MVDate::addWeekWithDate(Date date)
{
    return Calendar::current().dateByAdding(CalendarUnit::WeekOfYear, 1, date);
}

static Date withDayOfMonth(Date date, int day)
{
    const Calendar calendar = Calendar::current();
    DateComponents fields = fullFields(calendar, date);
    fields.day = day;
    return calendar.dateFromComponents(fields);
}

OptionalDate MVDate::firstDayOfMonth(OptionalDate date)
{
    return date ? OptionalDate(withDayOfMonth(*date, 1)) : std::nullopt;
}

Date MVDate::lastDayOfMonth(Date date)
{
    return withDayOfMonth(date, numberOfDaysInMonthCount(date));
}

int MVDate::numberOfDaysInMonthCount(Date date)
{
    return Calendar::current().daysInMonth(date);
}

int MVDate::weekCountOfMonth(Date date)
{
    return Calendar::current().weeksInMonth(date);
}

int MVDate::day(Date date)
{
    return Calendar::current().day(date);
}

int MVDate::month(Date date)
{
    return Calendar::current().month(date);
}

int MVDate::weekOfMonth(Date date)
{
    return Calendar::current().weekOfMonth(date);
}

bool MVDate::orWeekend(Date date)
{
    static constexpr int saturday = 7;
    static constexpr int sunday = 1;
    const int weekday = Calendar::current().weekday(date);
    return weekday == saturday || weekday == sunday;
}

bool MVDate::isLaterOrEqualTo(Date one, Date date)
{
    return one >= date;
}

bool MVDate::isEarlierOrEqual(Date one, Date date)
{
    return one <= date;
}

bool MVDate::isLater(Date one, Date date)
{
    return one > date;
}

bool MVDate::isEarlier(Date one, Date date)
{
    return one < date;
}

bool MVDate::isEqual(Date one, Date date)
{
    return one == date;
}

Date MVDate::setHour(unsigned hour, unsigned andSetMinute, Date forDate)
{
    const Calendar calendar = Calendar::current();
    const DateComponents fields = calendar.shortComponents(forDate);
    return composed(calendar, fields, static_cast<int>(hour), static_cast<int>(andSetMinute), *fields.second);
}

Date MVDate::setDay(unsigned day, unsigned andSetMonth, unsigned andSetYear, Date forDate)
{
    const Calendar calendar = Calendar::current();
    DateComponents fields = calendar.shortComponents(forDate);
    fields.day = static_cast<int>(day);
    fields.month = static_cast<int>(andSetMonth);
    fields.year = static_cast<int>(andSetYear);
    return calendar.dateFromComponents(fields);
}

Date MVDate::getMinDate()
{
    return getDateWithYear(1800, 1, 1);
}

Date MVDate::getDateWithYear(int year, int month, int andDay)
{
    return Calendar::current().dateFromComponents({.year = year, .month = month, .day = andDay});
}

Date MVDate::getEndOfYear(Date date)
{
    const Calendar calendar = Calendar::current();
    return composed(calendar, {.year = calendar.year(date), .month = 12, .day = 31}, 23, 59, 59);
}

Date MVDate::getEndOfDay(Date date)
{
    return Calendar::current().startOfNextDay(date) - Seconds(1);
}

Date MVDate::getStartOfDay(Date date)
{
    return Calendar::current().startOfDay(date);
}

Date MVDate::getNearestDay(Date midnight)
{
    if (getStartOfDay(midnight) == midnight)
        return midnight;
    // The midnights of all zones up to twelve hours away from UTC are nearest to that of their own day there.
    constexpr qint64 secondsADay = 86400;
    const auto days = static_cast<qint64>(std::floor(midnight.unixSeconds() / secondsADay + 0.5));
    const QDate day = QDate(1970, 1, 1).addDays(days);
    const DateComponents components{.year = day.year(), .month = day.month(), .day = day.day()};
    return Calendar::current().dateFromComponents(components);
}
