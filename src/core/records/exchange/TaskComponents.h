#pragma once

#include "eventkit/CalendarItem.h"
#include "store/entities/Entities.h"

#include <QString>

#include <vector>

/// What stands for a task in an iCalendar file.
struct TaskObject
{
    /// All have the UID of the object: the task or series, then the occurrences that were edited alone.
    QString uid;
    std::vector<IcalComponent> components;
    /// The object of a calendar that they were taken from, which may describe zones of its own; null for
    /// none.
    CalendarItemPointer source;
};

namespace TaskComponents {

/// The UID of the object of a task: that of its event, which all rows of a series share, or else the
/// identifier of its row. What is done has left its event.
QString uidOf(const EntityTask &task);

/// The object of a task. Where a calendar has its event, that is taken with all that the calendar knows of
/// it (recurrence rule, excluded dates, edited occurrences, attendees); else the rows of the store say all.
/// An appointment becomes a VEVENT. A ToDo becomes a VTODO whose dates are days, the last of them being DUE,
/// as other programs show it; a mail or call becomes a VTODO that is due at its moment.
TaskObject of(const EntityTask &task);

/// Adds a property of the type TEXT behind all others; none for an empty text.
void putText(IcalComponent &component, const QByteArray &name, const QString &text);
/// CATEGORIES, and beside it which of them is the category and which are tags. \param tags encoded.
void putCategories(IcalComponent &component, const QString &category, const QList<QByteArray> &tags);
/// Adds what these have in common: UID, DTSTAMP and, where they are known, CREATED and LAST-MODIFIED.
void putIdentity(IcalComponent &component, const QString &uid, OptionalDate created, OptionalDate changed);
/// Adds PRIORITY, STATUS, COMPLETED and PERCENT-COMPLETE. STATUS knows no waiting task and no done event:
/// these are said in X-MORVANE-STATUS.
void putProgress(IcalComponent &component, std::optional<TaskStatus> status, std::optional<Priority> priority,
                 OptionalDate done);

} // namespace TaskComponents
