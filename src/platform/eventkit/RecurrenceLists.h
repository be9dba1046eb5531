#pragma once

#include "eventkit/RecurrencePattern.h"

#include <array>

/// A part of a rule that is a list of numbers, with the numbers that RFC 5545 (section 3.3.10) allows in it.
struct RecurrenceList
{
    const char *key;
    std::vector<int> RecurrencePattern::*values;
    int lowest;
    int highest;

    /// Hours, minutes and seconds begin at 0. Lists that reach below it count from the end, and have no 0.
    constexpr bool allows(int value) const
    {
        return value >= lowest && value <= highest && (value != 0 || isOfTime());
    }
    constexpr bool isOfTime() const { return lowest == 0; }
};

/// In the order in which rules are written.
inline constexpr std::array<RecurrenceList, 8> recurrenceLists = {{
    {"BYSECOND", &RecurrencePattern::bySecond, 0, 60},
    {"BYMINUTE", &RecurrencePattern::byMinute, 0, 59},
    {"BYHOUR", &RecurrencePattern::byHour, 0, 23},
    {"BYMONTHDAY", &RecurrencePattern::byMonthDay, -31, 31},
    {"BYYEARDAY", &RecurrencePattern::byYearDay, -366, 366},
    {"BYWEEKNO", &RecurrencePattern::byWeekNo, -53, 53},
    {"BYMONTH", &RecurrencePattern::byMonth, 1, 12},
    {"BYSETPOS", &RecurrencePattern::bySetPos, -366, 366},
}};
