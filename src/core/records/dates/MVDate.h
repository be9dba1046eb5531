#pragma once

#include "foundation/Date.h"

#include <QString>

#include <array>
#include <optional>

/// The organiser's date operations, in the user's calendar as it is at the moment of the call. No state; any
/// thread.
///
/// "All fields" below are those of a date from the era down to the second; "the six fields" are year, month,
/// day, hour, minute and second. An operation that replaces some fields keeps the others of its set,
/// fractions of a second are dropped, and a field out of its range carries over into the next larger unit.
class MVDate
{
public:
    /// Whether the user's clock is a 12-hour clock.
    static bool isPM_AM_String();

    /// The nearest quarter hour: minutes up to 7 past it go down, from 8 up. Seconds become 0.
    static Date dateNearest15Minute(Date date);

    /// Days covered from start to end, both ends counted: the length in days rounded to the nearest (halves
    /// away from zero) plus 1.
    static int duration(Date start, Date endDate);
    /// Days between, rounded to the nearest; 1 for a positive length that rounds to 0.
    static int durationEvent(Date start, Date endDate);

    static bool orTheSameDay(Date one, Date date);
    /// Whether `date` is the day before `one` within the same month. The last of a month never precedes the
    /// first of the next here.
    static bool orYesterday(Date one, Date date);
    /// Whether `date` is the day after `one`, again within the same month only.
    static bool orTomorrow(Date one, Date date);

    /// The present moment.
    static Date date();

    /// The first day of the date's week at the date's own time of day and one second more. Not a midnight.
    static Date startOfWeek(Date date);
    /// The last day of the date's week at 23:59:59.
    static Date endOfWeek(Date date);

    static Date setTimeWithCurrentDate(Date currentDate, int hour, int minute, int second);
    static Date setDayWithCurrentDate(Date currentDate, int day, int hour, int minute, int second);
    /// Day of the month, hour, minute, second.
    static std::array<int, 4> getDayHourMinutSecondWithDate(Date date);

    /// One day later at the same local time of day.
    static Date addDayWithDate(Date date);
    static Date addDay(int days, Date withDate);
    static Date dateAddHour(int hours, Date withDate);
    static Date addWeekWithDate(Date date);

    /// The first of the month at the date's time of day; absent for an absent date.
    static OptionalDate firstDayOfMonth(OptionalDate date);
    static Date lastDayOfMonth(Date date);
    static int numberOfDaysInMonthCount(Date date);
    /// The week rows that a view of the month needs; depends on the first weekday.
    static int weekCountOfMonth(Date date);

    static int day(Date date);
    /// From 1.
    static int month(Date date);
    static int weekOfMonth(Date date);
    /// Saturday or Sunday, whatever the locale's weekend may be.
    static bool orWeekend(Date date);

    static bool isLaterOrEqualTo(Date one, Date date);
    static bool isEarlierOrEqual(Date one, Date date);
    static bool isLater(Date one, Date date);
    static bool isEarlier(Date one, Date date);
    static bool isEqual(Date one, Date date);

    /// Replaces hour and minute of the six fields; the seconds stay.
    static Date setHour(unsigned hour, unsigned andSetMinute, Date forDate);
    /// Replaces the day of the six fields; the time of day stays.
    static Date setDay(unsigned day, unsigned andSetMonth, unsigned andSetYear, Date forDate);

    /// 1 January 1800, 00:00.
    static Date getMinDate();
    /// That day at 00:00:00.
    static Date getDateWithYear(int year, int month, int andDay);
    /// 31 December of the date's year, 23:59:59.
    static Date getEndOfYear(Date date);
    /// 23:59:59 of the date's day.
    static Date getEndOfDay(Date date);
    static Date getStartOfDay(Date date);
    /// The start of the day that a stored midnight means, in whichever time zone it was midnight: one of the
    /// present zone, or else the nearest one of UTC. For birthdays, which stay the same day wherever one
    /// travels.
    static Date getNearestDay(Date midnight);

    /// The label of a date in a task row, in the user's language: "Due Today", "Start Tomorrow at 2:00 PM".
    /// With `considerTime` the time of day is shown; `inOrderToStartDate` makes it the label of a start date,
    /// and so does `isEmailCall`, whose one date is a start to the user. Empty for an absent date.
    static QString getLabelText(OptionalDate date, bool considerTime, bool inOrderToStartDate,
                                bool isEmailCall);

    /// The label of a note's creation date; absent for an absent date, whose label is left as it stands.
    static std::optional<QString> noteCreationLabel(OptionalDate creationDate);
};
