#pragma once

/// The days of the week as the calendar store counts them.
enum class EKWeekday { Sunday = 1, Monday, Tuesday, Wednesday, Thursday, Friday, Saturday };

inline constexpr int daysOfAWeek = 7;

/// A day of the week in a recurrence rule (RFC 5545, section 3.3.10, BYDAY).
struct EKRecurrenceDayOfWeek
{
    EKWeekday dayOfTheWeek = EKWeekday::Monday;
    /// 0 for every such day; 2 for the second one, -1 for the last one of the month or year. Range -53 to 53.
    int weekNumber = 0;

    bool operator==(const EKRecurrenceDayOfWeek &) const = default;
};
