#include "shell/tasks/TaskForm.h"

#include "foundation/Localization.h"
#include "records/Functional.h"
#include "records/TaskManager.h"

#include <QScopedValueRollback>

using namespace Qt::Literals::StringLiterals;

TaskForm::TaskForm(const NewTaskRequest &request, QObject *parent)
    : QObject(parent)
{
    task.category = EntityCategory::getCustom();
    task.type = static_cast<int>(request.type);
    task.status = static_cast<int>(TaskStatus::Open);
    task.priority = static_cast<int>(Priority::None);
    task.startDate = request.createWithStartDate;
    task.dueDate = request.createWithDueDate;
    if (request.typeTask == ListType::Someday)
        task.dueSomeDay = true;
}

void TaskForm::note(Field field)
{
    if (savePause)
        return;
    touched = true;
    Q_EMIT changed(field);
}

void TaskForm::setTitle(const QString &title)
{
    if (title == task.title)
        return;
    task.title = title;
    note(Field::Title);
}

void TaskForm::setDetails(const QString &details)
{
    task.details = details;
    note(Field::Details);
}

void TaskForm::setCategory(const CategoryPtr &category)
{
    task.category = category;
    note(Field::Category);
}

void TaskForm::setStatus(int status)
{
    task.expirationDate.reset();
    task.changeStatus(Functional::statusStringFromType(status), false);
    note(Field::Status);
}

void TaskForm::setDone(bool done)
{
    setStatus(static_cast<int>(done ? TaskStatus::Done : TaskStatus::Open));
}

void TaskForm::setPriority(int priority)
{
    task.priority = priority;
    note(Field::Priority);
}

void TaskForm::setType(const QString &word)
{
    if (Functional::taskTypeFromString(word) == task.type)
        return;
    editDates([&] {
        task.secondAlert.reset();
        task.startDate.reset();
        task.dueDate.reset();
        task.alert.reset();
        task.changeType(word);
    });
    // Only a ToDo can be due some day.
    if (!task.isToDo())
        startDateChanged();
    note(Field::Type);
}

// Dates

/// Runs a change and lets each date that it changed have its effect on the other fields.
template <typename Edit>
void TaskForm::editDates(Edit edit)
{
    const OptionalDate start = task.startDate;
    const OptionalDate due = task.dueDate;
    const auto someday = task.dueSomeDay;
    edit();
    if (task.startDate != start)
        startDateChanged();
    if (task.dueDate != due)
        dueDateChanged();
    if (task.dueSomeDay != someday)
        note(Field::DueSomeDay);
}

void TaskForm::dropRepeatAndAlerts()
{
    task.secondAlert.reset();
    task.alert.reset();
    task.repeat = u""_s;
}

void TaskForm::startDateChanged()
{
    if (!task.startDate)
        dropRepeatAndAlerts();
    task.dueSomeDay = false;
    note(Field::StartDate);
    if (task.isAppointment() && task.startDate && !task.dueDate)
        Q_EMIT dueDateWanted();
}

void TaskForm::dueDateChanged()
{
    if (task.isEmailCall() && !task.dueDate)
        dropRepeatAndAlerts();
    note(Field::DueDate);
}

void TaskForm::clearDate(DatePickerState::Type picker)
{
    editDates([&] {
        if (picker == DatePickerState::Type::StartDate)
            task.startDate.reset();
        else
            task.dueDate.reset();
        if (picker == DatePickerState::Type::DueDate)
            task.dueSomeDay = false;
    });
}

DatePickerState TaskForm::openPicker(DatePickerState::Type picker)
{
    DatePickerState state(picker);
    task.datePickerMouseDown(state, true);
    if (state.showPopover)
        task.datePickerWillShowPopover(state);
    return state;
}

void TaskForm::acceptDate(DatePickerState &picker, Date date)
{
    editDates([&] { task.datePickerClickButtonDone(picker, date); });
}

void TaskForm::toggleCheck(DatePickerState &picker, bool isChecked)
{
    picker.isChecked = isChecked;
    editDates([&] { task.datePickerChangeStateCheck(picker); });
}

// What is shown

bool TaskForm::isStartDateHidden() const
{
    return task.isEmailCall() || isSomeday();
}

QString TaskForm::dueDateLabel() const
{
    return localized(task.isEmailCall() ? u"Start Date"_s : u"Due Date"_s);
}

bool TaskForm::save()
{
    const QScopedValueRollback pause(savePause, true);
    return TaskManager::saveTaskTemp(task, true);
}
