#include "eventkit/EventPeriod.h"
#include "eventkit/EventWriting.h"
#include "eventkit/SeriesEditing.h"
#include "eventkit/SeriesParts.h"

namespace {

/// How the rest of the series follows its first occurrence.
SeriesMove moveOf(const CalendarItem &item, const EKEvent &before, const EKEvent &after)
{
    const IcalTime &formerStart = item.master()->times.start;
    const IcalTime form = timeFormOf(before, after, formerStart);
    const std::int64_t from = IcalTime::of(*before.startDate, form).clock.seconds();
    const std::int64_t to = IcalTime::of(*after.startDate, form).clock.seconds();
    return {formerStart, form, to - from};
}

/// The making of the object that begins with an occurrence.
class LaterPart
{
public:
    LaterPart(const CalendarItem &source, const ItemOccurrence &from, const EKEvent &before,
              const EKEvent &after)
        : item(source)
        , occurrence(from)
        , formerEvent(before)
        , newEvent(after)
        , document(source.document())
        , start(source.timeOfKey(from.key))
        , move(moveOf(source, before, after))
        , areRulesChanged(before.recurrenceRules != after.recurrenceRules)
    {}

    SeriesEditing::Edited make(const QString &uid)
    {
        // Whatever else is in it goes along.
        for (std::size_t index = 0; IcalComponent *component = document.calendar().childAt(index); ++index)
            if (component->name() == "VEVENT")
                component->setValue("UID", uid.toUtf8());
        changeMaster();
        for (const ItemPart *part : item.edits())
            changeEdit(*part);
        document.calendar().removeChildrenAt(dropped);
        if (areRulesChanged)
            dropStrays();
        if (document.text() != item.text() && move.moved(start) != item.master()->times.start)
            describeZone(document.calendar(), move.moved(start));
        const CalendarItemPointer made = itemOf(document);
        return {document.text(), made ? made->keyOf(move.moved(start)) : occurrence.key};
    }

private:
    bool isWholeAsItWas() const { return move.isNone() && occurrence.key == item.master()->key; }

    void changeMaster()
    {
        IcalComponent &master = *document.calendar().childAt(item.master()->childIndex);
        newPeriod().writeTo(master, item.master()->times);
        changeRules(master);
        if (!isWholeAsItWas())
            for (const char *name : {"EXDATE", "RDATE"})
                rewriteDates(
                    master, name, item, [this](qint64 key) { return key >= occurrence.key; }, move);
        writeFields(master, formerEvent, newEvent);
        markIfChanged(master, item.component(*item.master()));
    }

    EventPeriod newPeriod() const
    {
        const EventPeriod present = EventPeriod::of(item.master()->times);
        const EventPeriod before = EventPeriod::of(formerEvent, move.newForm);
        const EventPeriod after = EventPeriod::of(newEvent, move.newForm);
        // Days and seconds: an occurrence edited alone can be of whole days where its series has hours.
        const bool keepsLength = before.length == after.length && formerEvent.allDay == newEvent.allDay &&
                                 item.master()->times.isAllDay() == newEvent.allDay;
        return {move.moved(newStart()), keepsLength ? present.length : after.length};
    }

    /// The rest must begin where its rule does, since intervals are counted from there. An occurrence that is
    /// none of the rule's, but a date beside it, stays such a date.
    IcalTime newStart() const
    {
        if (areRulesChanged || occurrence.key == item.master()->key)
            return start;
        const auto match = ItemExpansion::nextMatch(item, occurrence.key);
        return match ? item.timeOfKey(*match) : start;
    }

    void changeRules(IcalComponent &master)
    {
        if (areRulesChanged) {
            std::vector<ContentLine> lines;
            for (const EKRecurrenceRule &rule : newEvent.recurrenceRules)
                lines.push_back(master.makeLine("RRULE", textOfRule(rule, move.moved(start))));
            master.replaceLines("RRULE", lines);
            if (lines.empty())
                for (const char *name : {"RDATE", "EXDATE", "EXRULE"})
                    master.removeLines(name);
            return;
        }
        if (isWholeAsItWas())
            return;
        for (const char *name : {"RRULE", "EXRULE"})
            rewriteRules(master, name, [this](const QByteArray &body) {
                const auto pattern = RecurrencePattern::fromText(QString::fromLatin1(body));
                const int before = pattern ? ItemExpansion::matchesBefore(item, *pattern, occurrence.key) : 0;
                return ruleFrom(body, before, start, move);
            });
    }

    void changeEdit(const ItemPart &part)
    {
        const bool isPast = part.key < occurrence.key;
        if (isPast || (areRulesChanged && newEvent.recurrenceRules.empty())) {
            dropped.insert(part.childIndex);
            return;
        }
        IcalComponent &component = *document.calendar().childAt(part.childIndex);
        if (!move.isNone())
            writeRecurrenceId(component, move.moved(*part.recurrenceId), part);
        if (occurrence.detached && occurrence.detached->childIndex == part.childIndex) {
            const IcalTime form = timeFormOf(formerEvent, newEvent, part.times.start);
            if (!(EventPeriod::of(formerEvent, form) == EventPeriod::of(newEvent, form)) ||
                formerEvent.allDay != newEvent.allDay)
                EventPeriod::of(newEvent, form).writeTo(component, part.times);
            writeFields(component, formerEvent, newEvent);
        }
        markIfChanged(component, item.component(part));
    }

