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
    const ItemPart &model = occurrence.partOf(item);
    IcalComponent component = item.component(model);
    for (const char *name : {"RRULE", "RDATE", "EXRULE", "EXDATE", "RECURRENCE-ID"})
        component.removeLines(name);
    const IcalTime original = item.timeOfKey(occurrence.key);
    component.addLine(original.line("RECURRENCE-ID", component.lineEnd()));
    EventPeriod period = EventPeriod::of(model.times);
    period.start = occurrence.range ? item.startIn(model, occurrence.key) : original;
    // A date of the series that has a length of its own (RFC 5545, section 3.8.5.2) keeps it.
    if (!original.isDate() && occurrence.end != model.times.endOf(period.start))
        period.length = static_cast<qint64>((occurrence.end - occurrence.start).count());
    period.writeTo(component, model.times);
    return component;
}

/// Where an edit of an occurrence and all later ones begins with this one, it begins with the next one from
/// now on: an object has one component for each RECURRENCE-ID. Gives those that hold for none any more.
///
/// The series is not divided for this: who wrote such an edit understands it, and a division would give half
/// of the occurrences another UID for the sake of one, with which invitations and other programs lose them.
std::set<std::size_t> beginLater(IcalDocument &document, const CalendarItem &item, qint64 key)
{
    std::set<std::size_t> empty;
    for (const ItemPart &range : item.ranges()) {
        if (range.key != key)
            continue;
        const auto next = ItemExpansion::next(item, key);
        if (!next || item.rangeOf(*next) != &range) {
            empty.insert(range.childIndex);
            continue;
        }
        IcalComponent &component = *document.calendar().childAt(range.childIndex);
        writeRecurrenceId(component, item.timeOfKey(*next), range);
        EventPeriod period = EventPeriod::of(range.times);
        period.start = item.startIn(range, *next);
        period.writeTo(component, range.times);
        markChanged(component, ChangeWeight::Significant);
    }
    return empty;
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
        start =
            IcalTime::of(*after.startDate, timeFormOf(before, after, occurrence.partOf(item).times.start));
        document.calendar().removeChildrenAt(beginLater(document, item, occurrence.key));
    }
    if (document.text() != item.text())
        describeZone(document.calendar(), start);
    return {document.text(), occurrence.key};
}

SeriesEditing::Edited SeriesEditing::alone(const CalendarItem &item, const ItemOccurrence &occurrence,
                                           const QString &uid)
{
    IcalComponent component =
        occurrence.detached ? item.component(*occurrence.detached) : detachedComponent(item, occurrence);
    if (!component.line("DTSTART"))
        component.addLine(occurrence.detached->times.start.line("DTSTART", component.lineEnd()));
    component.removeLines("RECURRENCE-ID");
    component.setValue("UID", uid.toUtf8());
    markChanged(component, ChangeWeight::Significant);

    IcalDocument document = item.document();
    std::set<std::size_t> dropped;
    const auto components = document.calendar().children();
    for (std::size_t index = 0; index < components.size(); ++index) {
        if (components[index]->name() == component.name())
            dropped.insert(index);
    }
    document.calendar().removeChildrenAt(dropped);
    document.calendar().addChild(component);
    const CalendarItemPointer made = itemOf(document);
    return {document.text(), made && made->master() ? made->master()->key : occurrence.key};
}

std::optional<QByteArray> SeriesEditing::without(const CalendarItem &item, qint64 key)
{
    IcalDocument document = item.document();
    if (item.master()) {
        IcalComponent &master = *document.calendar().childAt(item.master()->childIndex);
        master.addLine(item.timeOfKey(key).line("EXDATE", master.lineEnd()));
        markChanged(master, ChangeWeight::Significant);
    }
    std::set<std::size_t> dropped = beginLater(document, item, key);
    for (const ItemPart &part : item.detached())
        if (part.key == key)
            dropped.insert(part.childIndex);
    document.calendar().removeChildrenAt(dropped);
    const CalendarItemPointer rest = itemOf(document);
    return rest && ItemExpansion::first(*rest) ? std::optional(document.text()) : std::nullopt;
}
