#include "eventkit/RecurrencePeriods.h"

#include "eventkit/CalendarPeriods.h"
#include "eventkit/ClockPeriods.h"

#include <algorithm>

std::unique_ptr<RecurrencePeriods> RecurrencePeriods::create(const RecurrencePattern &pattern,
                                                             std::int64_t start, std::int64_t last)
{
    const std::int64_t end = std::min(last, endOfTime);
    if (pattern.frequency < RecurrenceUnit::Daily)
        return std::make_unique<ClockPeriods>(pattern, start, end);
    return std::make_unique<CalendarPeriods>(pattern, start, end);
}
