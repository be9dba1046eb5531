#pragma once

#include "eventkit/CalendarItem.h"
#include "eventkit/EKRecurrenceRule.h"

/// How times of a series follow when its occurrences are moved and perhaps take another form.
struct SeriesMove
{
    IcalTime formerStart;
    /// Any time in the new form.
    IcalTime newForm;
    /// Seconds on the wall clock.
    std::int64_t delta = 0;

    bool isNone() const;
    IcalTime moved(const IcalTime &time) const;
};

/// How an edit of an occurrence and all later ones moves them. One that is written in UTC goes by the clock
/// of its series, so that it does not drift when the clocks change.
SeriesMove moveOf(const CalendarItem &item, const ItemPart &range);
/// The body of a rule as its series needs it: UNTIL has the form of the start (RFC 5545, section 3.3.10).
QByteArray textOfRule(const EKRecurrenceRule &rule, const IcalTime &start);
/// A part of a rule replaced, or added; all else stays as it is written.
QByteArray withRulePart(const QByteArray &rule, const QByteArray &key, const QByteArray &value);
/// What becomes of UNTIL when a series is moved.
enum class EndOfMoved {
    /// The last occurrence may start on the same day as before, but not before the first.
    StaysOnItsDay,
    /// The last occurrence is the same one.
    MovesAlong,
};
/// The rule of a series that begins with an occurrence, of which so many matches come before; absent if it
/// has no others. `occurrence` is the original start, in the form of before.
std::optional<QByteArray> ruleFrom(const QByteArray &rule, int matchesBefore, const IcalTime &occurrence,
                                   const SeriesMove &move, EndOfMoved end = EndOfMoved::StaysOnItsDay);
/// The rule that ends before an occurrence, after so many matches; absent if it has none.
std::optional<QByteArray> ruleUpTo(const QByteArray &rule, int matchesBefore, const IcalTime &occurrence);
