#pragma once

#include "records/DatePickerState.h"
#include "records/MVTask.h"
#include "shell/TabsViewController.h"

#include <QObject>

/// A task while it is edited in a form: the working copy, and what the change of one field does to others.
class TaskForm : public QObject
{
    Q_OBJECT
public:
    enum class Field { Title, Type, Category, Status, Priority, StartDate, DueDate, DueSomeDay, Details };
    Q_ENUM(Field)

    /// A new task with what it begins with.
    explicit TaskForm(const NewTaskRequest &request, QObject *parent = nullptr);

    const MVTask &currentTask() const { return task; }

    void setTitle(const QString &title);
    void setType(const QString &word);
    void setCategory(const CategoryPtr &category);
    void setStatus(int status);
    void setDone(bool done);
    void setPriority(int priority);
    void setDetails(const QString &details);
    void clearDate(DatePickerState::Type picker);

    // The date pickers; what they do to the copy is the copy's own rule.
    /// What a bubble is to show; it stays closed unless `showPopover` is set.
    DatePickerState openPicker(DatePickerState::Type picker);
    void acceptDate(DatePickerState &picker, Date date);
    void toggleCheck(DatePickerState &picker, bool isChecked);

    // What is shown.
    bool isStartDateHidden() const;
    bool isSomeday() const { return task.dueSomeDay.value_or(false); }
    bool hasClock() const { return !task.isToDo(); }
    QString dueDateLabel() const;
    bool canSave() const { return !task.title.isEmpty(); }
    /// Whether the user has put in anything that would be missed.
    bool isTouched() const { return touched; }

    /// Stores the task through the rules. False if they stopped it; their message was shown then.
    bool save();

Q_SIGNALS:
    void changed(TaskForm::Field field);
    /// The due picker is to open, since an appointment needs both dates.
    void dueDateWanted();

private:
    template <typename Edit>
    void editDates(Edit edit);
    void startDateChanged();
    void dueDateChanged();
    void dropRepeatAndAlerts();
    void note(Field field);

    MVTask task;
    bool touched = false;
    bool savePause = false;
};
