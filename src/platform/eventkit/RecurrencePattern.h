#pragma once

#include "eventkit/EKRecurrenceDayOfWeek.h"
#include "eventkit/WallClock.h"
#include "foundation/Date.h"

#include <QString>

#include <optional>
#include <vector>

enum class RecurrenceUnit { Secondly, Minutely, Hourly, Daily, Weekly, Monthly, Yearly };

/// A recurrence rule with all parts of RFC 5545 (section 3.3.10). An empty list is an absent part. It is the
/// one form in which rules are read, written and expanded; `EKRecurrenceRule` holds one.
struct RecurrencePattern
{
    RecurrenceUnit frequency = RecurrenceUnit::Daily;
    int interval = 1;
    EKWeekday weekStart = EKWeekday::Monday;

    /// How many occurrences there are; 0 for no such limit.
    int count = 0;
    /// The last moment that an occurrence may have: UNTIL as a UTC time.
    OptionalDate until = {};
    /// The same on the wall clock of the series: UNTIL as a floating time or, with `isUntilDate`, as a date,
    /// whose whole day still counts.
    std::optional<WallClock> localUntil = {};
    bool isUntilDate = false;

    std::vector<int> bySetPos = {};
    std::vector<int> byYearDay = {};
    std::vector<int> byMonth = {};
    std::vector<int> byWeekNo = {};
    std::vector<int> byMonthDay = {};
    std::vector<EKRecurrenceDayOfWeek> byDay = {};
    std::vector<int> byHour = {};
    std::vector<int> byMinute = {};
    std::vector<int> bySecond = {};

    /// Reads the body of an RRULE (RFC 5545, section 3.3.10), such as "FREQ=DAILY;COUNT=3", in capital or
    /// small letters. Values out of their range and unknown parts are dropped one by one. Of a part that
    /// comes twice, and of COUNT and UNTIL, the first counts; a value that comes twice in a list counts once.
    /// Weekdays come in the order of the week. Absent if no frequency is left.
    static std::optional<RecurrencePattern> fromText(const QString &body);
    /// The body of an RRULE, without INTERVAL and WKST where they say what holds anyway. Values out of their
    /// range are left out, a value that comes twice is written once, and an interval is at most 32767, since
    /// other programs have no room for more. COUNT excludes UNTIL.
    QString text() const;

    /// Reads the value of one part: "BYDAY" and "MO,-1FR". Letters must be capitals, without spaces.
    /// Unreadable values of a list are dropped, and those out of range except hours, minutes and seconds; an
    /// interval below 1 is 1. A list is replaced by what is readable of it. False if that is nothing, or if
    /// it is no part of a rule.
    bool readPart(const QString &key, const QString &value);
    /// The value of one part as it is written, by the same ranges. INTERVAL and WKST always have one; empty
    /// for another part that the rule does not have.
    QString part(const QString &key) const;

    /// The same for a series of whole days, whose end some write as a moment: the day that is written counts.
    RecurrencePattern ofWholeDays() const;

    /// The pattern without values that are out of their range, and with an interval of at least 1.
    RecurrencePattern withoutInvalidValues() const;

    bool operator==(const RecurrencePattern &) const = default;
};
