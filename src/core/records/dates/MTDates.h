#pragma once

#include "foundation/Date.h"

#include <QByteArray>
#include <QString>

/// Day boundaries, comparisons and single fields of dates in one calendar that the whole process shares.
///
/// Zone, locale, first weekday and first week of that calendar are those of the user at the first call and
/// stay until `reset`, even if the user's zone changes meanwhile. What uses the calendar does so under one
/// recursive lock of the process; any thread.
class MTDates
{
public:
    /// Throws the shared calendar away, so that the next call takes the user's settings anew.
    static void reset();

    static Date startOfCurrentDay(Date date);
    /// 23:59:59 of the date's day.
    static Date endOfCurrentDay(Date date);
    static Date dateFromYear(int year, int month, int day);

    /// Moves a date by all amounts in one calendar addition.
    static Date dateByAddingYears(Date date, int years, int months, int weeks, int days, int hours,
                                  int minutes, int seconds);
    static Date oneWeekPrevious(Date date);

    static int year(Date date);
    static int monthOfYear(Date date);
    static int dayOfMonth(Date date);
    static int hourOfDay(Date date);
    static int minuteOfHour(Date date);
    static int secondOfMinute(Date date);

    /// Completed calendar days from `sinceDate` to `date`, truncated towards zero; negative if `sinceDate` is
    /// later.
    static int daysSinceDate(Date date, Date sinceDate);
    static qint64 secondsSinceDate(Date date, Date sinceDate);

    static bool isAfter(Date date, Date other);
    static bool isBefore(Date date, Date other);
    static bool isOnOrAfter(Date date, Date other);
    static bool isOnOrBefore(Date date, Date other);
    /// Both ends included, in either order.
    static bool isBetweenDate(Date date, Date one, Date andDate);
    static bool isWithinSameDay(Date date, Date other);

    /// The date moved by the offset from GMT of `zone` minus that of the shared zone, both taken at `date`:
    /// another instant, for a wall time that is to be read in another zone. An unknown zone counts as GMT.
    static Date inTimeZone(Date date, const QByteArray &zone);

    /// A span in words, "1 days, 2 hours after". A month counts as 18144000 seconds here.
    static QString stringFromDateWithGreatestComponentsForSecondsPassed(double seconds);
    /// The way from `date` to `untilDate` in words, "In 1 day, 2 hours" or "3 hours Ago". A month as above.
    static QString stringFromDateWithGreatestComponentsUntilDate(Date date, Date untilDate);
};
