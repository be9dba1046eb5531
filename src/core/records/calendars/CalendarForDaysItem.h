#pragma once

#include "foundation/Date.h"

#include <QString>

#include <memory>
#include <vector>

class MVTask;

/// A task as a bar over the days of one row of a calendar: a week, or one row of a month.
///
/// A plain value, made anew whenever the calendar is read.
struct CalendarForDaysItem
{
    CalendarForDaysItem() = default;
    /// The item of a task, which fills all that does not depend on the shown days.
    explicit CalendarForDaysItem(std::shared_ptr<MVTask> wanted);

    /// Whether the task is an Email/Call, which has one moment and no span.
    bool startDueDate = false;
    /// The lane, counted from 1; -1 until `CalendarManager::sortedEvents` has placed the item.
    qint64 row = -1;
    /// Length of the task in whole seconds; negative for one that is due before it starts, 1 where a date is
    /// missing, a quarter hour for an Email/Call.
    qint64 workSeconds = 1;
    /// The first column of the bar among those shown, 0 to 6.
    qint64 column = 0;
    QString title;
    /// How many columns the bar covers from `column` on. A bar that covers the whole row goes on to the
    /// task's due day, so that it may be more than what is shown; less than 1 where the due day comes first.
    qint64 duration = 0;
    /// How many days the whole task takes, shown or not.
    qint64 durationEvent = 1;
    /// Where the bar begins among the shown days: at the task's start, or at the first shown day.
    OptionalDate startDate;

    /// The working copy of the task.
    const std::shared_ptr<MVTask> &obj() const { return task; }
    /// Makes it the item of another task, as yet without a lane.
    void setObj(std::shared_ptr<MVTask> wanted);

private:
    std::shared_ptr<MVTask> task;
};

using CalendarForDaysItems = std::vector<CalendarForDaysItem>;
