#include "eventkit/CalendarItem.h"
#include "eventkit/RecurrenceExpander.h"
#include "eventkit/WallClockZone.h"

#include <algorithm>

int ItemTimes::days() const
{
    std::int64_t seconds = 0;
    if (end)
        seconds = end->clock.seconds() - start.clock.seconds();
    else if (duration)
        seconds = duration->totalSeconds();
    return static_cast<int>(std::max<std::int64_t>(1, (seconds + secondsOfADay - 1) / secondsOfADay));
}

Date ItemTimes::endOf(const IcalTime &occurrence) const
{
    if (isAllDay())
        return occurrence.day().shifted(days() * secondsOfADay).instant();
    const Date begin = occurrence.instant();
    if (end)
        return begin + std::max(Seconds(0), end->instant() - start.instant());
    if (!duration)
        return begin;
    const Date sameClock = occurrence.shifted(duration->days * secondsOfADay).instant();
    return std::max(begin, sameClock + Seconds(double(duration->seconds)));
}
