#pragma once

#include "records/DatePickerState.h"

#include <QObject>
#include <QPointer>

class DatePicker;
class DatePickerPopover;
class TaskFormState;

/// Leads one date picker of a task's form: shows the value, opens the bubble, hands its answers to the form.
class DatePickerControl : public QObject
{
    Q_OBJECT
public:
    DatePickerControl(TaskFormState &form, DatePicker &picker);

    void open();
    void showValue();

private:
    void toggled(bool isChecked);

    TaskFormState &form;
    DatePicker &picker;
    DatePickerState state;
    QPointer<DatePickerPopover> popover;
};
