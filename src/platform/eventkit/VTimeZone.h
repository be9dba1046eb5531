#pragma once

#include "eventkit/IcalComponent.h"
#include "foundation/Date.h"

#include <optional>

// VTIMEZONE components (RFC 5545, section 3.6.5).

/// A name under which `calendarOfZone` knows the zone that the component describes, the same for the same
/// text. Empty if it describes none.
QByteArray registeredTimeZone(const IcalComponent &component);
/// What other programs need to know of a zone for times from a date on. Absent for a zone that the system
/// does not have.
std::optional<IcalComponent> timeZoneComponent(const QByteArray &zone, const QByteArray &tzid, Date from,
                                               const QByteArray &lineEnd);
