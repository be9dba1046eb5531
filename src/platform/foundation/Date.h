#pragma once

#include <chrono>
#include <compare>
#include <optional>

/// A length of time in seconds; fractions are kept.
using Seconds = std::chrono::duration<double>;

/// An instant: a double count of seconds since 2001-01-01 00:00:00 UTC (the reference date).
///
/// A date that may be missing is an `OptionalDate`; there is no sentinel value.
class Date
{
public:
    /// Seconds from the Unix epoch (1970-01-01 00:00:00 UTC) to the reference date.
    static constexpr double unixSecondsOfReferenceDate = 978307200.0;

    /// The reference date itself.
    constexpr Date() = default;

    static constexpr Date fromReferenceSeconds(double seconds)
    {
        Date date;
        date.seconds = seconds;
        return date;
    }
    static constexpr Date fromUnixSeconds(double unixSeconds)
    {
        return fromReferenceSeconds(unixSeconds - unixSecondsOfReferenceDate);
    }

    constexpr double referenceSeconds() const { return seconds; }
    constexpr double unixSeconds() const { return seconds + unixSecondsOfReferenceDate; }

    constexpr Date operator+(Seconds length) const { return fromReferenceSeconds(seconds + length.count()); }
    constexpr Date operator-(Seconds length) const { return fromReferenceSeconds(seconds - length.count()); }
    constexpr Seconds operator-(Date other) const { return Seconds(seconds - other.seconds); }

    constexpr auto operator<=>(const Date &) const = default;
    constexpr bool operator==(const Date &) const = default;

private:
    double seconds = 0;
};

using OptionalDate = std::optional<Date>;
