#include "calendarsync/CalendarEvent.h"
#include "calendarsync/SeriesRows.h"

// What an event shows of its task.

void CalendarEvent::syncTask(const EntityTask &task, EKEvent &toEvent)
{
    toEvent.title = task.title();
    const auto place = task.location();
    if (place && !place->title().isEmpty()) {
        toEvent.location = place->title();
        toEvent.structuredLocation = EKStructuredLocation::locationWithTitle(place->title());
        toEvent.structuredLocation->geoLocation =
            GeoLocation{place->latitude().value_or(0), place->longitude().value_or(0)};
    } else {
        toEvent.location.clear();
        toEvent.structuredLocation.reset();
    }
    toEvent.notes = task.details();
    toEvent.allDay = task.type().value_or(0) == static_cast<int>(TaskType::ToDo);
    const bool isMoment = task.type() == static_cast<int>(TaskType::EmailCall);
    if (isMoment)
        toEvent.startDate = task.dueDate();
    else if (task.startDate())
        toEvent.startDate = task.startDate();
    toEvent.endDate = task.dueDate();
    toEvent.alarms.clear();
    const auto offsets = series::AlertOffsets::of(task);
    if (task.alert())
        toEvent.addAlarm(EKAlarm::alarmWithRelativeOffset(offsets.alert));
    if (task.secondAlert())
        toEvent.addAlarm(EKAlarm::alarmWithRelativeOffset(offsets.secondAlert));
    toEvent.calendar = calendarOfIdentifier(task.typeCalendarID());
}
