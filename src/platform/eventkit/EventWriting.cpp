#include "eventkit/EventWriting.h"

#include "eventkit/AlarmComponents.h"
#include "eventkit/EventPeriod.h"
#include "eventkit/RuleLines.h"
#include "eventkit/UtcDateTime.h"
#include "foundation/Clock.h"

#include <QLocale>

namespace {

QString titleOfPlace(const EKEvent &event)
{
    return event.structuredLocation ? event.structuredLocation->title : QString();
}

std::optional<GeoLocation> positionOf(const EKEvent &event)
{
    return event.structuredLocation ? event.structuredLocation->geoLocation : std::nullopt;
}

QByteArray geoText(const GeoLocation &location)
{
    const auto number = [](double value) {
        return QByteArray::number(value, 'f', QLocale::FloatingPointShortest);
    };
    return number(location.latitude) + ';' + number(location.longitude);
}

void writePlace(IcalComponent &component, const EKEvent &before, const EKEvent &after)
{
    const bool isPlainChanged = before.location != after.location;
    const QString title = isPlainChanged                                ? after.location
                          : titleOfPlace(before) != titleOfPlace(after) ? titleOfPlace(after)
                                                                        : before.location;
    component.changeText("LOCATION", before.location, title);
    const auto position = positionOf(after);
    if (position == positionOf(before))
        return;
    if (position)
        component.setValue("GEO", geoText(*position));
    else
        component.removeLines("GEO");
}

double lengthOf(const EKEvent &event)
{
    const Seconds lastSecond(event.allDay ? 1 : 0);
    return event.startDate && event.endDate ? (*event.endDate + lastSecond - *event.startDate).count() : 0;
}

} // namespace

QByteArray presentUtc()
{
    return UtcDateTime::string(Clock::now()).toLatin1();
}

void writeFields(IcalComponent &component, const EKEvent &before, const EKEvent &after)
{
    component.changeText("SUMMARY", before.title, after.title);
    component.changeText("DESCRIPTION", before.notes, after.notes);
    writePlace(component, before, after);
    if (before.availability != after.availability)
        component.setValue("TRANSP",
                           after.availability == EKEventAvailability::Free ? "TRANSPARENT" : "OPAQUE");
    if (before.alarms != after.alarms)
        AlarmComponents::write(component, after.alarms, lengthOf(before));
}

bool hasChanges(const EKEvent &before, const EKEvent &after)
{
    const auto fields = [](const EKEvent &event) {
        return std::tie(event.title, event.location, event.structuredLocation, event.notes, event.allDay,
                        event.startDate, event.endDate, event.timeZone, event.alarms, event.recurrenceRules,
                        event.availability);
    };
    return fields(before) != fields(after);
}

void markChanged(IcalComponent &component, ChangeWeight weight)
{
    component.setValue("DTSTAMP", presentUtc());
    component.setValue("LAST-MODIFIED", presentUtc());
    if (weight == ChangeWeight::Significant)
        component.setValue("SEQUENCE", QByteArray::number(component.value("SEQUENCE").toInt() + 1));
}

QByteArray textOfNewEvent(const EKEvent &event, const QString &uid)
{
    IcalDocument document = IcalDocument::create();
    IcalComponent component("VEVENT", document.calendar().lineEnd());
    component.setValue("UID", uid.toUtf8());
    for (const char *name : {"DTSTAMP", "CREATED", "LAST-MODIFIED"})
        component.setValue(name, presentUtc());
    const EventPeriod period =
        EventPeriod::of(event, timeFormOf({}, event, IcalTime{{}, IcalTime::Form::Date}));
    period.writeTo(component);
    for (const EKRecurrenceRule &rule : event.recurrenceRules)
        component.addLine(component.makeLine("RRULE", textOfRule(rule, period.start)));
    writeFields(component, {}, event);
    document.calendar().addChild(component);
    describeZone(document.calendar(), period.start);
    return document.text();
}
