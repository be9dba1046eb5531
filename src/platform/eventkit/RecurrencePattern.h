#pragma once

#include "eventkit/EKRecurrenceDayOfWeek.h"
#include "eventkit/WallClock.h"
#include "foundation/Date.h"

#include <QString>

#include <optional>
#include <vector>

enum class RecurrenceUnit { Secondly, Minutely, Hourly, Daily, Weekly, Monthly, Yearly };

/// A recurrence rule with all parts of RFC 5545 (section 3.3.10). An empty list is an absent part.
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

    /// Reads the body of an RRULE, such as "FREQ=DAILY;COUNT=3". Values out of their range and unknown parts
    /// are dropped one by one; absent if that leaves no frequency or two parts exclude each other.
    static std::optional<RecurrencePattern> fromText(const QString &body);
    /// The body of an RRULE. Values out of their range are left out, and an interval is at most 32767.
    QString text() const;

    /// The same for a series of whole days, whose end some write as a moment: the day that is written counts.
    RecurrencePattern ofWholeDays() const;

    /// The pattern without values that are out of their range, and with an interval of at least 1.
    RecurrencePattern withoutInvalidValues() const;

    bool operator==(const RecurrencePattern &) const = default;
};
