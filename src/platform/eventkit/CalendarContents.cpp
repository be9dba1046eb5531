#include "eventkit/CalendarContents.h"

#include "eventkit/CalendarError.h"
#include "foundation/Log.h"

#include <algorithm>

CalendarContents::CalendarContents(std::shared_ptr<CalendarBackend> backend)
    : storage(std::move(backend))
{}

void CalendarContents::reportOnce(const QString &calendarIdentifier, const CalendarObject &object,
                                  const QString &reason)
{
    const QString key = calendarIdentifier + u'/' + object.name + u'\n' + reason;
    if (reported.contains(key))
        return;
    reported.insert(key);
    Log::line(QStringLiteral("Cannot use %1/%2: %3.").arg(calendarIdentifier, object.name, reason));
}

bool CalendarContents::Unusable::mayHold(const QString &uid) const
{
    if (isUnknown())
        return true;
    QByteArray unfolded = text + '\n';
    unfolded.replace("\r", "").replace("\n ", "").replace("\n\t", "");
    return formerUid == uid || unfolded.contains(':' + uid.toUtf8() + '\n');
}

/// The backend itself reports what it cannot read.
CalendarItemPointer CalendarContents::parsed(const QString &calendarIdentifier, const CalendarObject &object)
{
    if (object.etag.isEmpty())
        return nullptr;
    const auto &former = known[calendarIdentifier].byName;
    const auto same = former.constFind(object.name);
    if (same != former.constEnd() && same->etag == object.etag)
        return same->item;
    const auto item = CalendarItem::fromText(object.text);
    if (item)
        return item.value();
    reportOnce(calendarIdentifier, object, item.error().message);
    return nullptr;
}

CalendarContents::Unusable CalendarContents::unusable(const QString &calendarIdentifier,
                                                      const CalendarObject &object)
{
    const Known &former = known[calendarIdentifier];
    const CalendarItemPointer item = former.byName.value(object.name).item;
    return {object.text, item ? item->uid() : former.unusable.value(object.name).formerUid};
}

Result<std::vector<StoredItem>> CalendarContents::storedItems(const QString &calendarIdentifier)
{
    const QByteArray stampOfNames = storage->stampOfNames(calendarIdentifier);
    auto objects = storage->objects(calendarIdentifier);
    if (!objects)
        return objects.error();
    std::sort(objects->begin(), objects->end(),
              [](const CalendarObject &one, const CalendarObject &other) { return one.name < other.name; });
    Known present{{}, {}, stampOfNames, {}};
    present.byName.reserve(static_cast<qsizetype>(objects->size()));
    present.namesByUid.reserve(static_cast<qsizetype>(objects->size()));
    std::vector<StoredItem> items;
    items.reserve(objects->size());
    for (const CalendarObject &object : objects.value()) {
        const CalendarItemPointer item = parsed(calendarIdentifier, object);
        present.byName.insert(object.name, {object.etag, item});
        if (!item) {
            present.unusable.insert(object.name, unusable(calendarIdentifier, object));
            continue;
        }
        if (present.namesByUid.contains(item->uid())) {
            reportOnce(calendarIdentifier, object, QStringLiteral("its UID is that of another object"));
            continue;
        }
        present.namesByUid.insert(item->uid(), object.name);
        items.push_back({object.name, object.etag, item});
    }
    known[calendarIdentifier] = std::move(present);
    return items;
}

/// Whether a calendar can have no UID that it had not when it was read. Objects that could not be used are
/// looked at again: they may have been mended in their places.
bool CalendarContents::hasSameNames(const QString &calendarIdentifier)
{
    const Known &calendar = known[calendarIdentifier];
    if (calendar.stampOfNames.isEmpty() || calendar.stampOfNames != storage->stampOfNames(calendarIdentifier))
        return false;
    const QStringList unusable = calendar.unusable.keys();
    return std::all_of(unusable.begin(), unusable.end(), [&](const QString &name) {
        const auto object = storage->object(calendarIdentifier, name);
        return object && object.value() && object.value()->etag == calendar.byName.value(name).etag;
    });
}

