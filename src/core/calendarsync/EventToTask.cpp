#include "calendarsync/CalendarEvent.h"
#include "records/dates/MTDates.h"
#include "records/dates/MVDate.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"

#include <algorithm>
#include <cmath>

// What a row takes of its event. What only the organiser knows stays.

namespace {

constexpr double oneInSixDecimals = 1000000;

double cutToSixDecimals(double degrees)
{
    return std::trunc(degrees * oneInSixDecimals) / oneInSixDecimals;
}

std::shared_ptr<EntityLocation> locationOf(const EKStructuredLocation &place)
{
    const GeoLocation position = place.geoLocation.value_or(GeoLocation{});
    const double latitude = cutToSixDecimals(position.latitude);
    const double longitude = cutToSixDecimals(position.longitude);
    const auto found = DBWorker::getLocationsByLatitude(latitude, longitude, place.title);
    if (!found.isEmpty()) {
        for (int extra = 1; extra < found.size(); ++extra)
            mainContext().deleteObject(found.at(extra));
        return found.at(0);
    }
    const auto made = mainContext().insert<EntityLocation>();
    made->setTitle(place.title);
    made->setLatitude(latitude);
    made->setLongitude(longitude);
    return made;
}

void takeDates(const EKEvent &event, EntityTask &task)
{
    if (!event.startDate || !event.endDate)
        return;
    const Date start = *event.startDate;
    Date end = *event.endDate;
    TaskType type = start == end ? TaskType::EmailCall : TaskType::Appointment;
    if (event.allDay) {
        type = TaskType::ToDo;
        if (MTDates::secondOfMinute(end) == 0)
            end = end - Seconds(1);
    }
    const bool isOnOneDay = MTDates::isWithinSameDay(start, end);
    if (!isOnOneDay)
        type = TaskType::ToDo;
    task.setType(static_cast<int>(type));
    if (type == TaskType::EmailCall)
        task.setStartDate(std::nullopt);
    else
        task.setStartDate(isOnOneDay ? start : MTDates::startOfCurrentDay(start));
    task.setDueDate(end);
}

OptionalDate alertOf(const EKEvent &event, size_t place, const EntityTask &task)
{
    if (event.alarms.size() <= place)
        return std::nullopt;
    const EKAlarm &alarm = event.alarms[place];
    if (alarm.absoluteDate())
        return alarm.absoluteDate();
    return task.startDate() ? OptionalDate(*task.startDate() + Seconds(alarm.relativeOffset()))
                            : std::nullopt;
}

void takeCalendar(const EKEvent &event, EntityTask &task)
{
    if (!event.calendar)
        return;
    const EKCalendar &calendar = *event.calendar;
    task.setCalendarTitle(calendar.title);
    task.setTypeCalendarID(CalendarEvent::identifierOfCalendar(calendar));
    const EKColor color = CalendarEvent::getColorOfCalendar(calendar);
    // Single precision, as other stores of these rows have them.
    task.setColorCalendarR(static_cast<float>(color.red));
    task.setColorCalendarG(static_cast<float>(color.green));
    task.setColorCalendarB(static_cast<float>(color.blue));
    task.setColorCalendarA(static_cast<float>(color.alpha));
    const bool isOwn = !event.hasAttendees() || (event.organizer && event.organizer->isCurrentUser);
    task.setAllowsContentModifications(calendar.allowsContentModifications && isOwn);
}

} // namespace

void CalendarEvent::syncEvent(const EKEvent &event, EntityTask &toTask)
{
    toTask.setTitle(event.title.trimmed());
    const bool hasPlace = event.structuredLocation && !event.structuredLocation->title.isEmpty();
    toTask.setLocation(hasPlace ? locationOf(*event.structuredLocation) : nullptr);
    toTask.setDetails(event.notes);
    takeDates(event, toTask);
    toTask.setAlert(alertOf(event, 0, toTask));
    toTask.setSecondAlert(alertOf(event, 1, toTask));
    toTask.setDueSomeDay(false);
    takeCalendar(event, toTask);
}
