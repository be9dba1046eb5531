#pragma once

#include "eventkit/RecurrencePattern.h"
#include "foundation/Calendar.h"

#include <vector>

/// One occurrence of a series: what the clock shows in the zone of the series, and the instant.
struct RecurrenceInstance
{
    WallClock wallClock;
    Date date;
};

/// Expands a recurrence rule in the wall-clock time of a zone, as RFC 5545 (section 3.3.10) has it.
///
/// The first occurrence is the first match from the start on, so that a start which does not match the rule
/// is none; COUNT counts matches. A wall time that does not exist moves on by the length of the gap, and of
/// one that exists twice the first is meant, except at the start itself, which is taken as it was given.
/// Occurrences that coincide through that are given once. A fraction of a second in the start is kept.
///
/// An all-day series, or one in floating time, is expanded in the calendar of whoever looks at it. A calendar
/// costs more to make than an expansion: keep one for each zone. For one thread at a time.
class RecurrenceExpander
{
public:
    /// What is asked for; both bounds belong to it.
    struct Window
    {
        OptionalDate from = {};
        OptionalDate to = {};
        std::size_t mostInstances = 1'000'000;
    };

    RecurrenceExpander(const RecurrencePattern &rule, Date start, const Calendar &zoneCalendar);
    RecurrenceExpander(const RecurrencePattern &rule, const WallClock &start, const Calendar &zoneCalendar);

    /// What was found; not whole if the window's number of instances, or that of matches to be counted before
    /// the window, was reached.
    struct Expansion
    {
        std::vector<RecurrenceInstance> instances;
        bool isWhole = true;
    };

    /// The occurrences inside the window, ascending. Rules without COUNT start right at the window. Ends
    /// even if the rule does not: nothing comes after the year 9999 or beyond the window's number of
    /// instances, a rule with COUNT counts some hundred thousands at most, and one by hours, minutes or
    /// seconds ends where millions of them in a row do not match. Empty for a start outside the years 1 to
    /// 9999.
    Expansion expansion(const Window &window) const;
    std::vector<RecurrenceInstance> instances(const Window &window) const
    {
        return expansion(window).instances;
    }

    /// Whether an end is said: COUNT or UNTIL.
    bool isFinite() const { return pattern.count > 0 || until.has_value(); }

    static Date instantOf(const WallClock &wallClock, const Calendar &calendar);
    static WallClock wallClockOf(Date date, const Calendar &calendar);
    /// The last moment that an occurrence may have, from any form of UNTIL; absent without one.
    static OptionalDate untilInstant(const RecurrencePattern &pattern, const Calendar &calendar);

private:
    /// A window with start and end of the rule put in, and wall times that lie a little outside of it.
    struct Bounds
    {
        Date from;
        OptionalDate to;
        std::int64_t firstMoment;
        std::int64_t lastMoment;
    };
    struct Progress
    {
        int matches = 0;
        int countedBefore = 0;
        Expansion expansion;
    };

    RecurrencePattern pattern;
    Calendar calendar;
    Date startDate;
    std::int64_t startSeconds;
    double fraction;
    OptionalDate until;

    Bounds boundsOf(const Window &window) const;
    /// Adds the moments of a period; answers whether more can follow.
    bool take(const std::vector<std::int64_t> &moments, const Bounds &bounds, std::size_t most,
              Progress &progress) const;
    Date dateOf(std::int64_t wallSeconds) const;
};
