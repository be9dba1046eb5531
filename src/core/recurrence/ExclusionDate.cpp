#include "recurrence/ExclusionDate.h"

#include <algorithm>
#include <cmath>

/// Whether two dates lie in the same unit of time of a calendar.
static bool isDate(Date date, Date equalTo, CalendarUnit toGranularity, const Calendar &calendar)
{
    // An hour that the clock shows twice is two hours.
    const auto isSameSpan = [&](double seconds) {
        const auto number = [&](Date one) {
            return std::floor((one.unixSeconds() + calendar.secondsFromGMT(one)) / seconds);
        };
        return number(date) == number(equalTo) &&
               calendar.secondsFromGMT(date) == calendar.secondsFromGMT(equalTo);
    };
    switch (toGranularity) {
    case CalendarUnit::Year:
        return calendar.year(date) == calendar.year(equalTo);
    case CalendarUnit::Month:
        return calendar.year(date) == calendar.year(equalTo) &&
               calendar.month(date) == calendar.month(equalTo);
    case CalendarUnit::WeekOfYear: {
        const DateComponents one = calendar.components(date);
        const DateComponents other = calendar.components(equalTo);
        return one.yearForWeekOfYear == other.yearForWeekOfYear && one.weekOfYear == other.weekOfYear;
    }
    case CalendarUnit::Day:
        return calendar.isSameDay(date, equalTo);
    case CalendarUnit::Hour:
        return isSameSpan(3600);
    case CalendarUnit::Minute:
        return isSameSpan(60);
    case CalendarUnit::Second:
        break;
    }
    return isSameSpan(1);
}

bool ExclusionDate::excludes(Date date, const Calendar &calendar) const
{
    return std::any_of(dates.begin(), dates.end(),
                       [&](Date excluded) { return isDate(date, excluded, component, calendar); });
}
