#include "eventkit/CalendarContents.h"
#include "eventkit/CalendarError.h"

#include <algorithm>

// Changes that wait to be written, and how they are.

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