Result<std::optional<StoredItem>> CalendarContents::storedItem(const QString &calendarIdentifier,
                                                               const QString &uid)
{
    const auto &calendar = known[calendarIdentifier];
    const QString name = calendar.namesByUid.value(uid);
    if (!name.isEmpty()) {
        const auto object = storage->object(calendarIdentifier, name);
        if (!object)
            return object.error();
        const auto item = object.value() ? parsed(calendarIdentifier, *object.value()) : nullptr;
        if (item && item->uid() == uid) {
            known[calendarIdentifier].byName.insert(name, {object.value()->etag, item});
            return std::optional(StoredItem{name, object.value()->etag, item});
        }
    } else if (hasSameNames(calendarIdentifier)) {
        return std::optional<StoredItem>();
    }
    const auto items = storedItems(calendarIdentifier);
    if (!items)
        return items.error();
    for (const StoredItem &stored : items.value())
        if (stored.item->uid() == uid)
            return std::optional(stored);
    return std::optional<StoredItem>();
}

Result<std::vector<EKCalendar>> CalendarContents::presentCalendars()
{
    auto found = storage->calendars();
    if (!found)
        return found;
    for (const Pending &change : pending) {
        const auto isMeant = [&](const EKCalendar &calendar) {
            return calendar.calendarIdentifier == change.calendarIdentifier;
        };
        if (change.change == Change::RemoveCalendar)
            std::erase_if(found.value(), isMeant);
        else if (change.change == Change::UpdateCalendar)
            std::replace_if(found->begin(), found->end(), isMeant, change.calendar);
    }
    return found;
}

Result<std::vector<StoredItem>> CalendarContents::presentItems(const QString &calendarIdentifier)
{
    auto items = storedItems(calendarIdentifier);
    if (!items)
        return items;
    for (const Pending &change : pending) {
        if (change.calendarIdentifier != calendarIdentifier || change.change == Change::UpdateCalendar)
            continue;
        if (change.change == Change::RemoveCalendar)
            return std::vector<StoredItem>();
        const QString uid = (change.item ? change.item : change.former.item)->uid();
        std::erase_if(items.value(), [&](const StoredItem &item) { return item.item->uid() == uid; });
        if (change.item)
            items->push_back({change.former.name, change.former.etag, change.item});
    }
    return items;
}

Result<std::vector<EKCalendar>> CalendarContents::calendars()
{
    if (heldCalendars)
        return *heldCalendars;
    auto found = presentCalendars();
    if (found && holds > 0)
        heldCalendars = found.value();
    return found;
}

Result<const CalendarContents::Held *> CalendarContents::heldItems(const QString &calendarIdentifier)
{
    if (const auto present = held.constFind(calendarIdentifier); present != held.constEnd())
        return &*present;
    auto items = presentItems(calendarIdentifier);
    if (!items)
        return items.error();
    Held taken{std::move(items.value()), {}};
    for (std::size_t index = 0; index < taken.items.size(); ++index)
        taken.byUid.insert(taken.items[index].item->uid(), index);
    return &*held.insert(calendarIdentifier, taken);
}

Result<std::vector<StoredItem>> CalendarContents::items(const QString &calendarIdentifier)
{
    if (holds == 0)
        return presentItems(calendarIdentifier);
    const auto found = heldItems(calendarIdentifier);
    return found ? Result<std::vector<StoredItem>>(found.value()->items) : found.error();
}

Result<std::optional<StoredItem>> CalendarContents::item(const QString &calendarIdentifier,
                                                         const QString &uid)
{
    auto found = presentItem(calendarIdentifier, uid);
    const auto &unusable = known[calendarIdentifier].unusable;
    const bool isDamaged = std::any_of(unusable.begin(), unusable.end(), [&uid](const Unusable &object) {
        return !object.isUnknown() && object.mayHold(uid);
    });
    if (found && !found.value() && isDamaged)
        return CalendarError::make(CalendarError::Unreadable,
                                   QStringLiteral("The event cannot be read at present."));
    return found;
}

Result<std::optional<StoredItem>> CalendarContents::presentItem(const QString &calendarIdentifier,
                                                                const QString &uid)
{
    if (holds > 0) {
        const auto found = heldItems(calendarIdentifier);
        if (!found)
            return found.error();
        const auto index = found.value()->byUid.constFind(uid);
        return index == found.value()->byUid.constEnd() ? std::optional<StoredItem>()
                                                        : std::optional(found.value()->items[*index]);
    }
    for (auto change = pending.rbegin(); change != pending.rend(); ++change) {
        if (change->calendarIdentifier != calendarIdentifier || change->change == Change::UpdateCalendar)
            continue;
        if (change->change == Change::RemoveCalendar)
            return std::optional<StoredItem>();
        if (change->item && change->item->uid() == uid)
            return std::optional(StoredItem{change->former.name, change->former.etag, change->item});
        if (change->former.item && change->former.item->uid() == uid)
            return std::optional<StoredItem>();
    }
    return storedItem(calendarIdentifier, uid);
}

