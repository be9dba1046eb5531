#include "eventkit/CalendarContents.h"
#include "eventkit/CalendarError.h"
#include "eventkit/ItemMerge.h"

#include <algorithm>

// Changes that wait to be written, and how they are.

QString CalendarContents::keyOf(const QString &calendarIdentifier, const QString &uid)
{
    return calendarIdentifier + u'\n' + uid;
}

void CalendarContents::beginGroup()
{
    if (isJoined)
        return;
    ++group;
    groupSteps.clear();
}

void CalendarContents::dropGroup()
{
    for (auto step = groupSteps.rbegin(); step != groupSteps.rend(); ++step) {
        Pending &change = pending[step->place];
        if (step->former) {
            pendingByKey.insert(keyOf(step->former->calendarIdentifier, step->former->uid), step->place);
            change = std::move(*step->former);
        } else {
            if (pendingByKey.value(keyOf(change.calendarIdentifier, change.uid)) == step->place)
                pendingByKey.remove(keyOf(change.calendarIdentifier, change.uid));
            change.isObsolete = true;
        }
    }
    groupSteps.clear();
    forgetHeld();
}

void CalendarContents::addPending(Pending change)
{
    if (change.isOfObject())
        pendingByKey.insert(keyOf(change.calendarIdentifier, change.uid), pending.size());
    groupSteps.push_back({pending.size(), std::nullopt});
    pending.push_back(std::move(change));
}

