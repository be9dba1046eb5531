#pragma once

#include "eventkit/ContentLine.h"
#include "eventkit/WallClock.h"
#include "foundation/Date.h"

#include <QByteArray>

#include <optional>

/// A date or time as iCalendar writes it (RFC 5545, sections 3.3.4 and 3.3.5).
struct IcalTime
{
    enum class Form { Date, Floating, Utc, Zoned };

    WallClock clock = {};
    Form form = Form::Floating;
    /// What the text calls the zone of a zoned time.
    QByteArray tzid = {};
    /// The name under which `calendarOfZone` knows it.
    QByteArray zone = {};

    /// Reads one value: a date, a UTC time or, without regard to zones, a floating time. Absent for anything
    /// else and for days that do not exist.
    static std::optional<IcalTime> fromText(const QByteArray &value);
    /// The moment in the form of another.
    static IcalTime of(Date date, const IcalTime &form);

    bool isDate() const { return form == Form::Date; }
    /// Of a date the start of that day for the user.
    Date instant() const;
    /// By whose clock it is; empty for the user's.
    QByteArray clockZone() const;
    /// Moved on the wall clock.
    IcalTime shifted(std::int64_t seconds) const;
    /// The day of it as a date.
    IcalTime day() const;

    /// The value as it is written.
    QByteArray text() const;
    /// The property of that name with the parameters that this form needs.
    ContentLine line(const QByteArray &name, const QByteArray &lineEnd) const;

    bool operator==(const IcalTime &) const = default;
};

/// A length of time (RFC 5545, section 3.3.6): days as the calendar counts them, and seconds.
struct IcalDuration
{
    int days = 0;
    std::int64_t seconds = 0;

    /// Absent for anything else and for more than some thousand years.
    static std::optional<IcalDuration> fromText(const QByteArray &value);
    /// As a property value; whole days and the rest.
    static QByteArray text(int totalSeconds);
    std::int64_t totalSeconds() const { return std::int64_t(days) * 86400 + seconds; }
};
