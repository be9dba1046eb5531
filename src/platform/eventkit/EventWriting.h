#pragma once

#include "eventkit/CalendarItem.h"
#include "eventkit/EKEvent.h"

/// How weighty a change is for those who were invited (RFC 5545, section 3.8.7.4).
enum class ChangeWeight { Minor, Significant };

/// Writes the fields in which two events differ, other than times, calendar and rules.
void writeFields(IcalComponent &component, const EKEvent &before, const EKEvent &after);
/// Whether two copies of an event differ in anything that a save writes, the calendar aside.
bool hasChanges(const EKEvent &before, const EKEvent &after);
/// Notes that a component was changed now: DTSTAMP, LAST-MODIFIED and for a significant change SEQUENCE.
void markChanged(IcalComponent &component, ChangeWeight weight);
/// The text of a new object for an event with start and end.
QByteArray textOfNewEvent(const EKEvent &event, const QString &uid);
/// The present moment as a property value.
QByteArray presentUtc();
