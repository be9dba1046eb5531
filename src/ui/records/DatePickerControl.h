#pragma once

#include "records/DatePickerState.h"

#include <QObject>
#include <QPointer>

class DatePicker;
class DatePickerPopover;
class FormModel;

/// Leads the date picker of a form's row: shows the value, opens the bubble, hands its answers to the form.
class DatePickerControl : public QObject
{
    Q_OBJECT
public:
    DatePickerControl(FormModel &form, int row, DatePicker &picker);

    void open();
    void showValue();

private:
    void toggled(bool isChecked);

    FormModel &form;
    int row;
    DatePicker &picker;
    DatePickerState state;
    QPointer<DatePickerPopover> popover;
};
