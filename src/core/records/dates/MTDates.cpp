#include "records/dates/MTDates.h"

#include "foundation/Calendar.h"
#include "foundation/Region.h"

#include <algorithm>
#include <mutex>
#include <optional>

/// The calendar of the whole process, and the lock under which alone it is used.
struct SharedCalendar
{
    std::recursive_mutex lock;
    std::optional<Calendar> calendar;
};

static SharedCalendar &shared()
{
    static SharedCalendar instance;
    return instance;
}

/// The shared calendar for as long as this lives.
class LockedCalendar
{
public:
    LockedCalendar()
        : guard(shared().lock)
    {
        if (!shared().calendar)
            shared().calendar.emplace(Calendar::currentSettings());
    }

    const Calendar *operator->() const { return &*shared().calendar; }

private:
    std::lock_guard<std::recursive_mutex> guard;
};

void MTDates::reset()
{
    const std::lock_guard guard(shared().lock);
    shared().calendar.reset();
}

Date MTDates::startOfCurrentDay(Date date)
{
    return LockedCalendar()->startOfDay(date);
}

Date MTDates::endOfCurrentDay(Date date)
{
    return LockedCalendar()->startOfNextDay(date) - Seconds(1);
}

Date MTDates::dateFromYear(int year, int month, int day)
{
    return LockedCalendar()->dateFromComponents({.year = year, .month = month, .day = day});
}

static std::optional<int> unlessZero(int amount)
{
    return amount == 0 ? std::nullopt : std::optional(amount);
}

Date MTDates::dateByAddingYears(Date date, int years, int months, int weeks, int days, int hours, int minutes,
                                int seconds)
{
    const DateComponents amounts{.year = unlessZero(years),
                                 .month = unlessZero(months),
                                 .day = unlessZero(days),
                                 .hour = unlessZero(hours),
                                 .minute = unlessZero(minutes),
                                 .second = unlessZero(seconds),
                                 .weekOfYear = unlessZero(weeks)};
    return LockedCalendar()->dateByAdding(amounts, date);
}

Date MTDates::oneWeekPrevious(Date date)
{
    return dateByAddingYears(date, 0, 0, -1, 0, 0, 0, 0);
}

int MTDates::year(Date date)
{
    return LockedCalendar()->year(date);
}

int MTDates::monthOfYear(Date date)
{
    return LockedCalendar()->month(date);
}

int MTDates::dayOfMonth(Date date)
{
    return LockedCalendar()->day(date);
}

int MTDates::hourOfDay(Date date)
{
    return LockedCalendar()->hour(date);
}

int MTDates::minuteOfHour(Date date)
{
    return LockedCalendar()->minute(date);
}

int MTDates::secondOfMinute(Date date)
{
    return LockedCalendar()->second(date);
}

int MTDates::daysSinceDate(Date date, Date sinceDate)
{
    return LockedCalendar()->wholeDaysBetween(sinceDate, date);
}

qint64 MTDates::secondsSinceDate(Date date, Date sinceDate)
{
    return static_cast<qint64>((date - sinceDate).count());
}

bool MTDates::isAfter(Date date, Date other)
{
    return date > other;
}

bool MTDates::isBefore(Date date, Date other)
{
    return date < other;
}

bool MTDates::isOnOrAfter(Date date, Date other)
{
    return date >= other;
}

bool MTDates::isOnOrBefore(Date date, Date other)
{
    return date <= other;
}

bool MTDates::isBetweenDate(Date date, Date one, Date andDate)
{
    const auto [first, last] = std::minmax(one, andDate);
    return date >= first && date <= last;
}

bool MTDates::isWithinSameDay(Date date, Date other)
{
    return LockedCalendar()->isSameDay(date, other);
}

Date MTDates::inTimeZone(Date date, const QByteArray &zone)
{
    const int target = Region::secondsFromGMT(date, zone);
    return date + Seconds(target - LockedCalendar()->secondsFromGMT(date));
}
