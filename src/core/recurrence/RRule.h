#pragma once

#include "recurrence/RecurrenceRule.h"

#include <QString>

#include <optional>

/// The text of a rule in a task: the RRULE line of RFC 5545 (section 3.8.5.3) with a DTSTART part in it.
class RRule
{
public:
    RRule() = delete;

    /// Reads "RRULE:" and its parts. Parts and values that cannot be read are left out; only without a
    /// frequency there is no rule, and a line in the log.
    ///
    /// The digits of a date are taken as the user's wall clock, at the offset from GMT that holds at this
    /// moment, although "Z" stands behind them.
    static std::optional<RecurrenceRule> ruleFromString(const QString &string);

    /// Always has an interval, a first day of the week and the start, the dates in UTC. Added and removed
    /// dates are lines of their own.
    static QString stringFromRule(const RecurrenceRule &rule);
};