    /// A new rule may no longer have what was edited.
    void dropStrays()
    {
        const CalendarItemPointer made = itemOf(document);
        std::set<std::size_t> strays;
        for (const ItemPart *part : made->edits())
            if (!ItemExpansion::contains(*made, part->key))
                strays.insert(part->childIndex);
        document.calendar().removeChildrenAt(strays);
    }

    const CalendarItem &item;
    const ItemOccurrence &occurrence;
    const EKEvent &formerEvent;
    const EKEvent &newEvent;
    IcalDocument document;
    /// The original start of the occurrence.
    IcalTime start;
    SeriesMove move;
    bool areRulesChanged;
    std::set<std::size_t> dropped;
};

/// The series as if an edit of one of its occurrences and all later ones had been one of the whole: what it
/// says is said by the series itself, of earlier occurrences too.
CalendarItemPointer withRangeForAll(const CalendarItem &item, const ItemPart &range)
{
    const SeriesMove move = moveOf(item, range);
    IcalDocument document = item.document();
    const IcalComponent &former = item.component(*item.master());
    IcalComponent series = item.component(range);
    series.removeLines("RECURRENCE-ID");
    for (const char *name : {"RRULE", "EXRULE", "EXDATE"}) {
        std::vector<ContentLine> lines;
        for (const ContentLine *line : former.lines(name))
            lines.push_back(*line);
        series.replaceLines(name, lines);
    }
    for (const char *name : {"RRULE", "EXRULE"})
        rewriteRules(series, name, [&](const QByteArray &body) {
            return ruleFrom(body, 0, item.timeOfKey(range.key), move, EndOfMoved::MovesAlong);
        });
    rewriteDates(
        series, "EXDATE", item, [](qint64) { return true; }, move);
    std::vector<ContentLine> dates;
    for (const IcalRecurrenceDate &date : item.recurrence().dates)
        // Each is as long as the edit says.
        dates.push_back(item.startIn(range, item.keyOf(date.start)).line("RDATE", series.lineEnd()));
    series.replaceLines("RDATE", dates);
    EventPeriod period = EventPeriod::of(range.times);
    period.start = item.startIn(range, item.master()->key);
    period.writeTo(series, range.times);

    std::set<std::size_t> dropped;
    for (const ItemPart *part : item.edits()) {
        if (part->coversFuture && part->key <= range.key)
            dropped.insert(part->childIndex);
        else if (!move.isNone())
            writeRecurrenceId(*document.calendar().childAt(part->childIndex),
                              move.moved(item.timeOfKey(part->key)), *part);
    }
    *document.calendar().childAt(item.master()->childIndex) = std::move(series);
    document.calendar().removeChildrenAt(dropped);
    return itemOf(document);
}

/// The edit of an occurrence and all later ones that the rest from an occurrence on follows. Behind one that
/// was edited alone it can begin with the next: there is no other rest then, and it may have begun with this
/// one.
const ItemPart *rangeOfRest(const CalendarItem &item, const ItemOccurrence &occurrence)
{
    const ItemPart *own = item.rangeOf(occurrence.key);
    const auto next = occurrence.detached ? ItemExpansion::next(item, occurrence.key) : std::nullopt;
    const ItemPart *following = next ? item.rangeOf(*next) : nullptr;
    return following && following->key == *next ? following : own;
}

} // namespace

SeriesEditing::Edited SeriesEditing::from(const CalendarItem &item, const ItemOccurrence &occurrence,
                                          const EKEvent &before, const EKEvent &after, const QString &uid)
{
    if (!item.master())
        return withOccurrence(item, occurrence, before, after);
    const bool endsSeries = before.recurrenceRules != after.recurrenceRules && after.recurrenceRules.empty();
    if (occurrence.detached && endsSeries) {
        const auto edited = *CalendarItem::fromText(withOccurrence(item, occurrence, before, after).text);
        return alone(*edited, *ItemExpansion::occurrence(*edited, occurrence.key), uid);
    }
    const ItemPart *range = rangeOfRest(item, occurrence);
    const CalendarItemPointer own = range ? withRangeForAll(item, *range) : nullptr;
    if (!own)
        return LaterPart(item, occurrence, before, after).make(uid);
    const auto there = ItemExpansion::occurrence(*own, own->keyOf(item.startIn(*range, occurrence.key)));
    return LaterPart(*own, *there, before, after).make(uid);
}

std::optional<QByteArray> SeriesEditing::upTo(const CalendarItem &item, qint64 key)
{
    IcalDocument document = item.document();
    const IcalTime occurrence = item.timeOfKey(key);
    if (const ItemPart *part = item.master()) {
        IcalComponent &master = *document.calendar().childAt(part->childIndex);
        rewriteRules(master, "RRULE", [&](const QByteArray &body) {
            const auto pattern = RecurrencePattern::fromText(QString::fromLatin1(body));
            const int before = pattern ? ItemExpansion::matchesBefore(item, *pattern, key) : 0;
            return ruleUpTo(body, before, occurrence);
        });
        for (const char *name : {"EXDATE", "RDATE"})
            rewriteDates(master, name, item, [key](qint64 other) { return other < key; },
                         {part->times.start, part->times.start});
        markIfChanged(master, item.component(*part));
    }
    std::set<std::size_t> dropped;
    for (const ItemPart *part : item.edits())
        if (part->key >= key)
            dropped.insert(part->childIndex);
    document.calendar().removeChildrenAt(dropped);
    const CalendarItemPointer rest = itemOf(document);
    return rest && ItemExpansion::first(*rest) ? std::optional(document.text()) : std::nullopt;
}