bool CalendarContents::mayBeUnusable(const QString &uid)
{
    const auto all = calendars();
    if (!all)
        return true;
    return std::any_of(all.value().begin(), all.value().end(), [&](const EKCalendar &calendar) {
        if (!items(calendar.calendarIdentifier))
            return true;
        const auto &unusable = known[calendar.calendarIdentifier].unusable;
        return std::any_of(unusable.begin(), unusable.end(),
                           [&uid](const Unusable &object) { return object.mayHold(uid); });
    });
}

void CalendarContents::release()
{
    if (--holds == 0)
        forgetHeld();
}

void CalendarContents::reset()
{
    pending.clear();
    forgetHeld();
}

void CalendarContents::forgetHeld()
{
    held.clear();
    heldCalendars.reset();
}

std::vector<CalendarContents::Pending>::iterator
CalendarContents::pendingFor(const QString &calendarIdentifier, const QString &uid)
{
    return std::find_if(pending.begin(), pending.end(), [&](const Pending &change) {
        const CalendarItemPointer &item = change.item ? change.item : change.former.item;
        return change.calendarIdentifier == calendarIdentifier && item && item->uid() == uid;
    });
}

void CalendarContents::stage(Pending change, const QString &uid)
{
    held.remove(change.calendarIdentifier);
    const auto earlier = pendingFor(change.calendarIdentifier, uid);
    if (earlier == pending.end()) {
        pending.push_back(std::move(change));
        return;
    }
    // What was to become of the object is no longer of interest, only what the backend has of it.
    change.former.name = earlier->former.name;
    change.former.etag = earlier->former.etag;
    if (earlier->group == change.group) {
        *earlier = std::move(change);
    } else {
        pending.erase(earlier);
        pending.push_back(std::move(change));
    }
}

OptionalError CalendarContents::stagePut(const QString &calendarIdentifier, const StoredItem &former,
                                         const QByteArray &text)
{
    const auto item = CalendarItem::fromText(text);
    if (!item)
        return item.error();
    if (!item.value())
        return CalendarError::make(CalendarError::Invalid, QStringLiteral("The event has no start."));
    stage({Change::Put, group, calendarIdentifier, former, item.value()}, item.value()->uid());
    return std::nullopt;
}

void CalendarContents::stageRemoval(const QString &calendarIdentifier, const StoredItem &item)
{
    stage({Change::Remove, group, calendarIdentifier, item}, item.item->uid());
}

void CalendarContents::stageCalendar(const EKCalendar &calendar)
{
    forgetHeld();
    pending.push_back({Change::UpdateCalendar, group, calendar.calendarIdentifier, {}, {}, calendar});
}

void CalendarContents::stageCalendarRemoval(const QString &calendarIdentifier)
{
    forgetHeld();
    pending.push_back({Change::RemoveCalendar, group, calendarIdentifier});
}

OptionalError CalendarContents::write(const Pending &change)
{
    switch (change.change) {
    case Change::UpdateCalendar:
        return storage->updateCalendar(change.calendar);
    case Change::RemoveCalendar:
        return storage->removeCalendar(change.calendarIdentifier);
    case Change::Remove:
        // An object that was made and removed again before it was written.
        if (change.former.name.isEmpty())
            return std::nullopt;
        return storage->remove(change.calendarIdentifier, change.former.name, change.former.etag);
    case Change::Put:
        break;
    }
    const auto written =
        storage->put(change.calendarIdentifier, {change.former.name, change.former.etag, change.item->text()},
                     change.item->uid());
    if (!written)
        return written.error();
    noteWritten(change, written.value());
    return std::nullopt;
}

/// What was written need not be searched for.
void CalendarContents::noteWritten(const Pending &change, const CalendarObject &written)
{
    Known &calendar = known[change.calendarIdentifier];
    calendar.namesByUid.insert(change.item->uid(), written.name);
    if (written.text == change.item->text())
        calendar.byName.insert(written.name, {written.etag, change.item});
}

OptionalError CalendarContents::commit()
{
    OptionalError firstError;
    QSet<int> failedGroups;
    forgetHeld();
    for (const Pending &change : std::exchange(pending, {})) {
        const bool isHeldBack =
            failedGroups.contains(change.group) || (firstError && change.change == Change::RemoveCalendar);
        if (isHeldBack)
            continue;
        if (auto error = write(change)) {
            failedGroups.insert(change.group);
            firstError = firstError ? firstError : error;
        }
    }
    return firstError;
}
