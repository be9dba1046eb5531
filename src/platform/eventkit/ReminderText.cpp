#include "eventkit/ReminderText.h"

#include "eventkit/AlarmComponents.h"
#include "eventkit/EventPeriod.h"
#include "eventkit/EventReading.h"
#include "eventkit/EventWriting.h"
#include "eventkit/IcalText.h"
#include "eventkit/SeriesParts.h"
#include "foundation/Clock.h"
#include "foundation/Region.h"

#include <algorithm>

namespace {

/// A reminder with a start has no length that could be told; alarms count from the start.
constexpr double noLength = 0;
constexpr int lowestPriority = 9;

void writeDue(IcalComponent &component, const OptionalDate &due)
{
    if (!due) {
        component.removeLines("DUE");
        return;
    }
    const IcalTime time = IcalTime::of(*due, timeFormOfZone(Region::zoneIdentifier()));
    component.replaceLines("DUE", {time.line("DUE", component.lineEnd())});
    // The two exclude each other.
    component.removeLines("DURATION");
}

void writeCompletion(IcalComponent &component, const EKReminder &after)
{
    if (!after.isCompleted) {
        component.removeLines("COMPLETED");
        component.removeLines("PERCENT-COMPLETE");
        component.setValue("STATUS", "NEEDS-ACTION");
        return;
    }
    IcalTime utc;
    utc.form = IcalTime::Form::Utc;
    component.setValue("COMPLETED", IcalTime::of(after.completionDate.value_or(Clock::now()), utc).text());
    component.setValue("PERCENT-COMPLETE", "100");
    component.setValue("STATUS", "COMPLETED");
}

void writeReminder(IcalComponent &component, const EKReminder &before, const EKReminder &after)
{
    component.changeText("SUMMARY", before.title, after.title);
    component.changeText("DESCRIPTION", before.notes, after.notes);
    if (before.priority != after.priority)
        component.setValue("PRIORITY", QByteArray::number(std::clamp(after.priority, 0, lowestPriority)));
    if (before.dueDate != after.dueDate)
        writeDue(component, after.dueDate);
    if (before.isCompleted != after.isCompleted || before.completionDate != after.completionDate)
        writeCompletion(component, after);
    if (before.alarms != after.alarms)
        AlarmComponents::write(component, after.alarms, noLength);
}

const ItemPart &partOf(const CalendarItem &item)
{
    return item.master() ? *item.master() : item.detached().front();
}

void describeZoneOfDue(IcalDocument &document, const EKReminder &reminder)
{
    if (reminder.dueDate)
        describeZone(document.calendar(),
                     IcalTime::of(*reminder.dueDate, timeFormOfZone(Region::zoneIdentifier())));
}

} // namespace

EKReminder ReminderText::read(const CalendarItem &item)
{
    const IcalComponent &component = item.component(partOf(item));
    EKReminder reminder;
    reminder.title = IcalText::decoded(component.value("SUMMARY"));
    reminder.notes = IcalText::decoded(component.value("DESCRIPTION"));
    reminder.priority = std::clamp(component.value("PRIORITY").trimmed().toInt(), 0, lowestPriority);
    reminder.dueDate = dateOfLine(item, component, "DUE");
    reminder.alarms = AlarmComponents::read(component, noLength);
    reminder.completionDate = dateOfLine(item, component, "COMPLETED");
    reminder.isCompleted =
        reminder.completionDate.has_value() || component.value("STATUS").trimmed().toUpper() == "COMPLETED";
    reminder.calendarItemIdentifier = item.uid();
    reminder.creationDate = dateOfLine(item, component, "CREATED");
    reminder.lastModifiedDate = dateOfLine(item, component, "LAST-MODIFIED");
    return reminder;
}

QByteArray ReminderText::ofNew(const EKReminder &reminder, const QString &uid)
{
    IcalDocument document = IcalDocument::create();
    IcalComponent component("VTODO", document.calendar().lineEnd());
    component.setValue("UID", uid.toUtf8());
    for (const char *name : {"DTSTAMP", "CREATED", "LAST-MODIFIED"})
        component.setValue(name, presentUtc());
    writeReminder(component, {}, reminder);
    document.calendar().addChild(component);
    describeZoneOfDue(document, reminder);
    return document.text();
}

QByteArray ReminderText::changed(const CalendarItem &item, const EKReminder &before, const EKReminder &after)
{
    IcalDocument document = item.document();
    IcalComponent &component = *document.calendar().childAt(partOf(item).childIndex);
    writeReminder(component, before, after);
    markIfChanged(component, item.component(partOf(item)));
    if (before.dueDate != after.dueDate)
        describeZoneOfDue(document, after);
    return document.text();
}
