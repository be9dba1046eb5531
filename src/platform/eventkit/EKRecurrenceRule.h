#pragma once

#include "eventkit/EKRecurrenceDayOfWeek.h"
#include "eventkit/EKRecurrenceEnd.h"
#include "eventkit/RecurrencePattern.h"
#include "foundation/Calendar.h"

#include <QString>

#include <optional>
#include <vector>

enum class EKRecurrenceFrequency { Daily = 0, Weekly = 1, Monthly = 2, Yearly = 3 };

/// How an event of the calendar store repeats: a `RecurrencePattern` of days or more. An empty list is an
/// absent one. Values out of the ranges of RFC 5545 (section 3.3.10) are dropped one by one, and an interval
/// is brought into 1 to 32767.
class EKRecurrenceRule
{
public:
    static EKRecurrenceRule initRecurrenceWithFrequency(
        EKRecurrenceFrequency frequency, int interval,
        const std::vector<EKRecurrenceDayOfWeek> &daysOfTheWeek = {},
        const std::vector<int> &daysOfTheMonth = {}, const std::vector<int> &monthsOfTheYear = {},
        const std::vector<int> &weeksOfTheYear = {}, const std::vector<int> &daysOfTheYear = {},
        const std::vector<int> &setPositions = {}, const std::optional<EKRecurrenceEnd> &end = {});

    /// Finds the parts of a rule in a text (RFC 5545, section 3.3.10), whatever stands around them: no
    /// "RRULE:" is needed. Absent unless a frequency from daily to yearly is found. A list ends at the first
    /// character that cannot belong to it. An end date must have the form "yyyyMMdd'T'HHmmss'Z'".
    static std::optional<EKRecurrenceRule> recurrenceRuleFromString(const QString &text);

    /// The part of a pattern that such a rule can hold: no times of day. The end of a pattern in floating
    /// time is taken in the calendar. Absent for a frequency below daily.
    static std::optional<EKRecurrenceRule> fromPattern(const RecurrencePattern &pattern,
                                                       const Calendar &calendar);

    EKRecurrenceFrequency frequency() const;
    int interval() const { return rule.interval; }
    EKWeekday firstDayOfTheWeek() const { return rule.weekStart; }
    void setFirstDayOfTheWeek(EKWeekday day) { rule.weekStart = day; }
    const std::vector<EKRecurrenceDayOfWeek> &daysOfTheWeek() const { return rule.byDay; }
    const std::vector<int> &daysOfTheMonth() const { return rule.byMonthDay; }
    const std::vector<int> &monthsOfTheYear() const { return rule.byMonth; }
    const std::vector<int> &weeksOfTheYear() const { return rule.byWeekNo; }
    const std::vector<int> &daysOfTheYear() const { return rule.byYearDay; }
    const std::vector<int> &setPositions() const { return rule.bySetPos; }
    std::optional<EKRecurrenceEnd> recurrenceEnd() const;
    void setRecurrenceEnd(const std::optional<EKRecurrenceEnd> &end);

    /// A leading part, " RRULE " and the body of the rule as RFC 5545 writes it.
    QString description() const;
    /// "RRULE:" and the body.
    QString stringForICalendar() const;

    const RecurrencePattern &pattern() const { return rule; }

    bool operator==(const EKRecurrenceRule &) const = default;

private:
    explicit EKRecurrenceRule(const RecurrencePattern &pattern);

    RecurrencePattern rule;
};
