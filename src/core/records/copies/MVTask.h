#pragma once

#include "foundation/Date.h"
#include "objectstore/ObjectList.h"
#include "records/copies/SaveEnd.h"
#include "store/entities/Entities.h"

#include <QString>

class DatePickerState;
class RecordsTransaction;

/// A working copy of a task: a screen fills it, changes it freely, and nothing reaches the store before
/// `save`.
///
/// Absent numbers are empty optionals; absent texts are null or empty. Main thread only.
class MVTask
{
public:
    /// A blank copy, or one filled from a row.
    explicit MVTask(TaskPtr task = nullptr);
    /// One for each task that is still there, in their order. Many are read much faster so than one by one.
    static std::vector<std::shared_ptr<MVTask>> copiesOf(std::vector<TaskPtr> tasks);
    static std::vector<std::shared_ptr<MVTask>> copiesOf(const ObjectList<EntityTask> &tasks)
    {
        return copiesOf(std::vector<TaskPtr>(tasks.begin(), tasks.end()));
    }

    // The fields, as they will be written.
    OptionalDate alert;
    QString calendarID;
    QString calendarTitle;
    QString typeCalendarID;
    std::optional<bool> allowsContentModifications;
    std::optional<double> colorCalendarR, colorCalendarG, colorCalendarB, colorCalendarA;
    OptionalDate creationDate;
    OptionalDate delegatedSince;
    QString details;
    OptionalDate dueDate;
    std::optional<bool> wasCreatedOffCalendar;
    std::optional<bool> dueSomeDay;
    OptionalDate endRepeat;
    OptionalDate expirationDate;
    OptionalDate lastAsked;
    OptionalDate lastModificationDate;
    std::optional<int> position;
    std::optional<Priority> priority;
    QString remindID;
    QString repeat;
    QString repeatInfoUser;
    std::optional<int> rowIndex;
    OptionalDate secondAlert;
    OptionalDate startDate;
    std::optional<TaskStatus> status;
    QString title;
    std::optional<TaskType> type;
    CategoryPtr category;
    CompanyPtr company;
    ContactPtr delegateToUser;
    std::shared_ptr<EntityLocation> location;
    ProjectPtr project;
    std::vector<std::shared_ptr<EntityTags>> tags;

    /// That of the row which the first save makes; empty for a random one.
    QString newIdentifier;

    /// The stored row; null until the first save.
    const TaskPtr &task() const { return row; }
    /// Forgets the row, so that the next save makes a new one.
    void detach() { row = nullptr; }
    /// Forgets the row and what belonged to it alone: its event, its place and its stamps.
    void detachFromEvent();

    /// Binds a row and takes its values for the fields that are still empty; those that hold something stay.
    void setTask(TaskPtr task);
    /// Reads every field from the row, whatever the copy holds.
    void setTaskValues();
    /// The same, by the name that screens use to give up an edit.
    void rollback() { setTaskValues(); }

    /// Writes the copy to its row, making one if needed. It takes no decision and does not save the context.
    MVTask &save();
    /// Saves a change of status through the rules. False if a message stopped it.
    bool saveStatus();
    SaveEnd saveStatus(RecordsTransaction &transaction);

    /// True from the save that made the row until the next one.
    bool isNewTask() const { return isNew; }
    /// What has no type is a ToDo.
    bool isToDo() const { return type.value_or(TaskType::ToDo) == TaskType::ToDo; }
    bool isAppointment() const { return type == TaskType::Appointment; }
    bool isEmailCall() const { return type == TaskType::EmailCall; }

    /// The words of the values; empty for an unknown one.
    QString priorityString() const;
    QString statusString() const;

    /// Sets the status, as such or by its word; on request saved at once. Nothing while edits of repeats are
    /// barred.
    void changeStatus(const QString &text, bool autoSaved);
    void changeStatusType(TaskStatus newStatus, bool autoSaved);
    /// Set and saved as a part of a transaction.
    SaveEnd changeStatusType(RecordsTransaction &transaction, TaskStatus newStatus);
    /// Set by the localised word; an unknown one changes nothing.
    void changeType(const QString &text);
    void changePriority(const QString &text);

    /// Whether the copy differs from its row in what an editor can change. Tags alone are no difference.
    bool isChangedTask() const;
    /// Whether an appointment (or the moment of a mail or call) collides with another of that day; says so if
    /// it does.
    bool isCrossTaskAppointmentForStartDate(Date startDate, Date dueDate) const;

    /// Whether `repeat` holds a rule in the program's own form, and that rule without what precedes it.
    bool isProgramRuleString() const;
    QString ruleForICalendar() const;

    /// A mail draft of the task, as a "mailto:" address.
    QString htmlBody() const;

    /// Seconds from the base date (the due date of an Email/Call, else the start) to an alert; 0 without one.
    static double timeIntervalAlertOfTask(const EntityTask &task);
    static double timeIntervalSecondAlertOfTask(const EntityTask &task);

    // What the date pickers of an editor do with the copy.
    void datePickerMouseDown(DatePickerState &picker, bool editing);
    void datePickerWillShowPopover(DatePickerState &picker);
    void datePickerClickButtonDone(DatePickerState &picker, Date newDate);
    void datePickerClickButtonClose(DatePickerState &picker);
    void datePickerChangeStateCheck(DatePickerState &picker);

private:
    /// The same as `setTask` for all but the tags.
    void setTaskWithoutTags(TaskPtr task);
    OptionalDate baseDate() const { return isEmailCall() ? dueDate : startDate; }
    /// Whether the date is missing that an alert or a repetition hangs on; a message says so.
    bool warnsOfMissingBaseDate(bool needsEnd) const;
    void prepareStartPicker(DatePickerState &picker) const;
    void prepareDuePicker(DatePickerState &picker) const;
    void prepareAlertPicker(DatePickerState &picker) const;
    void prepareEndRepeatPicker(DatePickerState &picker) const;
    void makeRow();
    void writeFields();
    /// False while edits of repeats are barred.
    bool changeStatusTo(std::optional<TaskStatus> newStatus);

    TaskPtr row;
    bool isNew = false;
};
