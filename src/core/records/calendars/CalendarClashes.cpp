#include "records/calendars/CalendarClashes.h"

#include <algorithm>

/// What two appointments share; from their starts on, the one that ended last so far is the one to compare.
static std::vector<DateInterval> sharedTimes(std::vector<DateInterval> appointments)
{
    std::erase_if(appointments, [](const DateInterval &one) { return one.start >= one.end; });
    std::ranges::sort(appointments, {}, &DateInterval::start);
    std::vector<DateInterval> shared;
    for (size_t number = 1; number < appointments.size(); ++number) {
        const DateInterval &before = appointments[number - 1];
        DateInterval &one = appointments[number];
        if (one.start < before.end)
            shared.push_back({one.start, std::min(one.end, before.end)});
        one.end = std::max(one.end, before.end);
    }
    return shared;
}

std::vector<bool> CalendarClashes::daysOf(std::vector<DateInterval> appointments,
                                          const std::vector<Date> &days)
{
    const std::vector<DateInterval> shared = sharedTimes(std::move(appointments));
    const Calendar calendar = Calendar::current();
    std::vector<bool> clashing;
    clashing.reserve(days.size());
    for (const Date day : days) {
        const DateInterval whole = calendar.dayOf(day);
        clashing.push_back(std::ranges::any_of(shared, [&whole](const DateInterval &time) {
            return time.start < whole.end && time.end > whole.start;
        }));
    }
    return clashing;
}
