#pragma once

#include "eventkit/RecurrencePeriods.h"

/// The time parts of a recurrence rule: ascending, each value once. What a rule does not say is what its
/// start shows, for units that its frequency does not step through itself; an empty list means any value.
struct RecurrenceTimes
{
    /// Takes a pattern without invalid values. A second of 60 is taken as 59, since no day has leap seconds
    /// here.
    RecurrenceTimes(const RecurrencePattern &pattern, const WallClock &start);

    std::vector<int> hours;
    std::vector<int> minutes;
    std::vector<int> seconds;
};

/// Keeps the moments at the positions that BYSETPOS names; all of them if it names none.
void keepSetPositions(WallSeconds &moments, const std::vector<int> &positions);
