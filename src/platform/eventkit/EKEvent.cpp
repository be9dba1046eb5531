#include "eventkit/EKEvent.h"

#include "eventkit/EKItemOrigin.h"
#include "eventkit/EKReminder.h"
#include "foundation/Region.h"

#include <algorithm>

EKEvent EKEvent::eventWithEventStore(const EKEventStore & /*eventStore*/)
{
    EKEvent event;
    event.timeZone = Region::zoneIdentifier();
    return event;
}

bool EKEvent::isOfSeries() const
{
    return origin && origin->item->isSeries();
}

void EKEvent::removeAlarm(const EKAlarm &alarm)
{
    if (const auto found = std::find(alarms.begin(), alarms.end(), alarm); found != alarms.end())
        alarms.erase(found);
}

EKReminder EKReminder::reminderWithEventStore(const EKEventStore & /*eventStore*/)
{
    return {};
}

EKCalendar EKCalendar::calendarForEntityType(EKEntityType entityType, const EKEventStore & /*eventStore*/)
{
    EKCalendar calendar;
    calendar.allowedEntityTypes = {entityType};
    return calendar;
}
