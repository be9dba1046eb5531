#pragma once

#include "eventkit/CalendarItem.h"
#include "eventkit/EKReminder.h"

/// Reminders as VTODO components.
class ReminderText
{
public:
    /// All fields but calendar and origin.
    static EKReminder read(const CalendarItem &item);
    static QByteArray ofNew(const EKReminder &reminder, const QString &uid);
    /// The text of the item with the fields written in which two reminders differ; its own text if there are
    /// none.
    static QByteArray changed(const CalendarItem &item, const EKReminder &before, const EKReminder &after);
};
