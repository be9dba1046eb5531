#include "eventkit/SeriesEditing.h"

#include "eventkit/EventPeriod.h"
#include "eventkit/EventWriting.h"
#include "eventkit/SeriesParts.h"

namespace {

/// Writes what was changed in one event into its component.
void change(IcalComponent &component, const ItemTimes &times, const EKEvent &before, const EKEvent &after)
{
    const EventPeriod period = EventPeriod::of(after, timeFormOf(before, after, times.start));
    if (before.allDay != after.allDay || before.startDate != after.startDate ||
        before.endDate != after.endDate || before.timeZone != after.timeZone)
        period.writeTo(component, times);
    writeFields(component, before, after);
}

/// The component of an occurrence that nobody has edited yet.
IcalComponent detachedComponent(const CalendarItem &item, const ItemOccurrence &occurrence)
{
    IcalComponent component = item.component(*item.master());
    for (const char *name : {"RRULE", "RDATE", "EXRULE", "EXDATE"})
        component.removeLines(name);
    const IcalTime start = item.timeOfKey(occurrence.key);
    component.addLine(start.line("RECURRENCE-ID", component.lineEnd()));
    EventPeriod period = EventPeriod::of(item.master()->times);
    period.start = start;
    // A date of the series that has a length of its own (RFC 5545, section 3.8.5.2) keeps it.
    if (!start.isDate() && occurrence.end != item.master()->times.endOf(start))
        period.length = static_cast<qint64>((occurrence.end - occurrence.start).count());
    period.writeTo(component, item.master()->times);
    return component;
}

/// Its times as they are written now.
ItemTimes timesOf(const CalendarItem &item, const IcalComponent &component)
{
    ItemTimes times{*item.zones().time(component.line("DTSTART")),
                    item.zones().time(component.line("DTEND"))};
    if (const QByteArray duration = component.value("DURATION"); !duration.isNull())
        times.duration = IcalDuration::fromText(duration);
    return times;
}

} // namespace

SeriesEditing::Edited SeriesEditing::withOccurrence(const CalendarItem &item,
                                                    const ItemOccurrence &occurrence, const EKEvent &before,
                                                    const EKEvent &after)
{
    IcalDocument document = item.document();
    IcalTime start;
    if (occurrence.detached) {
        IcalComponent &component = *document.calendar().childAt(occurrence.detached->childIndex);
        change(component, occurrence.detached->times, before, after);
        markIfChanged(component, item.component(*occurrence.detached));
        start = IcalTime::of(*after.startDate, timeFormOf(before, after, occurrence.detached->times.start));
    } else {
        const IcalComponent original = detachedComponent(item, occurrence);
        IcalComponent component = original;
        change(component, timesOf(item, original), before, after);
        if (textOf(component) == textOf(original))
            return {item.text(), occurrence.key};
        markChanged(component, ChangeWeight::Significant);
        document.calendar().addChild(component);
        start = IcalTime::of(*after.startDate, timeFormOf(before, after, item.master()->times.start));
    }
    if (document.text() != item.text())
        describeZone(document.calendar(), start);
    return {document.text(), occurrence.key};
}

std::optional<QByteArray> SeriesEditing::without(const CalendarItem &item, qint64 key)
{
    IcalDocument document = item.document();
    if (item.master()) {
        IcalComponent &master = *document.calendar().childAt(item.master()->childIndex);
        master.addLine(item.timeOfKey(key).line("EXDATE", master.lineEnd()));
        markChanged(master, ChangeWeight::Significant);
    }
    std::set<std::size_t> dropped;
    for (const ItemPart &part : item.detached())
        if (part.key == key)
            dropped.insert(part.childIndex);
    document.calendar().removeChildrenAt(dropped);
    const CalendarItemPointer rest = itemOf(document);
    return rest && ItemExpansion::first(*rest) ? std::optional(document.text()) : std::nullopt;
}
