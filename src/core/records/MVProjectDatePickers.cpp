#include "foundation/Localization.h"
#include "records/DatePickerState.h"
#include "records/MVProject.h"
#include "records/dates/MVDate.h"

// What the two date pickers of a project do with its working copy: they pick days, each within the other.

using PickerType = DatePickerState::Type;

void MVProject::datePickerMouseDown(DatePickerState &picker, bool editing) const
{
    const bool isOurs =
        picker.typePicker == PickerType::StartDate || picker.typePicker == PickerType::DueDate;
    picker.showPopover = editing && isOurs;
}

void MVProject::datePickerWillShowPopover(DatePickerState &picker) const
{
    picker.showClock = false;
    picker.showCheckBox = false;
    picker.minDate.reset();
    picker.maxDate.reset();
    const Date today = MVDate::getStartOfDay(MVDate::date());
    if (picker.typePicker == PickerType::StartDate) {
        picker.titlePopover = localized(QStringLiteral("Edit Start Date"));
        picker.dateValue = startDate.value_or(today);
        if (dueDate)
            picker.maxDate = MVDate::getEndOfDay(*dueDate);
    } else if (picker.typePicker == PickerType::DueDate) {
        picker.titlePopover = localized(QStringLiteral("Edit Due Date"));
        picker.dateValue = dueDate.value_or(today);
        picker.minDate = startDate;
    }
}

void MVProject::datePickerClickButtonDone(DatePickerState &picker, Date newDate)
{
    picker.showPopover = false;
    if (picker.typePicker == PickerType::StartDate) {
        startDate = MVDate::getStartOfDay(newDate);
        picker.dateValue = startDate;
    } else if (picker.typePicker == PickerType::DueDate) {
        dueDate = MVDate::getEndOfDay(newDate);
        picker.dateValue = dueDate;
    }
}
