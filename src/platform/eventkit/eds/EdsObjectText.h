#pragma once

#include "eventkit/eds/EdsComponent.h"

// The components of a UID, as the daemon has them, and the iCalendar texts that are made of them.

/// What a text is for the daemon.
struct EdsObject
{
    /// The event itself first.
    EdsComponents components;
    /// The VTIMEZONEs without which the daemon would take times of the components for UTC.
    QByteArrayList zones;
};

/// The error says why the text is no object: unreadable, or not of one UID.
Result<EdsObject> edsObjectFromText(const QByteArray &text);

/// Whether the daemon knows a zone by its own means.
bool isKnownToDaemon(const QByteArray &tzid);
/// A VCALENDAR of these parts, each from BEGIN to END.
QByteArray edsCalendarText(const QByteArrayList &zones, const EdsComponents &components);
/// The same for components with the same properties.
QByteArray edsEtag(const EdsComponents &components);
/// The event itself first, edited occurrences in a fixed order.
void sortComponents(EdsComponents &components);
