#pragma once

#include "eventkit/EKCalendar.h"
#include "records/DatePickerState.h"
#include "records/NewTaskRequest.h"
#include "records/TaskDraft.h"
#include "records/TaskFields.h"
#include "records/TaskInvitation.h"
#include "records/copies/MVTask.h"
#include "recurrence/CustomRepeat.h"
#include "recurrence/RepeatPicker.h"

#include <functional>

/// A task while it is edited in a form: the working copy, and what the change of one field does to others and
/// to the rows that are shown. Main thread only.
class TaskFormState
{
public:
    /// A new task with what it begins with.
    explicit TaskFormState(const NewTaskRequest &request);
    /// A stored task.
    explicit TaskFormState(const TaskPtr &task);
    /// A new task with what an earlier form was left with, be it of a new task or of one that is gone.
    explicit TaskFormState(const TaskDraft &draft);

    TaskFormState(const TaskFormState &) = delete;
    TaskFormState &operator=(const TaskFormState &) = delete;

    /// Called after each change, once for each field that it reached; not while a save runs.
    std::function<void(TaskField)> fieldChanged;
    /// The due picker is to open, since an appointment needs both dates.
    std::function<void()> dueDateWanted;

    const MVTask &currentTask() const { return task; }

    void setTitle(const QString &title);
    void setDetails(const QString &details);
    /// The calendar by the name that tasks have for it.
    void setCalendar(const QString &typeCalendarID);
    void setType(const QString &word);
    void setCategory(const CategoryPtr &category);
    void setStatus(TaskStatus status);
    void setDone(bool done);
    void setPriority(Priority priority);
    void setLocation(const std::shared_ptr<EntityLocation> &location);
    /// The company follows that of the contact.
    void setDelegate(const ContactPtr &contact);
    void setCompany(const CompanyPtr &company);
    /// False, with a message, for a project whose dates the task leaves; the old one stays then.
    bool setProject(const ProjectPtr &project);

    // The date pickers; what they do to the copy is the copy's own rule.
    /// What a bubble is to show; it stays closed unless `showPopover` is set. No date outside those of the
    /// project is offered.
    DatePickerState openPicker(DatePickerState::Type picker);
    void acceptDate(DatePickerState &picker, Date date);
    void toggleCheck(DatePickerState &picker, bool isChecked);
    /// Clears a date. A second alert takes the place of the first.
    void clearDate(DatePickerState::Type picker);
    OptionalDate dateOf(DatePickerState::Type picker) const;

    // Repetition.
    /// A preset of the pop-up.
    void setRepeatPreset(int index);
    /// A rule of the user's own.
    void setRepeat(const QString &rule);
    /// The controller of the pop-up with the rule of the task.
    RepeatPicker repeatPicker() const;
    /// The custom window's state, beginning with the rule of the task.
    CustomRepeat customRepeat() const;

    // What is shown.
    bool isRowShown(TaskFormRow row) const;
    /// Without the rows that have nothing to say.
    bool isRowShownInPreview(TaskFormRow row) const;
    bool hasValue(TaskFormRow row) const;
    QString label(TaskFormRow row) const;
    /// The value of a row in words; empty without one.
    QString previewText(TaskFormRow row) const;
    bool isSomeday() const { return task.dueSomeDay.value_or(false); }
    bool hasClock() const { return !task.isToDo(); }
    bool hasCalendarAccess() const { return calendarAccess; }
    /// The types that the task may have.
    std::vector<TaskType> types() const;
    const TaskInvitation &invitation() const { return invited; }
    /// Looks up who is invited. It asks the calendar, so a screen does it when it is in sight.
    void findInvitation();

    // Editing and saving.
    /// Whether its calendar lets the task be changed.
    bool allowsModifyEvent() const { return task.allowsContentModifications.value_or(true); }
    /// A task that is done or lies on a read-only calendar cannot be edited.
    bool canEdit() const;
    bool canSave() const { return !task.title.isEmpty(); }
    /// Whether the user has put in anything that would be missed.
    bool isTouched() const { return touched; }
    /// Stores the task through the rules. False if they stopped it, with a message, if the user gave it up,
    /// or if the store cannot be written: of a new task there is no row then, and a stored one is saved by
    /// the next try. What was typed stays.
    bool save();

    enum class EditEnd { Unchanged, Saved, Removed, Refused, Gone };
    /// Ends the edit of a stored task: saves if something changed, or was not stored the last time. Gone if
    /// another program has deleted the event, and with it the task: the form still has what was typed.
    EditEnd finishEdit();
    /// Ticks a stored task off, or opens it again, at once, with all that stands in the form. Nothing happens
    /// if the user gives it up.
    void changeStatusNow(bool done);
    /// Whether the stored task was deleted, here or elsewhere.
    bool isGone() const;
    /// Reads everything from the row again.
    void rollback();
    /// Takes over what has changed in the row since the edit began; what the user has changed stays.
    void followRow();
    /// Whether the form says something else than at its beginning, or than its row.
    bool isEdited() const;
    /// What would be lost with the form.
    TaskDraft draft() const;
    /// Lays what an earlier form of the stored task was left with over its row: what the user had changed
    /// there counts, anything else is as it is now.
    void resume(const TaskDraft &draft);

private:
    template <typename Edit>
    void editDates(Edit edit);
    void startEntityTaskValue(const NewTaskRequest &request);
    void startDateChanged();
    void dueDateChanged();
    void dropRepeatAndAlerts();
    void fitRepeat();
    std::optional<EKCalendar> calendarToSaveIn();
    void takeCalendar();
    void takeBackNewRow(const MVTask &before);
    void keepInsideProject(DatePickerState &picker) const;
    OptionalDate baseDate() const { return task.isEmailCall() ? task.dueDate : task.startDate; }
    QString dateText(OptionalDate date, bool withTime) const;
    QString repeatText() const;
    void note(TaskField field);
    void takeBase();

    MVTask task;
    /// The row as it was when the copy was taken.
    MVTask base;
    TaskInvitation invited;
    bool calendarAccess;
    bool mayBeToDo = true;
    bool touched = false;
    bool savePause = false;
    /// The row has values that could not be committed.
    bool isUncommitted = false;
};
