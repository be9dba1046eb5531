#include "calendarsync/CalendarEvent.h"
#include "calendarsync/RecordsTransaction.h"
#include "records/TaskFormChoices.h"
#include "records/TaskFormState.h"
#include "records/TaskManager.h"
#include "records/TaskMerge.h"
#include "records/copies/TaskColumns.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"

#include <QScopedValueRollback>

// Editing and saving a task in a form.

bool TaskFormState::canEdit() const
{
    return task.status != TaskStatus::Done && allowsModifyEvent();
}

/// Whether the task's event is in the calendar of its name, where it stays, chosen or not.
static bool hasEventThere(const MVTask &task)
{
    return task.task() && !task.calendarID.isEmpty() && task.typeCalendarID == task.task()->typeCalendarID();
}

/// The calendar may have been given up, renamed or removed since it was chosen for the task. Nobody would see
/// the task there, so that it goes where new tasks go.
std::optional<EKCalendar> TaskFormState::calendarToSaveIn()
{
    const auto named = CalendarEvent::calendarOfIdentifier(task.typeCalendarID);
    if (TaskFormChoices::isCalendar(named) || hasEventThere(task)) {
        // It may have been renamed meanwhile.
        if (named)
            task.typeCalendarID = CalendarEvent::identifierOfCalendar(*named);
        return named;
    }
    const auto usual = CalendarEvent::getDefaultAccessCalendar();
    const auto calendar = TaskFormChoices::isCalendar(usual) ? usual : std::nullopt;
    setCalendar(calendar ? CalendarEvent::identifierOfCalendar(*calendar) : QString());
    if (!calendar)
        task.calendarTitle.clear();
    return calendar;
}

/// What a task keeps of its calendar besides the name.
void TaskFormState::takeCalendar()
{
    if (task.typeCalendarID.isEmpty())
        return;
    const auto calendar = calendarToSaveIn();
    if (calendar)
        TaskManager::takeValues(task, *calendar);
}

bool TaskFormState::save()
{
    if (!canSave())
        return false;
    const MVTask before = task;
    takeCalendar();
    const QScopedValueRollback pause(savePause, true);
    const SaveEnd end = TaskManager::saveTaskOfForm(task);
    if (end == SaveEnd::Saved)
        isUncommitted = false;
    else if (end == SaveEnd::GivenUp)
        task = before;
    else if (!before.task() && task.task())
        takeBackNewRow(before);
    else
        isUncommitted = mainContext().hasChanges();
    return end == SaveEnd::Saved;
}

/// A new task that could not be stored is none until the next try, which may never come.
void TaskFormState::takeBackNewRow(const MVTask &before)
{
    const TaskPtr row = task.task();
    if (!isGone()) {
        CalendarEvent::removeEventCalendarFromTask(row, Span::FutureTasks, true);
    }
    task = before;
}

TaskFormState::EditEnd TaskFormState::finishEdit()
{
    followRow();
    // Its row has the values of a save that could not be committed, and still waits for it.
    const bool isWaiting = isUncommitted && mainContext().hasChanges();
    if (!isWaiting && !task.isChangedTask())
        return EditEnd::Unchanged;
    if (!isGone() && CalendarEvent::hasLostOccurrence(*task.task())) {
        CalendarEvent::syncCalendarToAppWithTask(task.task());
        if (isGone())
            return EditEnd::Gone;
        followRow();
    }
    if (!save())
        return EditEnd::Refused;
    takeBase();
    return isGone() ? EditEnd::Removed : EditEnd::Saved;
}

void TaskFormState::changeStatusNow(bool done)
{
    const MVTask before = task;
    SaveEnd end;
    {
        const QScopedValueRollback pause(savePause, true);
        RecordsTransaction transaction(QStringLiteral("Change Status"));
        end = task.changeStatusType(transaction, done ? TaskStatus::Done : TaskStatus::Open);
        if (end == SaveEnd::Saved)
            TaskManager::commit(transaction, task);
    }
    if (end == SaveEnd::GivenUp) {
        task = before;
        return note();
    }
    // What the rules refused has not happened.
    if (task.task())
        task.status = task.task()->status();
    takeBase();
    note();
}

bool TaskFormState::isGone() const
{
    const TaskPtr &row = task.task();
    // Every stored task knows when it was made; a row that is not there any more knows nothing.
    return !row || row->isDeleted() || !row->context() || (row->title().isEmpty() && !row->creationDate());
}

void TaskFormState::rollback()
{
    task.rollback();
    takeBase();
    note();
}

/// From here on the row is asked for its changes.
void TaskFormState::takeBase()
{
    base = MVTask(task.task());
}

void TaskFormState::followRow()
{
    if (isGone())
        return;
    const MVTask present(task.task());
    const bool hasFollowed = TaskMerge::follow(task, base, present);
    base = present;
    if (hasFollowed && changed)
        changed();
}

// Drafts

bool TaskFormState::isEdited() const
{
    if (!task.task())
        return touched;
    bool isSame = true;
    taskcolumns::forEach([this, &isSame](const auto &column) {
        if (column.difference == taskcolumns::Difference::Counts)
            isSame = isSame && taskcolumns::isSame(task.*column.member, base.*column.member);
    });
    return !isSame;
}

bool TaskFormState::isChanged()
{
    followRow();
    return task.isChangedTask();
}

QByteArray TaskFormState::encodedDraft() const
{
    if (!isEdited())
        return {};
    TaskDraft kept = draft();
    kept.isOfSample = DBWorker::isSample();
    return kept.encoded();
}

TaskDraft TaskFormState::draft() const
{
    return {.record = DBWorker::getIdFromObject(task.task()), .edited = task, .base = base};
}

void TaskFormState::resume(const TaskDraft &draft)
{
    if (isGone())
        return;
    const MVTask present(task.task());
    taskcolumns::forEach([&](const auto &column) {
        if (column.follows != taskcolumns::Follows::Nothing)
            task.*column.member = draft.edited.*column.member;
    });
    TaskMerge::follow(task, draft.base, present);
    base = present;
    note();
}
