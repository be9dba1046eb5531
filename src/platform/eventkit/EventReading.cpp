#include "eventkit/EventReading.h"

#include "eventkit/AlarmComponents.h"
#include "eventkit/IcalText.h"
#include "eventkit/ParticipantLines.h"
#include "eventkit/WallClockZone.h"

namespace {

std::optional<GeoLocation> geoLocationOf(const QByteArray &value)
{
    const QList<QByteArray> parts = value.split(';');
    bool isLatitude = false;
    bool isLongitude = false;
    if (parts.size() != 2)
        return std::nullopt;
    const GeoLocation location{parts[0].trimmed().toDouble(&isLatitude),
                               parts[1].trimmed().toDouble(&isLongitude)};
    const bool isOnEarth = std::abs(location.latitude) <= 90 && std::abs(location.longitude) <= 180;
    return isLatitude && isLongitude && isOnEarth ? std::optional(location) : std::nullopt;
}

EKEventStatus statusOf(const QByteArray &text)
{
    return text == "CONFIRMED"   ? EKEventStatus::Confirmed
           : text == "TENTATIVE" ? EKEventStatus::Tentative
           : text == "CANCELLED" ? EKEventStatus::Canceled
                                 : EKEventStatus::None;
}

void takePlace(EKEvent &event, const IcalComponent &component)
{
    event.location = IcalText::decoded(component.value("LOCATION"));
    if (event.location.isEmpty())
        return;
    event.structuredLocation = EKStructuredLocation::locationWithTitle(event.location);
    event.structuredLocation->geoLocation = geoLocationOf(component.value("GEO"));
}

void takeTimes(EKEvent &event, const CalendarItem &item, const ItemOccurrence &occurrence)
{
    const ItemPart &part = occurrence.partOf(item);
    event.allDay = part.times.isAllDay();
    event.startDate = occurrence.start;
    event.endDate = event.allDay ? occurrence.end - Seconds(1) : occurrence.end;
    event.timeZone = (occurrence.range ? item.startIn(part, occurrence.key) : part.times.start).clockZone();
    event.occurrenceDate = item.isSeries() ? item.timeOfKey(occurrence.key).instant() : occurrence.start;
    event.isDetached = occurrence.detached != nullptr;
}

void takeIdentity(EKEvent &event, const CalendarItem &item, const IcalComponent &component)
{
    event.calendarItemExternalIdentifier = event.eventIdentifier = item.uid();
    if (event.isDetached)
        event.eventIdentifier +=
            QStringLiteral("/RID=") + QString::fromLatin1(component.value("RECURRENCE-ID"));
    event.creationDate = dateOfLine(item, component, "CREATED");
    event.lastModifiedDate = dateOfLine(item, component, "LAST-MODIFIED");
}

std::vector<EKRecurrenceRule> rulesOf(const CalendarItem &item)
{
    std::vector<EKRecurrenceRule> rules;
    for (const RecurrencePattern &pattern : item.recurrence().rules) {
        const Calendar &calendar = calendarOfZone(item.master()->times.start.clockZone());
        if (const auto rule = EKRecurrenceRule::fromPattern(pattern, calendar))
            rules.push_back(*rule);
    }
    return rules;
}

} // namespace

OptionalDate dateOfLine(const CalendarItem &item, const IcalComponent &component, const QByteArray &name)
{
    const auto time = item.zones().time(component.line(name));
    return time ? OptionalDate(time->instant()) : std::nullopt;
}

const IcalComponent &componentOf(const CalendarItem &item, const ItemOccurrence &occurrence)
{
    return item.component(occurrence.partOf(item));
}

EKEvent eventOf(const CalendarItemPointer &item, const ItemOccurrence &occurrence, const EKCalendar &calendar)
{
    const IcalComponent &component = componentOf(*item, occurrence);
    EKEvent event;
    event.calendar = calendar;
    event.title = IcalText::decoded(component.value("SUMMARY"));
    event.notes = IcalText::decoded(component.value("DESCRIPTION"));
    takePlace(event, component);
    takeTimes(event, *item, occurrence);
    takeIdentity(event, *item, component);
    event.alarms = AlarmComponents::read(component, (occurrence.end - occurrence.start).count());
    event.recurrenceRules = rulesOf(*item);
    event.status = statusOf(component.value("STATUS").trimmed().toUpper());
    event.availability = component.value("TRANSP").trimmed().toUpper() == "TRANSPARENT"
                             ? EKEventAvailability::Free
                             : EKEventAvailability::Busy;
    event.organizer = organizerOf(component, calendar.ownerAddresses);
    event.attendees = attendeesOf(component, calendar.ownerAddresses);
    event.origin =
        std::make_shared<EKItemOrigin>(EKItemOrigin{calendar.calendarIdentifier, item, occurrence});
    return event;
}
