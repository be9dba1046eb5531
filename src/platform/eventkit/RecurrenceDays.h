#pragma once

#include "eventkit/RecurrencePattern.h"

#include <bitset>
#include <chrono>

/// A day with all that the parts of a recurrence rule look at.
struct RecurrenceDay
{
    explicit RecurrenceDay(std::chrono::sys_days date);

    /// Steps to the following day.
    void advance();

    std::chrono::sys_days date;
    int year;
    int month;
    int dayOfMonth;
    int dayOfYear;
    /// 0 is Sunday.
    int weekday;
    int daysInMonth;
    int daysInYear;

private:
    void takeMonth(std::chrono::year_month month);
};

/// Tells which days a recurrence rule takes (RFC 5545, section 3.3.10), apart from its frequency and
/// interval.
///
/// In a rule that says less than which day of its period is meant, the start adds what is missing: its
/// weekday, its day of the month, its month. Parts that the RFC excludes for a frequency limit the days
/// nevertheless. A week number is a property of a day, so that the days of week 1 at the end of December
/// count for the year in which they lie.
class RecurrenceDayFilter
{
public:
    /// Takes a pattern without invalid values.
    RecurrenceDayFilter(const RecurrencePattern &pattern, const RecurrenceDay &start);

    bool matchesMonth(int month) const { return months.none() || months.test(std::size_t(month)); }
    bool matches(const RecurrenceDay &day) const
    {
        return matchesMonth(day.month) &&
               (!monthDays.isUsed || monthDays.matches(day.dayOfMonth, day.daysInMonth)) &&
               (!yearDays.isUsed || yearDays.matches(day.dayOfYear, day.daysInYear)) &&
               (!hasWeekdays || matchesWeekday(day)) && (!weekNumbers.isUsed || matchesWeekNumber(day));
    }

private:
    /// Positions counted from the beginning and from the end.
    struct Positions
    {
        explicit Positions(const std::vector<int> &values);
        bool matches(int position, int last) const
        {
            const int positionFromEnd = last - position + 1;
            return fromBeginning.test(std::size_t(position)) || fromEnd.test(std::size_t(positionFromEnd));
        }

        bool isUsed;
        std::bitset<367> fromBeginning;
        std::bitset<367> fromEnd;
    };

    void takeMissingParts(RecurrenceUnit frequency, const RecurrenceDay &start);
    void takeWeekday(EKRecurrenceDayOfWeek day, bool countsPositions);
    bool matchesWeekday(const RecurrenceDay &day) const;
    bool matchesWeekNumber(const RecurrenceDay &day) const;

    std::bitset<13> months;
    Positions monthDays;
    Positions yearDays;
    Positions weekNumbers;
    /// 0 is Sunday.
    int weekStart;
    bool hasWeekdays = false;
    std::bitset<7> everyWeekday;
    /// Weekdays at a position of the month or year.
    std::vector<EKRecurrenceDayOfWeek> positionedWeekdays;
    bool countsInMonth;
};
