#pragma once

#include <compare>
#include <cstdint>

/// Of a day whose clock is not changed.
inline constexpr std::int64_t secondsOfADay = 86400;

/// What a clock on the wall and the calendar beside it show, in no zone in particular.
struct WallClock
{
    int year = 2001;
    int month = 1;
    int day = 1;
    int hour = 0;
    int minute = 0;
    int second = 0;

    /// From the seconds that have passed since 1970-01-01 00:00 if no clock was ever changed.
    static WallClock fromSeconds(std::int64_t seconds);
    /// The same seconds back. Fields out of range carry over, except the month.
    std::int64_t seconds() const;

    auto operator<=>(const WallClock &) const = default;
    bool operator==(const WallClock &) const = default;
};
