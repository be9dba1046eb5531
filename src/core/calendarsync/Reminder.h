#pragma once

#include "eventkit/EKEventStore.h"
#include "foundation/NotificationCenter.h"
#include "store/entities/Entities.h"

#include <memory>

/// Links tasks to items of the desktop's reminders, through `remindID` of the task. Main thread only.
class Reminder
{
public:
    /// Reads the linked reminders, and watches them once the calendars may be used.
    Reminder();

    EKEventStore &eventStore() { return *store; }
    /// The reminders changed: another program did that if this one is not in front.
    void reminderChange();
    /// Reads the linked reminders into their tasks, half a second later.
    void updataWithReminder();

    /// Whether reminders may be used; may ask the user.
    static bool hasAccesToReminder();
    /// Replaces the task's reminder by one of its present values; none for a task that is done or has no
    /// alert.
    static void initReminderFromTask(const TaskPtr &task);
    static void deleteReminderFromTask(const TaskPtr &task);
    static void changeReminderStatusFromTask(const TaskPtr &task);

    /// Between the priorities of tasks and of reminders (0 to 9). Not inverses of each other.
    static int reminderPriorityOf(std::optional<Priority> taskPriority);
    static Priority taskPriorityOf(int reminderPriority);

private:
    std::shared_ptr<EKEventStore> store;
    Observation storeChanged;
    /// Lives as long as this object, for what comes later.
    std::shared_ptr<bool> alive = std::make_shared<bool>(true);
};
