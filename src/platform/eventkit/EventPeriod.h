#pragma once

#include "eventkit/CalendarItem.h"
#include "eventkit/EKEvent.h"

/// Start and length of an event as they are to be written.
struct EventPeriod
{
    IcalTime start = {};
    /// Seconds; for an all-day event days.
    qint64 length = 0;

    /// Of an event in the form of a time; the fields must be set.
    static EventPeriod of(const EKEvent &event, const IcalTime &form);
    /// Of what is written already.
    static EventPeriod of(const ItemTimes &times);

    /// Writes DTSTART and DTEND or DURATION, where they differ from what is written. Parameters stay as long
    /// as the form does.
    void writeTo(IcalComponent &component, const ItemTimes &former) const;
    /// For a component that has no times.
    void writeTo(IcalComponent &component) const;

    bool operator==(const EventPeriod &) const = default;
};

/// Sets a time in a component and keeps the parameters that its line has, if they still hold.
/// \param former what is written there, if anything.
void writeTime(IcalComponent &component, const QByteArray &name, const IcalTime &time,
               const std::optional<IcalTime> &former);
/// The form of times by the clock of a zone: zoned for a zone that others know by its name, else UTC.
IcalTime timeFormOfZone(const QByteArray &zone);
/// The form in which the times of a changed event are written: that of before, unless all-day or zone were
/// changed.
IcalTime timeFormOf(const EKEvent &before, const EKEvent &after, const IcalTime &former);
/// Adds the description of the zone to a calendar that has none of that name.
void describeZone(IcalComponent &calendar, const IcalTime &time);
