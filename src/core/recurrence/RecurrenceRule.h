#pragma once

#include "eventkit/EKRecurrenceEnd.h"
#include "eventkit/RecurrencePattern.h"
#include "foundation/Calendar.h"
#include "foundation/Clock.h"
#include "recurrence/ExclusionDate.h"
#include "recurrence/InclusionDate.h"
#include "recurrence/RecurrenceFrequency.h"

#include <optional>
#include <vector>

/// A repetition as the recurrence editor works on it. The lists may hold values out of their ranges; these
/// are neither written nor expanded.
class RecurrenceRule
{
public:
    explicit RecurrenceRule(RecurrenceFrequency baseUnit)
        : frequency(baseUnit)
    {}

    /// Its zone is that of the wall clock on which the occurrences lie.
    Calendar calendar = Calendar::current();
    RecurrenceFrequency frequency;
    /// Units between occurrences; below 1 it counts as 1.
    int interval = 1;
    EKWeekday firstDayOfWeek = EKWeekday::Monday;
    Date startDate = Clock::now();
    std::optional<EKRecurrenceEnd> recurrenceEnd;
    std::vector<int> bysetpos;
    std::vector<int> byyearday;
    std::vector<int> bymonth;
    std::vector<int> byweekno;
    std::vector<int> bymonthday;
    std::vector<EKWeekday> byweekday;
    std::vector<int> byhour;
    std::vector<int> byminute;
    std::vector<int> bysecond;
    std::optional<InclusionDate> rdate;
    std::optional<ExclusionDate> exdate;

    /// The rule of a pattern (RFC 5545, section 3.3.10) with its lists ascending, from now on. It has no days
    /// at a position of the month or year and no end in floating time; these are left out.
    static RecurrenceRule fromPattern(const RecurrencePattern &pattern);
    /// The form in which the rule is expanded and written, values out of their ranges included. The start and
    /// the added and removed dates are no part of it.
    RecurrencePattern pattern() const;

    /// The rule as a task of that date has it. A single weekday, day of the month or month of the year gives
    /// way to that of the date, by which its series begins. A day that is counted from the end of the month,
    /// and is that of the date, stays.
    RecurrenceRule fittedTo(Date date) const;
    /// Whether a day of BYMONTHDAY is counted from the end of the month (-1 for the last), and is that of the
    /// date.
    static bool isDayFromEnd(int monthDay, Date date, const Calendar &calendar);

    /// The occurrences from the start to the end of the rule, ascending, by RFC 5545 (section 3.3.10) in the
    /// wall-clock time of `calendar`. The first is the first that matches, and a count counts matches. A
    /// rule without an end has no such answer: empty.
    std::vector<Date> allOccurrences() const;

    /// The same from `begin` to `end`, both included, of a rule with or without an end. Nothing lies before
    /// the start of the rule or behind its end date, wherever the bounds are; added dates excepted.
    std::vector<Date> occurrencesBetween(Date begin, Date end) const;
};
