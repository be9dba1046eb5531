#pragma once

#include "eventkit/RecurrencePeriods.h"

struct icalrecur_iterator_impl;

/// The moments of a rule as libical's iterator finds them, one at a time.
///
/// `isRightFor` knows the plain rules for which the iterator of version 3.0 can be relied on. Of others it
/// loses occurrences or the phase of the interval: days counted from the end of a month in daily rules, week
/// numbers and days of the year beside other parts, positions in a set, weeks at an interval, a
/// start that is not itself on a day of its weekly rule, hours and minutes, and skipping ahead in hourly
/// rules.
class IcalPeriods : public RecurrencePeriods
{
public:
    static bool isRightFor(const RecurrencePattern &pattern, std::int64_t start, std::int64_t last);

    /// For a pattern without invalid values; nothing comes after `last`.
    IcalPeriods(const RecurrencePattern &pattern, std::int64_t start, std::int64_t last);
    ~IcalPeriods() override;
    IcalPeriods(const IcalPeriods &) = delete;
    IcalPeriods &operator=(const IcalPeriods &) = delete;

    void skipTo(std::int64_t moment) override;
    const WallSeconds &next() override;

private:
    std::int64_t startMoment;
    std::int64_t lastMoment;
    icalrecur_iterator_impl *iterator;
    WallSeconds moments;
};
