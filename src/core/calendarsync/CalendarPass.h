#pragma once

#include "eventkit/EKEvent.h"
#include "store/entities/Entities.h"

#include <vector>

/// From events to tasks: a pass makes the rows match the calendars.
class CalendarPass
{
public:
    CalendarPass() = delete;

    /// Overwrites what a row shows of an event.
    static void syncEvent(const EKEvent &event, EntityTask &toTask);
    /// Makes the rows match the calendars: all of them, or for one task, when no other row goes.
    static void syncCalendarToAppWithTask(const TaskPtr &task);
    /// The same for some tasks; for none it is for all.
    static void syncCalendarToAppWithTasks(const std::vector<TaskPtr> &tasks);
    /// Whether a pass is at work now: it may let other things happen while it tells how far it is. Half a
    /// pass is not to be saved. A pass for all tasks that is asked for meanwhile, or while a command is under
    /// way, follows when the main loop comes round.
    static bool isPassing();
};
