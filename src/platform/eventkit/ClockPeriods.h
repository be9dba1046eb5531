#pragma once

#include "eventkit/RecurrenceDays.h"
#include "eventkit/RecurrencePeriods.h"
#include "eventkit/RecurrenceTimes.h"

/// The periods of a rule that steps by hours, minutes or seconds of the wall clock.
class ClockPeriods : public RecurrencePeriods
{
public:
    ClockPeriods(const RecurrencePattern &validPattern, std::int64_t start, std::int64_t last);

    void skipTo(std::int64_t moment) override;
    /// Gives up after some millions of periods in a row without a moment.
    const WallSeconds &next() override;

private:
    std::int64_t begin() const { return index * unit; }
    /// Where the first stretch of time after the present one begins that may hold moments; the present
    /// period's begin if this one may.
    std::int64_t nextCandidate();
    bool isDayTaken(std::int64_t dayNumber);
    void takeMoments();

    RecurrencePattern pattern;
    /// Seconds of a period.
    std::int64_t unit;
    std::int64_t lastMoment;
    RecurrenceDayFilter days;
    RecurrenceTimes times;
    /// Counted from 1970 in units.
    std::int64_t index;
    std::int64_t judgedDay;
    bool isJudgedDayTaken;
    WallSeconds moments;
};
