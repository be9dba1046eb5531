#pragma once

#include "foundation/Date.h"

#include <QString>

#include <vector>

/// Dates that a rule has besides those it generates (RFC 5545, section 3.8.5.2).
struct InclusionDate
{
    std::vector<Date> dates;

    /// "RDATE:" and the dates in UTC, separated by commas.
    QString line() const;

    bool operator==(const InclusionDate &) const = default;
};