void CalendarContents::stage(Pending change)
{
    held.remove(change.calendarIdentifier);
    const auto place = pendingByKey.constFind(keyOf(change.calendarIdentifier, change.uid));
    if (place == pendingByKey.constEnd())
        return addPending(std::move(change));
    Pending &earlier = pending[*place];
    groupSteps.push_back({*place, earlier});
    // What was to become of the object is no longer of interest, only what it was before.
    change.former = earlier.former;
    if (earlier.group == change.group) {
        earlier = std::move(change);
    } else {
        earlier.isObsolete = true;
        addPending(std::move(change));
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
    stage({Change::Put, group, calendarIdentifier, item.value()->uid(), former, item.value()});
    return std::nullopt;
}

void CalendarContents::stageRemoval(const QString &calendarIdentifier, const StoredItem &item)
{
    stage({Change::Remove, group, calendarIdentifier, item.item->uid(), item});
}

void CalendarContents::stageCalendar(const EKCalendar &calendar)
{
    forgetHeld();
    addPending({Change::UpdateCalendar, group, calendar.calendarIdentifier, {}, {}, {}, calendar});
}

void CalendarContents::stageCalendarRemoval(const QString &calendarIdentifier)
{
    forgetHeld();
    addPending({Change::RemoveCalendar, group, calendarIdentifier});
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

OptionalError CalendarContents::commitBut(std::optional<int> onlyGroup)
{
    OptionalError firstError;
    QSet<int> failedGroups;
    forgetHeld();
    groupSteps.clear();
    pendingByKey.clear();
    for (Pending &change : std::exchange(pending, {})) {
        if (change.isNothing())
            continue;
        if (onlyGroup && change.isOfObject() && change.group != *onlyGroup) {
            addPending(std::move(change));
            continue;
        }
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

// Changes that somebody keeps until they are carried out.

std::vector<ItemChange> CalendarContents::stagedChanges() const
{
    const auto textOf = [](const CalendarItemPointer &item) {
        return item ? std::optional(item->text()) : std::nullopt;
    };
    std::vector<ItemChange> changes;
    for (const Pending &change : pending) {
        if (!change.isOfObject() || change.isNothing())
            continue;
        const auto before = textOf(change.former.item);
        const auto after = textOf(change.item);
        if (before != after)
            changes.push_back({0, change.group, change.calendarIdentifier, change.uid, before, after});
    }
    return changes;
}

bool CalendarContents::hasStagedChanges() const
{
    return !pendingByKey.isEmpty();
}

void CalendarContents::forgetStaged()
{
    std::erase_if(pending, [](const Pending &change) { return change.isOfObject(); });
    pendingByKey.clear();
    groupSteps.clear();
    forgetHeld();
}

void CalendarContents::setPromises(std::vector<ItemChange> changes)
{
    if (promises.empty() && changes.empty())
        return;
    promises = std::move(changes);
    promisesByKey.clear();
    promisedItems.clear();
    promiseGroups = {0};
    while (promiseGroups.back() < promises.size()) {
        const std::size_t begin = promiseGroups.back();
        const std::size_t count = itemmerge::countTogether(std::span(promises).subspan(begin));
        for (const ItemChange &change : std::span(promises).subspan(begin, count))
            promisesByKey[keyOf(change.calendarIdentifier, change.uid)].push_back(promiseGroups.size() - 1);
        promiseGroups.push_back(begin + count);
    }
    forgetHeld();
}

Result<std::vector<StoredItem>> CalendarContents::objectsOf(const std::vector<ItemChange> &together)
{
    std::vector<StoredItem> objects;
    for (const ItemChange &change : together) {
        const auto stored = storedItem(change.calendarIdentifier, change.uid);
        if (!stored)
            return stored.error();
        const auto &damaged = known[change.calendarIdentifier].unusable;
        if (!stored.value() && std::any_of(damaged.begin(), damaged.end(), [&](const Unusable &object) {
                return !object.isUnknown() && object.mayHold(change.uid);
            }))
            return CalendarError::make(CalendarError::Unreadable,
                                       QStringLiteral("The event cannot be read at present."));
        objects.push_back(stored.value().value_or(StoredItem()));
    }
    return objects;
}

OptionalError CalendarContents::carryOut(const std::vector<ItemChange> &together)
{
    /// How often somebody else may be faster.
    constexpr int mostAttempts = 3;
    OptionalError error;
    for (int attempt = 0; attempt < mostAttempts; ++attempt) {
        const auto objects = objectsOf(together);
        if (!objects)
            return objects.error();
        std::vector<std::optional<QByteArray>> texts;
        for (const StoredItem &object : objects.value())
            texts.push_back(object.item ? std::optional(object.item->text()) : std::nullopt);
        const auto wanted = itemmerge::mergedTogether(texts, together);
        error = std::nullopt;
        for (std::size_t place = 0; place < together.size() && !error; ++place) {
            const StoredItem &present = objects.value()[place];
            if (wanted[place] == texts[place])
                continue;
            error = wanted[place]
                        ? put(together[place], present, *wanted[place])
                        : storage->remove(together[place].calendarIdentifier, present.name, present.etag);
        }
        if (!CalendarError::is(error, CalendarError::Conflict))
            return error;
    }
    return error;
}

static std::size_t countOfAlarms(const CalendarItem &item)
{
    std::size_t count = 0;
    for (const IcalComponent *component : item.document().calendar().children())
        count += static_cast<std::size_t>(std::ranges::count_if(
            component->children(), [](const IcalComponent *child) { return child->name() == "VALARM"; }));
    return count;
}

OptionalError CalendarContents::put(const ItemChange &change, const StoredItem &stored,
                                    const QByteArray &text)
{
    auto written = storage->put(change.calendarIdentifier, {stored.name, stored.etag, text}, change.uid);
    if (!written)
        return written.error();
    // An alarm that a store adds to an event by itself is taken off again; nobody has set it.
    const auto wanted = CalendarItem::fromText(text);
    if (const auto made = CalendarItem::fromText(written.value().text);
        wanted && wanted.value() && made && made.value() && countOfAlarms(*wanted.value()) == 0 &&
        countOfAlarms(*made.value()) > 0) {
        auto again =
            storage->put(change.calendarIdentifier, {written->name, written->etag, text}, change.uid);
        if (again)
            written = again;
    }
    known[change.calendarIdentifier].namesByUid.insert(change.uid, written.value().name);
    return std::nullopt;
}
