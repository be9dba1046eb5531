#include "eventkit/CalendarPeriods.h"

#include <algorithm>

using std::chrono::floor;
using std::chrono::sys_days;
using std::chrono::sys_seconds;
using std::chrono::year_month_day;

namespace {

constexpr int monthsOfAYear = 12;

sys_days dayOf(std::int64_t moment)
{
    return floor<std::chrono::days>(sys_seconds(std::chrono::seconds(moment)));
}

sys_days firstOfMonth(std::int64_t year, std::int64_t month)
{
    return std::chrono::year(static_cast<int>(year)) / static_cast<int>(month) / 1;
}

/// A day in 1970 on which a week begins.
sys_days someWeekBegin(EKWeekday weekStart)
{
    // The 4th was a Sunday.
    return firstOfMonth(1970, 1) + std::chrono::days(static_cast<int>(weekStart) + 2);
}

} // namespace

CalendarPeriods::CalendarPeriods(const RecurrencePattern &validPattern, std::int64_t start, std::int64_t last)
    : pattern(validPattern)
    , days(pattern, RecurrenceDay(dayOf(start)))
    , times(pattern, WallClock::fromSeconds(start))
    , lastDay(dayOf(last))
    , index(indexOf(dayOf(start)))
{}

std::int64_t CalendarPeriods::indexOf(sys_days day) const
{
    if (pattern.frequency == RecurrenceUnit::Daily)
        return day.time_since_epoch().count();
    if (pattern.frequency == RecurrenceUnit::Weekly) {
        const auto begin = someWeekBegin(pattern.weekStart);
        return floor<std::chrono::weeks>(day - begin).count();
    }
    const year_month_day fields(day);
    const std::int64_t year = static_cast<int>(fields.year());
    if (pattern.frequency == RecurrenceUnit::Yearly)
        return year;
    return year * monthsOfAYear + static_cast<unsigned>(fields.month()) - 1;
}

sys_days CalendarPeriods::beginOf(std::int64_t period) const
{
    if (pattern.frequency == RecurrenceUnit::Daily)
        return sys_days(std::chrono::days(period));
    if (pattern.frequency == RecurrenceUnit::Weekly)
        return someWeekBegin(pattern.weekStart) + std::chrono::days(period * daysOfAWeek);
    if (pattern.frequency == RecurrenceUnit::Yearly)
        return firstOfMonth(period, 1);
    return firstOfMonth(period / monthsOfAYear, period % monthsOfAYear + 1);
}

void CalendarPeriods::skipTo(std::int64_t moment)
{
    const std::int64_t ahead = (indexOf(dayOf(moment)) - index) / pattern.interval;
    index += std::max<std::int64_t>(0, ahead) * pattern.interval;
}

void CalendarPeriods::takeTimesOf(sys_days day)
{
    const std::int64_t midnight = day.time_since_epoch().count() * secondsOfADay;
    for (const int hour : times.hours)
        for (const int minute : times.minutes)
            for (const int second : times.seconds)
                moments.push_back(midnight + (hour * 60 + minute) * 60 + second);
}

void CalendarPeriods::takeDays(sys_days begin, sys_days end)
{
    for (RecurrenceDay day(begin); day.date < end;) {
        if (!days.matchesMonth(day.month)) {
            day = RecurrenceDay(day.date + std::chrono::days(day.daysInMonth - day.dayOfMonth + 1));
            continue;
        }
        if (days.matches(day))
            takeTimesOf(day.date);
        day.advance();
    }
}

const WallSeconds &CalendarPeriods::next()
{
    moments.clear();
    for (; moments.empty(); index += pattern.interval) {
        // The end of time is looked at in periods, before their days can leave the calendar.
        if (index > indexOf(lastDay))
            break;
        takeDays(beginOf(index), beginOf(index + 1));
        keepSetPositions(moments, pattern.bySetPos);
    }
    return moments;
}
