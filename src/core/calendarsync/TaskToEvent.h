#pragma once

#include "eventkit/EKEvent.h"
#include "foundation/Error.h"
#include "store/entities/Entities.h"
#include "store/entities/TaskValues.h"

/// What of a task its event is to take over. Only what the user has changed goes out: somebody else may have
/// changed the rest of the event since the row was last brought up to date.
struct EventFields
{
    bool title = false;
    bool place = false;
    bool notes = false;
    bool dates = false;
    bool alarms = false;
    bool calendar = false;
    bool rule = false;

    static EventFields all() { return {true, true, true, true, true, true, true}; }
    /// What was changed in a row since the last commit; of a new row, everything.
    static EventFields changedIn(const EntityTask &row);
    /// What these columns of a row stand for.
    static EventFields ofColumns(const ManagedObject::ColumnSet &columns);
};

namespace taskevent {

/// Whether no event stands for such a row: it is done, or has no date to stand at. Of a ToDo that is the
/// start.
bool isOffCalendar(const EntityTask &row);

/// Copies the fields of a task to its event. What the event says already stays as it is there: it can hold
/// more than a row can show, such as the hours of an event over midnight or the sound of an alarm.
void put(const EntityTask &task, EKEvent &event, const EventFields &fields);

/// Writes some fields of a row to its event, which stands on a day; the row takes what the event has of the
/// others. A row that names no event gets one with all fields, under the identifier given. A row whose event
/// has gone is left to the next pass. An error if that cannot be told, or the event cannot be written.
OptionalError write(EntityTask &row, const EventFields &fields, Span span, OptionalDate day,
                    const QString &identifier);
/// Removes the event of an identifier from the calendar that a row named, if it stands there, or with an
/// empty name from any; of a series the one of that day, and with the span those after it.
OptionalError remove(const QString &identifier, const QString &calendar, Span span, OptionalDate day);

} // namespace taskevent
