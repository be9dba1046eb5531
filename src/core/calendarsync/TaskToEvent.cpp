#include "calendarsync/TaskToEvent.h"

#include "calendarsync/CalendarCatalogue.h"
#include "calendarsync/EventPlace.h"
#include "calendarsync/EventWriter.h"
#include "calendarsync/SeriesRows.h"
#include "store/queries/EventDates.h"

#include <cmath>

// What an event shows of its task.

namespace {

constexpr size_t alarmsOfARow = 2;

void putPlace(const EntityTask &task, EKEvent &event)
{
    const auto place = task.location();
    if (!place || place->title().isEmpty()) {
        event.location.clear();
        event.structuredLocation.reset();
    } else if (!eventplace::isShownBy(*place, event)) {
        event.location = place->title();
        event.structuredLocation = EKStructuredLocation::locationWithTitle(place->title());
        if (place->latitude() && place->longitude())
            event.structuredLocation->geoLocation = GeoLocation{*place->latitude(), *place->longitude()};
    }
}

void putDates(const EntityTask &task, EKEvent &event)
{
    if (eventdates::areShownBy(task, event))
        return;
    event.allDay = task.type().value_or(TaskType::ToDo) == TaskType::ToDo;
    if (task.type() == TaskType::EmailCall)
        event.startDate = task.dueDate();
    else if (task.startDate())
        event.startDate = task.startDate();
    event.endDate = task.dueDate();
}

/// Whether the row has what it would take of that alarm.
bool isShown(OptionalDate alert, size_t place, const EKEvent &event, const EntityTask &task)
{
    constexpr double lessThanASecond = 0.5;
    const OptionalDate moment = eventdates::momentOfAlarm(event, place, task);
    return alert && moment && std::abs((*alert - *moment).count()) <= lessThanASecond;
}

void putAlarms(const EntityTask &task, EKEvent &event)
{
    const bool isSilent = !task.alert() && !task.secondAlert();
    const auto offsets = series::AlertOffsets::of(task);
    const auto alarmFor = [&](size_t place, const Date &alert, double offset) {
        return isShown(alert, place, event, task) ? event.alarms[place]
                                                  : EKAlarm::alarmWithRelativeOffset(offset);
    };
    std::vector<EKAlarm> alarms;
    if (task.alert())
        alarms.push_back(alarmFor(0, *task.alert(), offsets.alert));
    if (task.secondAlert())
        alarms.push_back(alarmFor(1, *task.secondAlert(), offsets.secondAlert));
    // No row shows the others. They go only with all of them.
    if (!isSilent && event.alarms.size() > alarmsOfARow)
        alarms.insert(alarms.end(), event.alarms.begin() + alarmsOfARow, event.alarms.end());
    event.alarms = std::move(alarms);
}

} // namespace

EventFields EventFields::ofColumns(const ManagedObject::ColumnSet &columns)
{
    const auto has = [&columns](auto... places) {
        return (columns.test(static_cast<size_t>(places)) || ...);
    };
    using Task = EntityTask;
    EventFields fields;
    fields.title = has(Task::column<"title">());
    fields.place = has(Task::column<"location">());
    fields.notes = has(Task::column<"details">());
    fields.dates = has(Task::column<"type">(), Task::column<"startDate">(), Task::column<"dueDate">());
    fields.rule = fields.dates || has(Task::column<"repeat">(), Task::column<"endRepeat">());
    // An alarm counts from the start.
    fields.alarms = fields.dates || has(Task::column<"alert">(), Task::column<"secondAlert">());
    fields.calendar = has(Task::column<"typeCalendarID">());
    return fields;
}

EventFields EventFields::changedIn(const EntityTask &row)
{
    return row.isInserted() ? all() : ofColumns(row.changedColumns());
}

void taskevent::put(const EntityTask &task, EKEvent &event, const EventFields &fields)
{
    if (fields.title)
        event.title = task.title();
    if (fields.place)
        putPlace(task, event);
    if (fields.notes)
        event.notes = task.details();
    if (fields.dates)
        putDates(task, event);
    if (fields.alarms)
        putAlarms(task, event);
    if (fields.calendar)
        event.calendar = CalendarCatalogue::calendarOfIdentifier(task.typeCalendarID());
}

void EventWriter::syncTask(const EntityTask &task, EKEvent &toEvent)
{
    taskevent::put(task, toEvent, EventFields::all());
}
