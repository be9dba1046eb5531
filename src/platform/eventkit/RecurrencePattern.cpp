#include "eventkit/RecurrencePattern.h"

#include "eventkit/RecurrenceLists.h"

#include <algorithm>

static bool isInRange(const EKRecurrenceDayOfWeek &day)
{
    return day.dayOfTheWeek >= EKWeekday::Sunday && day.dayOfTheWeek <= EKWeekday::Saturday &&
           day.weekNumber >= -53 && day.weekNumber <= 53;
}

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
    for (const RecurrenceList &list : recurrenceLists)
        std::erase_if(valid.*list.values, [&list](int value) { return !list.allows(value); });
    std::erase_if(valid.byDay, [](const EKRecurrenceDayOfWeek &day) { return !isInRange(day); });
    return valid;
}
