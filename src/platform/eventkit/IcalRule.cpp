#include "eventkit/IcalRule.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>

namespace {

constexpr int codesOfAPosition = 8;

/// Each value once, as many as the list of the library holds; the first unused place ends it.
void fill(std::span<short> list, const std::vector<int> &values)
{
    std::size_t size = 0;
    for (const int value : values) {
        const auto end = list.begin() + std::ptrdiff_t(size);
        if (size + 1 < list.size() && std::find(list.begin(), end, static_cast<short>(value)) == end)
            list[size++] = static_cast<short>(value);
    }
    list[size] = ICAL_RECURRENCE_ARRAY_MAX;
}

/// The library keeps weekday and position in one number: 8 times the position plus the weekday; its sign is
/// that of the position.
int codeOf(const EKRecurrenceDayOfWeek &day)
{
    const int code = std::abs(day.weekNumber) * codesOfAPosition + static_cast<int>(day.dayOfTheWeek);
    return day.weekNumber < 0 ? -code : code;
}

std::vector<int> codesOf(const std::vector<EKRecurrenceDayOfWeek> &days)
{
    std::vector<int> codes;
    std::transform(days.begin(), days.end(), std::back_inserter(codes), codeOf);
    return codes;
}

icaltimetype untilOf(const RecurrencePattern &pattern)
{
    if (pattern.localUntil)
        return icalTime(*pattern.localUntil, pattern.isUntilDate);
    if (!pattern.until)
        return icaltime_null_time();
    const auto seconds = static_cast<std::int64_t>(std::floor(pattern.until->unixSeconds()));
    icaltimetype time = icalTime(WallClock::fromSeconds(seconds), false);
    time.zone = icaltimezone_get_utc_timezone();
    return time;
}

} // namespace

icaltimetype icalTime(const WallClock &clock, bool isDate)
{
    icaltimetype time = icaltime_null_time();
    time.year = clock.year;
    time.month = clock.month;
    time.day = clock.day;
    time.is_date = isDate ? 1 : 0;
    if (isDate)
        return time;
    time.hour = clock.hour;
    time.minute = clock.minute;
    time.second = clock.second;
    return time;
}

icalrecurrencetype icalRule(const RecurrencePattern &pattern)
{
    icalrecurrencetype rule;
    icalrecurrencetype_clear(&rule);
    rule.freq = static_cast<icalrecurrencetype_frequency>(pattern.frequency);
    rule.interval = static_cast<short>(std::min<int>(pattern.interval, std::numeric_limits<short>::max()));
    rule.week_start = static_cast<icalrecurrencetype_weekday>(pattern.weekStart);
    rule.count = pattern.count;
    if (rule.count == 0)
        rule.until = untilOf(pattern);
    fill(rule.by_set_pos, pattern.bySetPos);
    fill(rule.by_year_day, pattern.byYearDay);
    fill(rule.by_month, pattern.byMonth);
    fill(rule.by_week_no, pattern.byWeekNo);
    fill(rule.by_month_day, pattern.byMonthDay);
    fill(rule.by_day, codesOf(pattern.byDay));
    fill(rule.by_hour, pattern.byHour);
    fill(rule.by_minute, pattern.byMinute);
    fill(rule.by_second, pattern.bySecond);
    return rule;
}
