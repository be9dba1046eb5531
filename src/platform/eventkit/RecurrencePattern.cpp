#include "eventkit/RecurrencePattern.h"

#include <algorithm>

namespace {

void keepBetween(std::vector<int> &values, int lowest, int highest)
{
    std::erase_if(values, [=](int value) { return value < lowest || value > highest; });
}

/// Counts from the beginning, or from the end if negative; there is no position 0.
void keepPositions(std::vector<int> &values, int furthest)
{
    std::erase_if(values, [=](int value) { return value == 0 || value < -furthest || value > furthest; });
}

bool isInRange(const EKRecurrenceDayOfWeek &day)
{
    return day.dayOfTheWeek >= EKWeekday::Sunday && day.dayOfTheWeek <= EKWeekday::Saturday &&
           day.weekNumber >= -53 && day.weekNumber <= 53;
}

} // namespace

RecurrencePattern RecurrencePattern::ofWholeDays() const
{
    RecurrencePattern pattern = *this;
    if (until)
        pattern.localUntil = WallClock::fromSeconds(static_cast<std::int64_t>(until->unixSeconds()));
    pattern.until.reset();
    pattern.isUntilDate = pattern.localUntil.has_value();
    return pattern;
}

RecurrencePattern RecurrencePattern::withoutInvalidValues() const
{
    RecurrencePattern valid = *this;
    valid.interval = std::max(1, interval);
    valid.count = std::max(0, count);
    keepPositions(valid.bySetPos, 366);
    keepPositions(valid.byYearDay, 366);
    keepBetween(valid.byMonth, 1, 12);
    keepPositions(valid.byWeekNo, 53);
    keepPositions(valid.byMonthDay, 31);
    std::erase_if(valid.byDay, [](const EKRecurrenceDayOfWeek &day) { return !isInRange(day); });
    keepBetween(valid.byHour, 0, 23);
    keepBetween(valid.byMinute, 0, 59);
    keepBetween(valid.bySecond, 0, 60);
    return valid;
}
