#pragma once

#include "eventkit/EKEvent.h"
#include "store/entities/Entities.h"

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

/// Copies the fields of a task to its event. What the event says already stays as it is there: it can hold
/// more than a row can show, such as the hours of an event over midnight or the sound of an alarm.
void put(const EntityTask &task, EKEvent &event, const EventFields &fields);

/// Writes some fields of a row to its event, without which nothing happens; the row takes what the event has
/// of the others.
void write(EntityTask &row, const EventFields &fields);

} // namespace taskevent
