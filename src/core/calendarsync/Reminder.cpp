#include "calendarsync/Reminder.h"

#include "eventkit/SharedEventStore.h"
#include "foundation/Localization.h"
#include "foundation/Log.h"
#include "foundation/MainLoop.h"
#include "records/dates/MVDate.h"
#include "store/queries/DBWorker.h"
#include "store/state/CoreContext.h"
#include "store/state/NotificationNames.h"

namespace {

/// How long the pairing of tasks and reminders is given.
constexpr Seconds pairingTime{0.5};

struct Pair
{
    TaskPtr task;
    EKReminder reminder;
};

void takeAlarms(const EKReminder &reminder, EntityTask &task)
{
    if (!reminder.alarms.empty())
        task.setAlert(reminder.alarms[0].absoluteDate());
    if (reminder.alarms.size() > 1)
        task.setSecondAlert(reminder.alarms[1].absoluteDate());
}

void apply(const Pair &pair)
{
    EntityTask &task = *pair.task;
    const EKReminder &reminder = pair.reminder;
    if (reminder.completionDate && *reminder.completionDate < MVDate::date())
        task.setExpirationDate(reminder.completionDate);
    task.setPriority(Reminder::taskPriorityOf(reminder.priority));
    task.setStatus(reminder.isCompleted ? TaskStatus::Done : TaskStatus::Open);
    takeAlarms(reminder, task);
    task.setDetails(reminder.notes);
    NotificationCenter::defaultCenter().post(notifications::taskChange, pair.task);
}

std::vector<Pair> pairsIn(const EKEventStore &store)
{
    std::vector<Pair> pairs;
    for (const TaskPtr &task : DBWorker::tasksHaveReminder()) {
        if (!task)
            continue;
        if (auto reminder = store.calendarItemWithIdentifier(task->remindID()); reminder && *reminder)
            pairs.push_back({task, std::move(**reminder)});
    }
    return pairs;
}

/// Runs a block with a store of its own once reminders may be used; never if they may not.
void withAccess(const std::function<void(EKEventStore &)> &block)
{
    if (!sharedCalendarBackend())
        return;
    const auto store = std::make_shared<EKEventStore>();
    if (EKEventStore::authorizationStatusForEntityType(EKEntityType::Reminder) ==
        EKAuthorizationStatus::Authorized)
        return block(*store);
    store->requestAccessToEntityType(EKEntityType::Reminder, [store, block](bool isGranted) {
        if (isGranted)
            block(*store);
    });
}

/// The task is saved all the same.
void logFailure(const OptionalError &error)
{
    if (error)
        Log::line(error->message);
}

void removeReminder(EKEventStore &store, EntityTask &task)
{
    if (task.remindID().isEmpty())
        return;
    if (const auto reminder = store.calendarItemWithIdentifier(task.remindID()); reminder && reminder.value())
        logFailure(store.removeReminder(*reminder.value(), true));
    task.setRemindID(QString());
}

EKReminder reminderOf(const EntityTask &task, const EKEventStore &store)
{
    EKReminder reminder = EKReminder::reminderWithEventStore(store);
    reminder.title = QStringLiteral("%1 %2 %3")
                         .arg(task.title(), localized(QStringLiteral("from")), QStringLiteral("Morvane"));
    if (!task.details().isEmpty())
        reminder.notes = task.details();
    reminder.priority = Reminder::reminderPriorityOf(task.priority());
    reminder.calendar = store.defaultCalendarForNewReminders();
    for (const OptionalDate &alert : {task.alert(), task.secondAlert()}) {
        if (alert)
            reminder.addAlarm(EKAlarm::alarmWithAbsoluteDate(*alert));
    }
    return reminder;
}

} // namespace

Reminder::Reminder()
    : store(std::make_shared<EKEventStore>())
{
    updataWithReminder();
    if (!sharedCalendarBackend())
        return;
    store->requestAccessToEntityType(EKEntityType::Event,
                                     [this, living = std::weak_ptr(alive)](bool isGranted) {
                                         if (!isGranted || living.expired())
                                             return;
                                         storeChanged = NotificationCenter::defaultCenter().addObserver(
                                             EKEventStoreChangedNotification, [this] { reminderChange(); });
                                     });
}

void Reminder::reminderChange()
{
    // A program in front is the source of the change.
    if (!CoreContext::current().isInFront)
        updataWithReminder();
}

void Reminder::updataWithReminder()
{
    const auto pairs = std::make_shared<std::vector<Pair>>();
    withAccess([pairs](const EKEventStore &accessible) { *pairs = pairsIn(accessible); });
    if (!sharedCalendarBackend())
        return;
    MainLoop::performDelayed(pairingTime, [pairs, living = std::weak_ptr(alive)] {
        if (living.expired() || pairs->empty())
            return;
        for (const Pair &pair : *pairs) {
            if (pair.task->context() && !pair.task->isDeleted())
                apply(pair);
        }
        DBWorker::saveOrTell();
    });
}

bool Reminder::hasAccesToReminder()
{
    if (!sharedCalendarBackend())
        return false;
    constexpr int rounds = 2;
    for (int round = 0; round < rounds; ++round) {
        switch (EKEventStore::authorizationStatusForEntityType(EKEntityType::Reminder)) {
        case EKAuthorizationStatus::Authorized:
            return true;
        case EKAuthorizationStatus::Restricted:
        case EKAuthorizationStatus::Denied:
            return false;
        case EKAuthorizationStatus::NotDetermined:
            EKEventStore().requestAccessToEntityType(EKEntityType::Reminder, [](bool) {});
        }
    }
    return false;
}

void Reminder::initReminderFromTask(const TaskPtr &task)
{
    withAccess([task](EKEventStore &accessible) {
        removeReminder(accessible, *task);
        const bool isDone = task->status() == TaskStatus::Done;
        if (isDone || (!task->alert() && !task->secondAlert()))
            return;
        EKReminder reminder = reminderOf(*task, accessible);
        logFailure(accessible.saveReminder(reminder, true));
        task->setRemindID(reminder.calendarItemIdentifier);
        DBWorker::saveOrTell();
    });
}

void Reminder::deleteReminderFromTask(const TaskPtr &task)
{
    withAccess([task](EKEventStore &accessible) { removeReminder(accessible, *task); });
}

void Reminder::changeReminderStatusFromTask(const TaskPtr &task)
{
    if (task->status() == TaskStatus::Done)
        deleteReminderFromTask(task);
    else
        initReminderFromTask(task);
    DBWorker::saveOrTell();
}

int Reminder::reminderPriorityOf(std::optional<Priority> taskPriority)
{
    switch (taskPriority.value_or(Priority::High)) {
    case Priority::None:
        return 0;
    case Priority::Low:
        return 7;
    case Priority::Medium:
        return 5;
    default:
        return 2;
    }
}

Priority Reminder::taskPriorityOf(int reminderPriority)
{
    if (reminderPriority >= 1 && reminderPriority <= 4)
        return Priority::High;
    if (reminderPriority == 5)
        return Priority::Medium;
    return reminderPriority >= 6 && reminderPriority <= 9 ? Priority::Low : Priority::None;
}
