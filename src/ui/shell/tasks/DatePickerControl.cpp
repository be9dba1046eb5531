#include "shell/tasks/DatePickerControl.h"

#include "shell/tasks/TaskForm.h"
#include "widgets/DatePicker.h"
#include "widgets/DatePickerPopover.h"

DatePickerControl::DatePickerControl(TaskForm &usedForm, DatePicker &usedPicker)
    : QObject(&usedPicker)
    , form(usedForm)
    , picker(usedPicker)
    , state(usedPicker.typePicker())
{
    connect(&picker, &DatePicker::pressed, this, &DatePickerControl::open);
    connect(&picker, &DatePicker::cleared, this, [this] { form.clearDate(picker.typePicker()); });
    connect(&form, &TaskForm::changed, this, &DatePickerControl::showValue);
    showValue();
}

void DatePickerControl::showValue()
{
    const MVTask &task = form.currentTask();
    const bool isStart = picker.typePicker() == DatePickerState::Type::StartDate;
    picker.setDate(isStart ? task.startDate : task.dueDate, form.hasClock());
    picker.setIsSomeday(form.isSomeday());
}

void DatePickerControl::open()
{
    if (popover)
        return;
    state = form.openPicker(picker.typePicker());
    if (!state.showPopover)
        return;
    popover = new DatePickerPopover(state, &picker);
    popover->setAttribute(Qt::WA_DeleteOnClose);
    connect(popover, &DatePickerPopover::doneClicked, this,
            [this](Date date) { form.acceptDate(state, date); });
    connect(popover, &DatePickerPopover::checkToggled, this, &DatePickerControl::toggled);
    popover->showBeside(picker);
}

void DatePickerControl::toggled(bool isChecked)
{
    const OptionalDate shown = state.dateValue;
    form.toggleCheck(state, isChecked);
    if (!state.showPopover)
        popover->close();
    else if (state.dateValue && state.dateValue != shown)
        popover->setDate(*state.dateValue);
}
