#include "eventkit/CalendarContents.h"
#include "eventkit/CalendarError.h"
#include "eventkit/EKEventStore.h"
#include "eventkit/EventPeriod.h"
#include "eventkit/EventReading.h"
#include "eventkit/EventWriting.h"
#include "eventkit/RuleLines.h"
#include "eventkit/SeriesEditing.h"

#include <QUuid>

namespace {

/// How often an edit is made again because somebody else was faster.
constexpr int mostAttempts = 3;

QString newUid()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces);
}

Error invalid(const QString &reason)
{
    return CalendarError::make(CalendarError::Invalid, reason);
}

OptionalError checkComplete(const EKEvent &event)
{
    if (!event.startDate || !event.endDate)
        return invalid(QStringLiteral("Cannot save an event without a start and an end."));
    if (*event.endDate < *event.startDate)
        return invalid(QStringLiteral("Cannot save an event that ends before it starts."));
    return std::nullopt;
}

/// The occurrence in the object as it is now; others may have changed it since the event was read.
std::optional<ItemOccurrence> presentOccurrence(const EKEvent &event, const CalendarItem &item)
{
    if (!event.origin->item->isSeries() && !item.isSeries())
        return ItemOccurrence{nullptr, item.master()->key, item.master()->times.start.instant(),
                              item.master()->times.endOf(item.master()->times.start)};
    auto found = ItemExpansion::occurrence(item, event.origin->occurrence.key);
    const bool isThere = found && (found->detached || ItemExpansion::contains(item, found->key));
    return isThere ? found : std::nullopt;
}

} // namespace

Result<EKCalendar> EKEventStore::writableCalendar(const std::optional<EKCalendar> &calendar) const
{
    if (!calendar)
        return invalid(QStringLiteral("Cannot save an event that has no calendar."));
    const auto present = calendarWithIdentifier(calendar->calendarIdentifier);
    if (!present)
        return present.error();
    if (!present.value())
        return CalendarError::make(CalendarError::NotFound,
                                   QStringLiteral("The calendar \"%1\" has gone.").arg(calendar->title));
    if (!present.value()->allowsContentModifications)
        return CalendarError::make(
            CalendarError::ReadOnly,
            QStringLiteral("The calendar \"%1\" may only be read.").arg(calendar->title));
    return *present.value();
}

Result<StoredItem> EKEventStore::storedItem(const QString &calendarIdentifier, const QString &uid) const
{
    auto stored = contents->item(calendarIdentifier, uid);
    if (!stored)
        return stored.error();
    if (!stored.value())
        return CalendarError::make(CalendarError::NotFound, QStringLiteral("The event has gone."));
    return *stored.value();
}

OptionalError EKEventStore::perform(const Edit &edit, bool commit)
{
    OptionalError error;
    for (int attempt = 0; attempt < mostAttempts; ++attempt) {
        contents->beginGroup();
        error = edit();
        if (error)
            contents->dropGroup();
        if (error || !commit)
            return error;
        error = contents->commit();
        if (!CalendarError::is(error, CalendarError::Conflict))
            break;
    }
    return error;
}

OptionalError EKEventStore::takeBack(EKEvent &event, const QString &uid, qint64 key) const
{
    const auto stored = storedItem(event.calendar->calendarIdentifier, uid);
    if (!stored)
        return stored.error();
    const CalendarItemPointer item = stored.value().item;
    if (const auto occurrence = ItemExpansion::occurrence(*item, key))
        event = eventOf(item, *occurrence, *event.calendar);
    return std::nullopt;
}

Result<StoredItem> EKEventStore::stagePlacement(const EKEvent &event, SavedAs &saved)
{
    auto source = storedItem(event.origin->calendarIdentifier, event.origin->item->uid());
    const QString &target = event.calendar->calendarIdentifier;
    if (!source || event.origin->calendarIdentifier == target)
        return source;
    const QString &uid = source.value().item->uid();
    const auto present = contents->item(target, uid);
    if (!present)
        return present.error();
    if (present.value() && !saved.isPlaced)
        return invalid(
            QStringLiteral("The calendar \"%1\" has this event already.").arg(event.calendar->title));
    saved.isPlaced = true;
    if (auto error =
            contents->stagePut(target, present.value().value_or(StoredItem()), source.value().item->text()))
        return *error;
    return storedItem(target, uid);
}

OptionalError EKEventStore::stageChangedEvent(const EKEvent &event, EKSpan span, SavedAs &saved)
{
    const auto placed = stagePlacement(event, saved);
    if (!placed)
        return placed.error();
    const CalendarItem &item = *placed.value().item;
    const auto occurrence = presentOccurrence(event, item);
    if (!occurrence)
        return CalendarError::make(CalendarError::NotFound, QStringLiteral("The event has gone."));
    saved.uid = item.uid();
    saved.key = occurrence->key;
    if (auto error = stageEdit(event, span, placed.value(), *occurrence, saved))
        return error;
    if (event.origin->calendarIdentifier == event.calendar->calendarIdentifier)
        return std::nullopt;
    // Only when all has its new place.
    const auto source = storedItem(event.origin->calendarIdentifier, item.uid());
    if (!source)
        return source.error();
    contents->stageRemoval(event.origin->calendarIdentifier, source.value());
    return std::nullopt;
}

