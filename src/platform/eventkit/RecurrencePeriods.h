#pragma once

#include "eventkit/RecurrencePattern.h"

#include <cstdint>
#include <memory>
#include <vector>

/// Moments on the wall clock in the seconds of `WallClock`, ascending, each once.
using WallSeconds = std::vector<std::int64_t>;

/// The last moment that any recurrence reaches, on the wall clock.
inline const std::int64_t endOfTime = WallClock{9999, 12, 31, 23, 59, 59}.seconds();

/// Steps through the periods of a recurrence rule (its years, weeks, minutes, ...) and gives the moments that
/// the rule takes in each (RFC 5545, section 3.3.10): BYSETPOS applied, COUNT and UNTIL not. The period of
/// the start comes whole, with moments before the start.
class RecurrencePeriods
{
public:
    virtual ~RecurrencePeriods() = default;

    /// For a pattern without invalid values; nothing comes after `last`, nor after the year 9999.
    static std::unique_ptr<RecurrencePeriods> create(const RecurrencePattern &pattern, std::int64_t start,
                                                     std::int64_t last);

    /// Leaves out the periods that end before a moment.
    virtual void skipTo(std::int64_t moment) = 0;
    /// The moments of the next period that has any. Empty at the end, and when so many periods had none that
    /// there is no use in going on.
    virtual const WallSeconds &next() = 0;
};
