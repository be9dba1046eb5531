#pragma once

#include "records/DatePickerState.h"
#include "widgets/Popover.h"

class MonthGrid;
class QCheckBox;
class QTimeEdit;

/// The bubble of a date picker: a month, on request a time of day and a check box, and the two buttons.
class DatePickerPopover : public Popover
{
    Q_OBJECT
public:
    explicit DatePickerPopover(const DatePickerState &state, QWidget *parent = nullptr);

    /// Shows another date, as the rules may ask for after the check box changed.
    void setDate(Date date);
    /// The chosen day and time, within the limits.
    Date chosenDate() const;

Q_SIGNALS:
    void doneClicked(Date date);
    void checkToggled(bool isChecked);

private:
    QWidget *makeClock();
    QWidget *makeButtons();
    void accept();

    OptionalDate minimum;
    OptionalDate maximum;
    MonthGrid *grid;
    QTimeEdit *clock = nullptr;
    QCheckBox *check = nullptr;
};
