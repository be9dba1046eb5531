#pragma once

#include "foundation/Calendar.h"

#include <QString>

#include <vector>

/// Dates that are taken out of a rule (RFC 5545, section 3.8.5.1).
struct ExclusionDate
{
    std::vector<Date> dates;
    /// How exactly a date must agree to be taken out: the same day, the same hour, ...
    CalendarUnit component = CalendarUnit::Second;

    bool excludes(Date date, const Calendar &calendar) const;

    /// "EXDATE:" and the dates in UTC, separated by commas.
    QString line() const;

    bool operator==(const ExclusionDate &) const = default;
};
