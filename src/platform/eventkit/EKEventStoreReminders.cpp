#include "eventkit/AlarmComponents.h"
#include "eventkit/CalendarContents.h"
#include "eventkit/CalendarError.h"
#include "eventkit/EKEventStore.h"
#include "eventkit/EventReading.h"
#include "eventkit/ReminderText.h"

#include <QUuid>

static EKReminder reminderOf(const CalendarItemPointer &item, const EKCalendar &calendar)
{
    EKReminder reminder = ReminderText::read(*item);
    reminder.calendar = calendar;
    reminder.origin = std::make_shared<EKItemOrigin>(EKItemOrigin{calendar.calendarIdentifier, item, {}});
    return reminder;
}

Result<std::optional<EKReminder>> EKEventStore::calendarItemWithIdentifier(const QString &identifier) const
{
    const auto calendars = calendarsForEntityType(EKEntityType::Reminder);
    if (!calendars)
        return calendars.error();
    for (const EKCalendar &calendar : calendars.value()) {
        const auto stored = contents->item(calendar.calendarIdentifier, identifier);
        if (!stored)
            return stored.error();
        if (stored.value() && stored.value()->item->entityType() == EKEntityType::Reminder)
            return std::optional(reminderOf(stored.value()->item, calendar));
    }
    return std::optional<EKReminder>();
}

Result<std::vector<EKReminder>> EKEventStore::remindersInCalendar(const EKCalendar &calendar) const
{
    const auto items = contents->items(calendar.calendarIdentifier);
    if (!items)
        return items.error();
    std::vector<EKReminder> reminders;
    for (const StoredItem &stored : items.value())
        if (stored.item->entityType() == EKEntityType::Reminder)
            reminders.push_back(reminderOf(stored.item, calendar));
    return reminders;
}

OptionalError EKEventStore::stageReminder(const EKReminder &reminder, const QString &uid)
{
    const QString &target = reminder.calendar->calendarIdentifier;
    if (!reminder.origin)
        return contents->stagePut(target, {}, ReminderText::ofNew(reminder, uid));
    const QString &from = reminder.origin->calendarIdentifier;
    const auto source = storedItem(from, uid);
    if (!source)
        return source.error();
    const EKReminder before = ReminderText::read(*reminder.origin->item);
    const QByteArray text = ReminderText::changed(*source.value().item, before, reminder);
    if (from == target)
        return text == source.value().item->text() ? std::nullopt
                                                   : contents->stagePut(target, source.value(), text);
    // There already after an attempt that could not be finished.
    const auto present = contents->item(target, uid);
    if (!present)
        return present.error();
    if (auto error = contents->stagePut(target, present.value().value_or(StoredItem()), text))
        return error;
    contents->stageRemoval(from, source.value());
    return std::nullopt;
}

OptionalError EKEventStore::saveReminder(EKReminder &reminder, bool commit)
{
    const auto calendar = writableCalendar(reminder.calendar);
    if (!calendar)
        return calendar.error();
    const QString uid =
        reminder.origin ? reminder.origin->item->uid() : QUuid::createUuid().toString(QUuid::WithoutBraces);
    if (auto error = perform([&] { return stageReminder(reminder, uid); }, commit))
        return error;
    const auto stored = storedItem(reminder.calendar->calendarIdentifier, uid);
    if (!stored)
        return stored.error();
    reminder = reminderOf(stored.value().item, calendar.value());
    return std::nullopt;
}

OptionalError EKEventStore::removeReminder(const EKReminder &reminder, bool commit)
{
    if (!reminder.origin)
        return CalendarError::make(CalendarError::Invalid,
                                   QStringLiteral("Cannot remove a reminder that was never saved."));
    EKCalendar calendar;
    calendar.calendarIdentifier = calendar.title = reminder.origin->calendarIdentifier;
    if (const auto present = writableCalendar(calendar); !present)
        return present.error();
    const Edit edit = [&]() -> OptionalError {
        const auto source = storedItem(calendar.calendarIdentifier, reminder.origin->item->uid());
        if (!source)
            return source.error();
        contents->stageRemoval(calendar.calendarIdentifier, source.value());
        return std::nullopt;
    };
    return perform(edit, commit);
}
