#pragma once

#include "foundation/Date.h"

#include <QString>

/// What a date picker shows and may accept. The rules of a working copy fill it, a widget draws it.
class DatePickerState
{
public:
    enum class Type { StartDate = 0, DueDate = 1, Alert = 2, SecondAlert = 3, EndRepeat = 4 };

    explicit DatePickerState(Type type)
        : typePicker(type)
    {}

    Type typePicker;
    bool showPopover = false;
    bool showClock = true;
    /// Whether one can go by years, to dates that lie long ago.
    bool showYears = false;
    bool showCheckBox = false;
    OptionalDate dateValue;
    OptionalDate minDate;
    OptionalDate maxDate;
    QString titlePopover;
    QString checkBoxTitle;
    bool isChecked = false;
};
