#pragma once

#include "foundation/Date.h"
#include "store/entities/Entities.h"

#include <QString>

class DatePickerState;

/// A working copy of a project: a screen fills it, changes it freely, and nothing reaches the store before
/// `save`.
///
/// Absent numbers are empty optionals; absent texts are null or empty. Main thread only.
class MVProject
{
public:
    /// A blank copy, or one filled from a row.
    explicit MVProject(ProjectPtr project = nullptr);
    /// What the window for a new project begins with: open, without a priority, in the default category.
    static MVProject startEntityProjectValue();

    // The fields, as they will be written.
    OptionalDate creationDate;
    QString details;
    OptionalDate dueDate;
    OptionalDate expirationDate;
    std::optional<Priority> priority;
    std::optional<int> rowIndex;
    /// Kept for the stored model; 0 in new projects, and nothing changes it.
    std::optional<int> stage;
    OptionalDate startDate;
    std::optional<TaskStatus> status;
    QString title;
    CategoryPtr category;
    std::vector<ContactPtr> delegateToUser;
    std::vector<TaskPtr> task;

    /// The stored row; null until the first save.
    const ProjectPtr &project() const { return row; }

    /// Binds a row and takes its values for the fields that are still empty; those that hold something stay.
    void setProject(ProjectPtr project);
    /// Reads every field from the row, whatever the copy holds; nothing without a row.
    void setProjectValues();
    /// The same, by the name that screens use to give up an edit.
    void rollback() { setProjectValues(); }

    /// Writes the copy to its row, making one if needed. It takes no decision and does not save the context.
    MVProject &save();
    /// True from the save that made the row until the next one.
    bool isNewProject() const { return isNew; }

    /// Open tasks, the latest due first and those for some day last, then the done ones as they were done.
    std::vector<TaskPtr> sortedTasks() const { return sorted(task); }
    /// The same of the tasks of anything else.
    static std::vector<TaskPtr> sorted(const std::vector<TaskPtr> &tasks);
    /// The members by first, then last name.
    std::vector<ContactPtr> sortedContacts() const;

    /// Sets the status by its word; done is done now, any other status was not done. An unknown word leaves
    /// the status.
    void changeStatus(const QString &text);
    /// Sets the priority by its word; an unknown one changes nothing.
    void changePriority(const QString &text);

    // What the two date pickers of a form do with the copy. Pickers of other types do nothing.
    void datePickerMouseDown(DatePickerState &picker, bool editing) const;
    void datePickerWillShowPopover(DatePickerState &picker) const;
    /// Keeps the start of the day picked as start, the end of it as due date.
    void datePickerClickButtonDone(DatePickerState &picker, Date newDate);

private:
    void makeRow();
    void writeFields();

    ProjectPtr row;
    bool isNew = false;
};
