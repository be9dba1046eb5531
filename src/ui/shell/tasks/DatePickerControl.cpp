#include "shell/tasks/DatePickerControl.h"

#include "records/TaskFormState.h"
#include "widgets/DatePicker.h"
#include "widgets/DatePickerPopover.h"

using Type = DatePickerState::Type;

DatePickerControl::DatePickerControl(TaskFormState &usedForm, DatePicker &usedPicker)
    : QObject(&usedPicker)
    , form(usedForm)
    , picker(usedPicker)
    , state(usedPicker.typePicker())
{
    connect(&picker, &DatePicker::pressed, this, &DatePickerControl::open);
    connect(&picker, &DatePicker::cleared, this, [this] { form.clearDate(picker.typePicker()); });
    showValue();
}

void DatePickerControl::showValue()
{
    const Type type = picker.typePicker();
    const bool isAlert = type == Type::Alert || type == Type::SecondAlert;
    picker.setDate(form.dateOf(type), isAlert || (type != Type::EndRepeat && form.hasClock()));
    picker.setIsSomeday(form.isSomeday() && (type == Type::StartDate || type == Type::DueDate));
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
    picker.setFocus();
    popover->showBeside(picker);
}

void DatePickerControl::toggled(bool isChecked)
{
    const OptionalDate shown = state.dateValue;
    form.toggleCheck(state, isChecked);
    const OptionalDate chosen = form.dateOf(state.typePicker);
    const bool isAlert = state.typePicker == Type::Alert || state.typePicker == Type::SecondAlert;
    if (!state.showPopover)
        popover->close();
    else if (isAlert && isChecked && chosen)
        popover->setDate(*chosen);
    else if (state.dateValue && state.dateValue != shown)
        popover->setDate(*state.dateValue);
}
