#pragma once

#include "records/DatePickerState.h"

#include <QObject>
#include <QPointer>

class DatePicker;
class DatePickerPopover;
class TaskForm;

/// Leads one date picker of a task's form: shows the value, opens the bubble, hands its answers to the form.
class DatePickerControl : public QObject
{
    Q_OBJECT
public:
    DatePickerControl(TaskForm &form, DatePicker &picker);

    void open();

private:
    void showValue();
    void toggled(bool isChecked);

    TaskForm &form;
    DatePicker &picker;
    DatePickerState state;
    QPointer<DatePickerPopover> popover;
};
