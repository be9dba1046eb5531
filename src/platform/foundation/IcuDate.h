#pragma once

#include "foundation/Date.h"

#include <algorithm>
#include <cmath>

#include <unicode/utypes.h>

/// ICU's instants are milliseconds since 1970. Dates further away than the calendar can count in whole days
/// (some 30,000 years), and those that are no number, are brought inside.
inline constexpr double furthestSeconds = 1e12;

inline double boundedReferenceSeconds(Date date)
{
    const double seconds = date.referenceSeconds();
    return std::isnan(seconds) ? 0 : std::clamp(seconds, -furthestSeconds, furthestSeconds);
}

/// Whole seconds since 1970, rounded down.
inline double boundedUnixSeconds(Date date)
{
    return std::floor(boundedReferenceSeconds(date)) + Date::unixSecondsOfReferenceDate;
}

/// What `boundedUnixSeconds` leaves out: at least 0, below 1.
inline double fractionOfSecond(Date date)
{
    const double seconds = boundedReferenceSeconds(date);
    return seconds - std::floor(seconds);
}

inline UDate icuDate(Date date)
{
    return std::floor(boundedReferenceSeconds(date) * 1000) + Date::unixSecondsOfReferenceDate * 1000;
}

inline Date dateFromIcu(UDate milliseconds)
{
    return Date::fromReferenceSeconds((milliseconds - Date::unixSecondsOfReferenceDate * 1000) / 1000);
}
