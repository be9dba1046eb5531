#pragma once

#include "eventkit/ItemExpansion.h"

#include <QByteArray>
#include <QString>

/// Where the store found an event or reminder, and all that it knew of it then.
struct EKItemOrigin
{
    QString calendarIdentifier;
    CalendarItemPointer item;
    /// Of an event, which occurrence.
    ItemOccurrence occurrence;
};
