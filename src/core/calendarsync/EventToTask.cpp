#include "calendarsync/CalendarCatalogue.h"
#include "calendarsync/CalendarPass.h"
#include "calendarsync/EventPlace.h"
#include "records/dates/MVDate.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"
#include "store/queries/EventDates.h"

// What a row takes of its event. What only the organiser knows stays.

namespace {

/// The first of several alike; what lay at the others lies there from now on.
std::shared_ptr<EntityLocation> joined(const ObjectList<EntityLocation> &alike)
{
    const auto kept = alike.at(0);
    std::vector<std::shared_ptr<EntityLocation>> extras;
    for (int place = 1; place < alike.size(); ++place)
        extras.push_back(alike.at(place));
    for (const auto &extra : extras) {
        for (const TaskPtr &task : extra->task())
            task->setLocation(kept);
        mainContext().deleteObject(extra);
    }
    return kept;
}

/// The place of that title of which nobody has said where it is; its events do not tell either.
std::shared_ptr<EntityLocation> placeWithoutPosition(const QString &title)
{
    return mainContext().fetchFirst<EntityLocation>(EntityLocation::fetchRequest().where(
        Predicate::format("title = %@ and latitude = nil and longitude = nil", title)));
}

std::shared_ptr<EntityLocation> locationOf(const EKStructuredLocation &place)
{
    const GeoLocation position = eventplace::positionOf(place);
    const auto found = DBWorker::getLocationsByLatitude(position.latitude, position.longitude, place.title);
    if (!found.isEmpty())
        return joined(found);
    if (auto known = place.geoLocation ? nullptr : placeWithoutPosition(place.title))
        return known;
    const auto made = mainContext().insert<EntityLocation>();
    made->setTitle(place.title);
    made->setLatitude(position.latitude);
    made->setLongitude(position.longitude);
    return made;
}

void takeDates(const EKEvent &event, EntityTask &task)
{
    const auto taken = eventdates::of(event);
    if (!taken)
        return;
    task.setType(taken->type);
    task.setStartDate(taken->start);
    task.setDueDate(taken->due);
}

void takeAlarms(const EKEvent &event, EntityTask &task)
{
    task.setAlert(eventdates::momentOfAlarm(event, 0, task));
    task.setSecondAlert(eventdates::momentOfAlarm(event, 1, task));
}

void takeCalendar(const EKEvent &event, EntityTask &task)
{
    if (!event.calendar)
        return;
    const EKCalendar &calendar = *event.calendar;
    task.setCalendarTitle(calendar.title);
    task.setTypeCalendarID(CalendarCatalogue::identifierOfCalendar(calendar));
    const EKColor color = CalendarCatalogue::getColorOfCalendar(calendar);
    // Single precision, as other stores of these rows have them.
    task.setColorCalendarR(static_cast<float>(color.red));
    task.setColorCalendarG(static_cast<float>(color.green));
    task.setColorCalendarB(static_cast<float>(color.blue));
    task.setColorCalendarA(static_cast<float>(color.alpha));
    const bool isOwn = !event.hasAttendees() || (event.organizer && event.organizer->isCurrentUser);
    task.setAllowsContentModifications(calendar.allowsContentModifications && isOwn);
}

} // namespace

void CalendarPass::syncEvent(const EKEvent &event, EntityTask &toTask)
{
    toTask.setTitle(event.title.trimmed());
    const bool hasPlace = event.structuredLocation && !event.structuredLocation->title.isEmpty();
    toTask.setLocation(hasPlace ? locationOf(*event.structuredLocation) : nullptr);
    toTask.setDetails(event.notes);
    takeDates(event, toTask);
    takeAlarms(event, toTask);
    toTask.setDueSomeDay(false);
    takeCalendar(event, toTask);
}
