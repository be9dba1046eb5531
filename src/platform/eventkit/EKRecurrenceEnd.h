#pragma once

#include "foundation/Date.h"

#include <algorithm>

/// Where a recurrence rule ends: after a date or after a number of occurrences.
class EKRecurrenceEnd
{
public:
    /// An occurrence at the end date itself still counts.
    static EKRecurrenceEnd recurrenceEndWithEndDate(Date endDate) { return {endDate, 0}; }
    /// A count below 1 is taken as 1: a rule has its first occurrence.
    static EKRecurrenceEnd recurrenceEndWithOccurrenceCount(int occurrenceCount)
    {
        return {std::nullopt, std::max(1, occurrenceCount)};
    }

    /// Absent in an end by count.
    OptionalDate endDate() const { return end; }
    /// 0 in an end by date.
    int occurrenceCount() const { return count; }

    bool operator==(const EKRecurrenceEnd &) const = default;

private:
    EKRecurrenceEnd(OptionalDate endDate, int occurrenceCount)
        : end(endDate)
        , count(occurrenceCount)
    {}

    OptionalDate end;
    int count;
};
