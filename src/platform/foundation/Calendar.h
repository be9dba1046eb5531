#pragma once

#include "foundation/Date.h"

#include <QByteArray>
#include <QString>

#include <memory>
#include <optional>

/// The fields of a date in a calendar. A field that is absent is undefined.
///
/// `era` is 0 before and 1 from the year 1; `month`, `day`, `quarter` and the week numbers count from 1;
/// `weekday` is 1 for Sunday to 7 for Saturday; `weekdayOrdinal` is 2 for the second such weekday of the
/// month.
struct DateComponents
{
    std::optional<int> era = {};
    std::optional<int> year = {};
    std::optional<int> month = {};
    std::optional<int> day = {};
    std::optional<int> hour = {};
    std::optional<int> minute = {};
    std::optional<int> second = {};
    std::optional<int> nanosecond = {};
    std::optional<int> weekday = {};
    std::optional<int> weekdayOrdinal = {};
    std::optional<int> quarter = {};
    std::optional<int> weekOfMonth = {};
    std::optional<int> weekOfYear = {};
    std::optional<int> yearForWeekOfYear = {};

    bool operator==(const DateComponents &) const = default;
};

/// The units by which dates are moved.
enum class CalendarUnit { Year, Month, WeekOfYear, Day, Hour, Minute, Second };

/// The first and the last moment of a stretch of time: `start` belongs to it, `end` no longer does.
struct DateInterval
{
    Date start;
    Date end;
};

/// What a calendar is made from. The defaults of the process are those of `Calendar::currentSettings`.
struct CalendarSettings
{
    QByteArray zoneIdentifier;
    QString localeIdentifier;
    /// 1 is Sunday.
    int firstWeekday = 1;
    /// How many days of the new year its week number 1 has at least.
    int minimumDaysInFirstWeek = 1;
};

/// Gregorian calendar arithmetic in one time zone.
///
/// Where a wall time exists twice (the clock is set back) the first one is meant; where it does not exist
/// (the clock is set forward) it moves on by the length of the gap, so a day without a midnight starts at
/// 01:00. Fractions of a second survive additions. A calendar object is used by one thread at a time;
/// `current()` gives each thread its own, and follows changes of `Region`.
class Calendar
{
public:
    /// The calendar of the user's zone and locale at this moment. Cheap: ask at every use.
    static Calendar current();
    /// What `current()` is made from.
    static CalendarSettings currentSettings();

    explicit Calendar(const CalendarSettings &settings);

    /// All fields of the date; nanoseconds included.
    DateComponents components(Date date) const;
    /// Year, month, day, hour, minute and second only.
    DateComponents shortComponents(Date date) const;

    /// Puts a date together. Fields out of range carry over into the next larger unit (minute 60, day 32).
    /// Absent time fields are 0, an absent era is the present one. If `day` is present then year, month and
    /// day decide and the week fields are not looked at; else a weekday with an ordinal, a week of the month
    /// or a week of the year; else the first of the month.
    Date dateFromComponents(const DateComponents &components) const;

    /// Moves a date by a number of units, forwards or backwards. Units from the day up keep the local time of
    /// day, smaller ones are elapsed time. A day that the target month does not have becomes its last day.
    Date dateByAdding(CalendarUnit unit, int amount, Date date) const;
    /// Adds all amounts that are present, from the year down to the nanosecond. Weeks are in `weekOfYear`
    /// or `weekOfMonth`, days in `day` or `weekday`.
    Date dateByAdding(const DateComponents &amounts, Date date) const;

    int firstWeekday() const;
    int minimumDaysInFirstWeek() const;
    int secondsFromGMT(Date date) const;

    int year(Date date) const;
    int month(Date date) const;
    int day(Date date) const;
    int hour(Date date) const;
    int minute(Date date) const;
    int second(Date date) const;
    int weekday(Date date) const;
    int weekOfMonth(Date date) const;
    int weekOfYear(Date date) const;

    /// Length of the month that the date lies in.
    int daysInMonth(Date date) const;
    /// The number of week rows that the month of the date needs; it depends on the first weekday.
    int weeksInMonth(Date date) const;

    Date startOfDay(Date date) const;
    /// The first moment after the date's day.
    Date startOfNextDay(Date date) const;
    DateInterval dayOf(Date date) const;
    /// A number for the calendar day, one more for each following day, alike for all moments of the day.
    int dayNumber(Date date) const;

    /// Completed days from one moment to the other, truncated towards zero; negative if `to` is the earlier
    /// one.
    int wholeDaysBetween(Date from, Date to) const;

    bool isSameDay(Date one, Date other) const;
    bool isDateInToday(Date date) const;
    bool isDateInYesterday(Date date) const;
    bool isDateInTomorrow(Date date) const;

private:
    class Engine;
    explicit Calendar(std::shared_ptr<Engine> sharedEngine);

    std::shared_ptr<Engine> engine;

    friend class DateFormatter;
};
