#include "records/DatePickerControl.h"

#include "records/FormModel.h"
#include "widgets/DatePicker.h"
#include "widgets/DatePickerPopover.h"

using Type = DatePickerState::Type;

DatePickerControl::DatePickerControl(FormModel &usedForm, int usedRow, DatePicker &usedPicker)
    : QObject(&usedPicker)
    , form(usedForm)
    , row(usedRow)
    , picker(usedPicker)
    , state(usedPicker.typePicker())
{
    connect(&picker, &DatePicker::pressed, this, &DatePickerControl::open);
    connect(&picker, &DatePicker::cleared, this, [this] { form.clear(row); });
    showValue();
}

void DatePickerControl::showValue()
{
    const FormDate shown = form.date(row);
    picker.setDate(shown.date, shown.hasTime);
    picker.setIsSomeday(shown.isSomeday);
}

void DatePickerControl::open()
{
    if (popover)
        return;
    state = form.openPicker(row);
    if (!state.showPopover)
        return;
    popover = new DatePickerPopover(state, &picker);
    popover->setAttribute(Qt::WA_DeleteOnClose);
    connect(popover, &DatePickerPopover::doneClicked, this,
            [this](Date date) { form.acceptDate(row, state, date); });
    connect(popover, &DatePickerPopover::checkToggled, this, &DatePickerControl::toggled);
    picker.setFocus();
    popover->showBeside(picker);
}

void DatePickerControl::toggled(bool isChecked)
{
    const OptionalDate shown = state.dateValue;
    form.toggleCheck(row, state, isChecked);
    const OptionalDate chosen = form.date(row).date;
    const bool isAlert = state.typePicker == Type::Alert || state.typePicker == Type::SecondAlert;
    if (!state.showPopover)
        popover->close();
    else if (isAlert && isChecked && chosen)
        popover->setDate(*chosen);
    else if (state.dateValue && state.dateValue != shown)
        popover->setDate(*state.dateValue);
}