OptionalError EKEventStore::stageEdit(const EKEvent &event, EKSpan span, const StoredItem &source,
                                      const ItemOccurrence &occurrence, SavedAs &saved)
{
    const CalendarItem &item = *source.item;
    const QString &calendar = event.calendar->calendarIdentifier;
    const EKEvent before = eventOf(event.origin->item, event.origin->occurrence, *event.calendar);
    if (!hasChanges(before, event))
        return std::nullopt;
    // Without the series itself there is no rest of it to be edited.
    const bool isOfOne = item.isSeries() && (span == EKSpan::ThisEvent || !item.master());
    if (isOfOne || !item.isSeries() || !ItemExpansion::hasOccurrenceBefore(item, occurrence.key)) {
        const auto edited = isOfOne ? SeriesEditing::withOccurrence(item, occurrence, before, event)
                                    : SeriesEditing::from(item, occurrence, before, event, item.uid());
        saved.key = edited.key;
        return edited.text == item.text() ? std::nullopt : contents->stagePut(calendar, source, edited.text);
    }
    // The new part first: if the second does not succeed there is too much, not too little.
    const auto later = SeriesEditing::from(item, occurrence, before, event, saved.newUid);
    const auto earlier = SeriesEditing::upTo(item, occurrence.key);
    const auto present = contents->item(calendar, saved.newUid);
    if (!present)
        return present.error();
    if (auto error = contents->stagePut(calendar, present.value().value_or(StoredItem()), later.text))
        return error;
    saved.uid = saved.newUid;
    saved.key = later.key;
    return contents->stagePut(calendar, source, earlier.value_or(item.text()));
}

OptionalError EKEventStore::saveEvent(EKEvent &event, EKSpan span, bool commit)
{
    if (auto error = checkComplete(event))
        return error;
    const auto calendar = writableCalendar(event.calendar);
    if (!calendar)
        return calendar.error();
    if (event.origin && event.origin->calendarIdentifier != event.calendar->calendarIdentifier) {
        EKCalendar former;
        former.calendarIdentifier = former.title = event.origin->calendarIdentifier;
        if (const auto source = writableCalendar(former); !source)
            return source.error();
    }
    event.calendar = calendar.value();
    SavedAs saved;
    const bool isNamed = !event.origin && !event.calendarItemExternalIdentifier.isEmpty();
    saved.newUid = isNamed ? event.calendarItemExternalIdentifier : newUid();
    const Edit edit = [&]() -> OptionalError {
        if (event.origin)
            return stageChangedEvent(event, span, saved);
        saved.uid = saved.newUid;
        const QByteArray text = textOfNewEvent(event, saved.uid);
        const auto item = CalendarItem::fromText(text);
        if (!item)
            return item.error();
        saved.key = item.value()->master()->key;
        return contents->stagePut(event.calendar->calendarIdentifier, {}, text);
    };
    if (auto error = perform(edit, commit))
        return error;
    return takeBack(event, saved.uid, saved.key);
}

OptionalError EKEventStore::stageRemoval(const EKEvent &event, EKSpan span)
{
    const QString &calendar = event.origin->calendarIdentifier;
    const auto source = storedItem(calendar, event.origin->item->uid());
    if (!source)
        return source.error();
    const CalendarItem &item = *source.value().item;
    const auto occurrence = presentOccurrence(event, item);
    if (!occurrence)
        return CalendarError::make(CalendarError::NotFound, QStringLiteral("The event has gone."));
    std::optional<QByteArray> rest;
    if (item.isSeries() && (span == EKSpan::ThisEvent || !item.master()))
        rest = SeriesEditing::without(item, occurrence->key);
    else if (item.isSeries() && ItemExpansion::hasOccurrenceBefore(item, occurrence->key))
        rest = SeriesEditing::upTo(item, occurrence->key);
    if (rest)
        return contents->stagePut(calendar, source.value(), *rest);
    contents->stageRemoval(calendar, source.value());
    return std::nullopt;
}

OptionalError EKEventStore::removeEvent(const EKEvent &event, EKSpan span, bool commit)
{
    if (!event.origin)
        return invalid(QStringLiteral("Cannot remove an event that was never saved."));
    EKCalendar calendar;
    calendar.calendarIdentifier = calendar.title = event.origin->calendarIdentifier;
    if (const auto present = writableCalendar(calendar); !present)
        return present.error();
    return perform([&] { return stageRemoval(event, span); }, commit);
}

OptionalError EKEventStore::moveOccurrence(EKEvent &event, const EKCalendar &to, bool commit)
{
    if (!event.origin)
        return invalid(QStringLiteral("Cannot move an event that was never saved."));
    EKCalendar former;
    former.calendarIdentifier = former.title = event.origin->calendarIdentifier;
    const auto target = writableCalendar(to);
    for (const auto &calendar : {target, writableCalendar(former)})
        if (!calendar)
            return calendar.error();
    SavedAs saved;
    saved.newUid = newUid();
    const Edit edit = [&]() -> OptionalError {
        const auto source = storedItem(former.calendarIdentifier, event.origin->item->uid());
        if (!source)
            return source.error();
        const auto occurrence = presentOccurrence(event, *source.value().item);
        if (!occurrence)
            return CalendarError::make(CalendarError::NotFound, QStringLiteral("The event has gone."));
        const auto alone = SeriesEditing::alone(*source.value().item, *occurrence, saved.newUid);
        saved.key = alone.key;
        const QString &identifier = target.value().calendarIdentifier;
        const auto present = contents->item(identifier, saved.newUid);
        if (!present)
            return present.error();
        // The new one first: if its series cannot go without it, there is too much, not too little.
        auto error = contents->stagePut(identifier, present.value().value_or(StoredItem()), alone.text);
        return error ? error : stageRemoval(event, EKSpan::ThisEvent);
    };
    if (auto error = perform(edit, commit))
        return error;
    event.calendar = target.value();
    return takeBack(event, saved.newUid, saved.key);
}
