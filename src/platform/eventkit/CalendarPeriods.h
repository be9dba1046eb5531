#pragma once

#include "eventkit/RecurrenceDays.h"
#include "eventkit/RecurrencePeriods.h"
#include "eventkit/RecurrenceTimes.h"

/// The periods of a rule that steps by days, weeks, months or years.
class CalendarPeriods : public RecurrencePeriods
{
public:
    CalendarPeriods(const RecurrencePattern &validPattern, std::int64_t start, std::int64_t last);

    void skipTo(std::int64_t moment) override;
    const WallSeconds &next() override;

private:
    std::chrono::sys_days beginOf(std::int64_t index) const;
    std::int64_t indexOf(std::chrono::sys_days day) const;
    void takeDays(std::chrono::sys_days begin, std::chrono::sys_days end);
    void takeTimesOf(std::chrono::sys_days day);

    RecurrencePattern pattern;
    RecurrenceDayFilter days;
    RecurrenceTimes times;
    std::chrono::sys_days lastDay;
    /// Which day, week, month or year it is, counted from the beginning of that count.
    std::int64_t index;
    WallSeconds moments;
};
