#pragma once

#include "eventkit/EKRecurrenceDayOfWeek.h"

#include <QString>

#include <limits>
#include <optional>

/// The values that a list of a rule may hold.
struct ValueRange
{
    int lowest;
    int highest;
    bool includesZero = true;

    constexpr bool contains(int value) const
    {
        return value >= lowest && value <= highest && (value != 0 || includesZero);
    }
};

inline constexpr ValueRange setPositionRange{-366, 366, false};
inline constexpr ValueRange yearDayRange{-366, 366, false};
inline constexpr ValueRange monthRange{1, 12};
inline constexpr ValueRange weekNumberRange{-53, 53, false};
inline constexpr ValueRange monthDayRange{-31, 31, false};
inline constexpr ValueRange anyNumber{std::numeric_limits<int>::min(), std::numeric_limits<int>::max()};

/// "SU" to "SA".
QString weekdayText(EKWeekday day);
/// Reads "SU" to "SA", and "0" for Monday to "6" for Sunday. Absent for anything else.
std::optional<EKWeekday> weekdayFromText(const QString &text);
