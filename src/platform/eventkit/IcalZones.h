#pragma once

#include "eventkit/IcalComponent.h"
#include "eventkit/IcalTime.h"

#include <QHash>

#include <vector>

/// One entry of an RDATE: a moment, and for a PERIOD its own end.
struct IcalRecurrenceDate
{
    IcalTime start;
    std::optional<IcalTime> end = {};
    std::optional<IcalDuration> duration = {};
};

/// Reads the times of one iCalendar text, whose zones are those of the system where it has one of that name,
/// then those of the VTIMEZONE components. A time in a zone that nobody knows counts as floating, which is
/// logged once for each name.
class IcalZones
{
public:
    explicit IcalZones(const IcalComponent &calendar);

    /// The time of a property such as DTSTART; absent if it cannot be read.
    std::optional<IcalTime> time(const ContentLine *line) const;
    /// The times of a list such as EXDATE; those that cannot be read are left out.
    std::vector<IcalTime> times(const ContentLine &line) const;
    /// The entries of an RDATE.
    std::vector<IcalRecurrenceDate> recurrenceDates(const ContentLine &line) const;

private:
    std::optional<IcalTime> time(const QByteArray &value, const QByteArray &tzid) const;
    QByteArray zoneOf(const QByteArray &tzid) const;

    /// By what the text calls them.
    QHash<QByteArray, QByteArray> embedded;
};
