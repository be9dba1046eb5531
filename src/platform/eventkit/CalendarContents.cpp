#include "eventkit/CalendarContents.h"

#include "eventkit/CalendarError.h"
#include "eventkit/ItemMerge.h"

#include <algorithm>
#include <set>

// What calendars hold as it is seen: with the changes that are not yet written.

CalendarContents::CalendarContents(std::shared_ptr<CalendarBackend> backend)
    : storage(std::move(backend))
{}
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
    applyPromises(calendarIdentifier, items.value());
    QSet<QString> changed;
    std::vector<StoredItem> added;
    for (const Pending &change : pending) {
        if (change.isObsolete || change.calendarIdentifier != calendarIdentifier)
            continue;
        if (change.change == Change::RemoveCalendar)
            return std::vector<StoredItem>();
        if (!change.isOfObject())
            continue;
        changed.insert(change.uid);
        if (change.item)
            added.push_back({change.former.name, change.former.etag, change.item});
    }
    if (changed.isEmpty())
        return items;
    std::erase_if(items.value(), [&](const StoredItem &item) { return changed.contains(item.item->uid()); });
    items->insert(items->end(), added.begin(), added.end());
    return items;
}

void CalendarContents::applyPromises(const QString &calendarIdentifier, std::vector<StoredItem> &items)
{
    QSet<QString> changed;
    for (const ItemChange &promise : promises) {
        if (promise.calendarIdentifier == calendarIdentifier)
            changed.insert(promise.uid);
    }
    if (changed.isEmpty())
        return;
    std::vector<StoredItem> present;
    present.reserve(items.size());
    const auto add = [&](const QString &uid, std::optional<StoredItem> stored) {
        if (auto item = promised(calendarIdentifier, uid, std::move(stored)))
            present.push_back(std::move(*item));
    };
    for (StoredItem &item : items) {
        const QString uid = item.item->uid();
        if (changed.remove(uid))
            add(uid, std::move(item));
        else
            present.push_back(std::move(item));
    }
    for (const QString &uid : std::as_const(changed))
        add(uid, std::nullopt);
    items = std::move(present);
}

std::optional<StoredItem> CalendarContents::promised(const QString &calendarIdentifier, const QString &uid,
                                                     std::optional<StoredItem> stored)
{
    if (!promisesByKey.contains(keyOf(calendarIdentifier, uid)))
        return stored;
    const auto text =
        promisedText(calendarIdentifier, uid, stored ? std::optional(stored->item->text()) : std::nullopt);
    if (!text)
        return std::nullopt;
    StoredItem present = stored.value_or(StoredItem());
    if (present.item && present.item->text() == *text)
        return present;
    CalendarItemPointer &parsedItem = promisedItems[*text];
    if (!parsedItem) {
        const auto item = CalendarItem::fromText(*text);
        if (!item || !item.value())
            return stored;
        parsedItem = item.value();
    }
    present.item = parsedItem;
    return present;
}

std::span<const ItemChange> CalendarContents::promisesOf(std::size_t promiseGroup) const
{
    const std::size_t begin = promiseGroups[promiseGroup];
    return std::span(promises).subspan(begin, promiseGroups[promiseGroup + 1] - begin);
}

std::optional<QByteArray> CalendarContents::promisedText(const QString &calendarIdentifier,
                                                         const QString &uid, std::optional<QByteArray> text)
{
    const QString key = keyOf(calendarIdentifier, uid);
    const std::vector<std::size_t> own = promisesByKey.value(key);
    const bool isAlone =
        std::ranges::all_of(own, [this](std::size_t one) { return promisesOf(one).size() == 1; });
    if (!isAlone) {
        if (const auto together = textPromisedTogether(key, text))
            return *together;
    }
    for (const std::size_t one : own) {
        for (const ItemChange &change : promisesOf(one)) {
            if (change.uid == uid && change.calendarIdentifier == calendarIdentifier)
                text = itemmerge::merged(text, change);
        }
    }
    return text;
}

std::optional<std::optional<QByteArray>>
CalendarContents::textPromisedTogether(const QString &key, const std::optional<QByteArray> &text)
{
    QHash<QString, std::optional<QByteArray>> texts = {{key, text}};
    std::set<std::size_t> concerned;
    std::vector<QString> left = {key};
    while (!left.empty()) {
        const QString next = left.back();
        left.pop_back();
        for (const std::size_t one : promisesByKey.value(next)) {
            if (!concerned.insert(one).second)
                continue;
            for (const ItemChange &change : promisesOf(one)) {
                const QString other = keyOf(change.calendarIdentifier, change.uid);
                if (texts.contains(other))
                    continue;
                const auto stored = storedItem(change.calendarIdentifier, change.uid);
                if (!stored)
                    return std::nullopt;
                texts.insert(other,
                             stored.value() ? std::optional(stored.value()->item->text()) : std::nullopt);
                left.push_back(other);
            }
        }
    }
    for (const std::size_t one : concerned) {
        std::vector<std::optional<QByteArray>> present;
        for (const ItemChange &change : promisesOf(one))
            present.push_back(texts.value(keyOf(change.calendarIdentifier, change.uid)));
        const auto wanted = itemmerge::mergedTogether(present, promisesOf(one));
        for (std::size_t place = 0; place < wanted.size(); ++place) {
            const ItemChange &change = promisesOf(one)[place];
            texts.insert(keyOf(change.calendarIdentifier, change.uid), wanted[place]);
        }
    }
    return texts.value(key);
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
    const bool isRemoved = std::ranges::any_of(pending, [&](const Pending &change) {
        return change.change == Change::RemoveCalendar && change.calendarIdentifier == calendarIdentifier;
    });
    if (isRemoved)
        return std::optional<StoredItem>();
    const auto place = pendingByKey.constFind(keyOf(calendarIdentifier, uid));
    if (place != pendingByKey.constEnd()) {
        const Pending &change = pending[*place];
        return change.item ? std::optional(StoredItem{change.former.name, change.former.etag, change.item})
                           : std::optional<StoredItem>();
    }
    auto stored = storedItem(calendarIdentifier, uid);
    return stored ? promised(calendarIdentifier, uid, std::move(stored.value())) : stored;
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
    pendingByKey.clear();
    groupSteps.clear();
    forgetHeld();
}

void CalendarContents::forgetHeld()
{
    held.clear();
    heldCalendars.reset();
}
