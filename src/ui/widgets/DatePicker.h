#pragma once

#include "records/DatePickerState.h"
#include "widgets/PickerField.h"

/// A field that shows a date and asks for its bubble when pressed.
class DatePicker : public PickerField
{
    Q_OBJECT
public:
    explicit DatePicker(DatePickerState::Type type, QWidget *parent = nullptr);

    DatePickerState::Type typePicker() const { return type; }
    void setDate(OptionalDate newDate, bool showClock);
    /// Shows that it is due some day instead of a date.
    void setIsSomeday(bool someday);
    /// Whether the date holds; one that does not is shown in grey, as what a press would begin with.
    void setInForce(bool holds);
    bool isInForce() const { return isHolding; }

private:
    void changed();

    DatePickerState::Type type;
    OptionalDate date;
    bool hasClock = true;
    bool isSomeday = false;
    bool isHolding = true;
};
