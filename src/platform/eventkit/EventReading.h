#pragma once

#include "eventkit/EKEvent.h"
#include "eventkit/EKItemOrigin.h"

/// The event that an occurrence of an item is.
EKEvent eventOf(const CalendarItemPointer &item, const ItemOccurrence &occurrence,
                const EKCalendar &calendar);
/// The component that describes an occurrence; not for one that its item does not have.
const IcalComponent &componentOf(const CalendarItem &item, const ItemOccurrence &occurrence);
/// A property such as CREATED; absent if it cannot be read.
OptionalDate dateOfLine(const CalendarItem &item, const IcalComponent &component, const QByteArray &name);
