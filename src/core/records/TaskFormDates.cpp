#include "records/Functional.h"
#include "records/TaskFormState.h"
#include "records/dates/MTDates.h"
#include "records/dates/MVDate.h"

// The dates of a task's form, and what hangs on them.

using PickerType = DatePickerState::Type;
using namespace Qt::Literals::StringLiterals;

/// Runs a change and lets each date that it changed have its effect on the other fields.
template <typename Edit>
void TaskFormState::editDates(Edit edit)
{
    const MVTask before = task;
    edit();
    fitRepeat();
    if (task.startDate != before.startDate)
        startDateChanged();
    if (task.dueDate != before.dueDate)
        dueDateChanged();
    if (task.dueSomeDay != before.dueSomeDay)
        note();
    if (task.alert != before.alert)
        tell();
    if (task.secondAlert != before.secondAlert)
        note();
    if (task.endRepeat != before.endRepeat)
        note();
}

void TaskFormState::setType(const QString &word)
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
    // No date is left on which these could hang, and only a ToDo can be due some day.
    dropRepeatAndAlerts();
    if (!task.isToDo())
        startDateChanged();
    note();
}

void TaskFormState::dropRepeatAndAlerts()
{
    task.secondAlert.reset();
    task.alert.reset();
    task.repeat = u""_s;
    note();
}

/// A rule that was made here follows the date that the series begins with. That of a stored series does so
/// where the edit is saved, if it reaches the series at all.
void TaskFormState::fitRepeat()
{
    if (task.repeat == base.repeat)
        return;
    const RepeatPicker picker = repeatPicker();
    if (!picker.rule || !picker.occurrenceDate)
        return;
    const RecurrenceRule fitted = picker.rule->fittedTo(*picker.occurrenceDate);
    if (fitted.pattern() != picker.rule->pattern())
        setRepeat(RRule::stringFromRule(fitted));
}

void TaskFormState::startDateChanged()
{
    if (!task.startDate)
        dropRepeatAndAlerts();
    task.dueSomeDay = false;
    note();
    // An appointment needs both dates.
    if (task.isAppointment() && task.startDate && !task.dueDate && pickerWanted)
        pickerWanted(static_cast<int>(TaskFormRow::EndDate));
}

void TaskFormState::dueDateChanged()
{
    if (task.isEmailCall() && !task.dueDate)
        dropRepeatAndAlerts();
    note();
}

OptionalDate TaskFormState::dateOf(PickerType picker) const
{
    switch (picker) {
    case PickerType::StartDate:
        return task.startDate;
    case PickerType::DueDate:
        return task.dueDate;
    case PickerType::Alert:
        return task.alert;
    case PickerType::SecondAlert:
        return task.secondAlert;
    case PickerType::EndRepeat:
        return task.endRepeat;
    }
    return {};
}

void TaskFormState::clearDate(PickerType picker)
{
    editDates([&] {
        switch (picker) {
        case PickerType::StartDate:
            return task.startDate.reset();
        case PickerType::DueDate:
            task.dueSomeDay = false;
            return task.dueDate.reset();
        case PickerType::Alert:
            task.alert = std::exchange(task.secondAlert, std::nullopt);
            return;
        case PickerType::SecondAlert:
            return task.secondAlert.reset();
        case PickerType::EndRepeat:
            return task.endRepeat.reset();
        }
    });
}

/// The limits of the task's own dates are narrowed to those of its project, unless that leaves no date.
void TaskFormState::keepInsideProject(DatePickerState &picker) const
{
    const bool isOwnDate =
        picker.typePicker == PickerType::StartDate || picker.typePicker == PickerType::DueDate;
    if (!task.project || !isOwnDate)
        return;
    OptionalDate least = picker.minDate;
    OptionalDate most = picker.maxDate;
    if (const OptionalDate start = task.project->startDate()) {
        const Date begin = MVDate::getStartOfDay(*start);
        least = std::max(least.value_or(begin), begin);
    }
    if (const OptionalDate due = task.project->dueDate()) {
        const Date end = MTDates::endOfCurrentDay(*due);
        most = std::min(most.value_or(end), end);
    }
    if (least && most && *least > *most)
        return;
    picker.minDate = least;
    picker.maxDate = most;
}

DatePickerState TaskFormState::openPicker(PickerType picker)
{
    DatePickerState state(picker);
    task.datePickerMouseDown(state, true);
    if (state.showPopover) {
        task.datePickerWillShowPopover(state);
        keepInsideProject(state);
    }
    return state;
}

void TaskFormState::acceptDate(DatePickerState &picker, Date date)
{
    editDates([&] { task.datePickerClickButtonDone(picker, date); });
}

void TaskFormState::toggleCheck(DatePickerState &picker, bool isChecked)
{
    picker.isChecked = isChecked;
    editDates([&] {
        task.datePickerChangeStateCheck(picker);
        if (picker.typePicker == PickerType::DueDate && !isChecked)
            task.dueSomeDay = false;
    });
}
