#include "eventkit/CalendarContents.h"

#include "eventkit/CalendarError.h"

#include <algorithm>

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
