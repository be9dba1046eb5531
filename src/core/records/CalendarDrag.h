#pragma once

#include "records/copies/MVTask.h"

/// The two dates of a task that is moved about in a calendar.
struct TaskDates
{
    OptionalDate start, due;

    bool operator==(const TaskDates &) const = default;

    static TaskDates of(const MVTask &task) { return {task.startDate, task.dueDate}; }
    /// Gives a copy these dates. Its alerts keep their distance from the date that they belong to.
    void putInto(MVTask &task) const;
};

/// What a task's dates become when it is moved or resized in a calendar. Nothing is saved.
namespace CalendarDrag {

enum class Edge { Start, Due };

/// Whether a task may be moved at all: neither one that is done, nor one of a calendar that cannot be
/// written, nor a repeating one while edits of those are barred.
bool isMovable(const MVTask &task);

/// A task of the timed grids begins at another moment and keeps its length; an Email/Call has one moment.
TaskDates movedTo(const MVTask &task, Date start);
/// The same with one of its ends moved, which stays a distance away from the other one.
TaskDates resizedTo(const MVTask &task, Edge edge, Date moment, Seconds least);
/// A ToDo is moved by days, from the first moment of its first day to the last one of its last.
TaskDates movedByDays(const MVTask &task, int days);
/// The same with one of its ends; absent if nothing of the task would be left.
std::optional<TaskDates> resizedByDays(const MVTask &task, Edge edge, int days);
/// A task from elsewhere is planned at a moment of a day: what has a time begins there, a ToDo is for that
/// day. It keeps its length, or takes the usual one. What was for some day is no longer.
void planAt(MVTask &task, Date moment);
/// The same for a day: what has a time keeps it, or is for nine o'clock.
void planOn(MVTask &task, Date day);
/// Both dates move by calendar days, each at its time of day. A missing start is read as the due date.
TaskDates shiftedByDays(const MVTask &task, int days);

} // namespace CalendarDrag
