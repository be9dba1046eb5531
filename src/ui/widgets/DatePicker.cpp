#include "widgets/DatePicker.h"

#include "foundation/DateFormatter.h"
#include "foundation/Localization.h"

using namespace Qt::Literals::StringLiterals;

DatePicker::DatePicker(DatePickerState::Type pickerType, QWidget *parent)
    : PickerField(u"calendar"_s, parent)
    , type(pickerType)
{
    changed();
}

void DatePicker::setDate(OptionalDate newDate, bool showClock)
{
    date = newDate;
    hasClock = showClock;
    changed();
}

void DatePicker::setIsSomeday(bool someday)
{
    isSomeday = someday;
    changed();
}

void DatePicker::setInForce(bool holds)
{
    isHolding = holds;
    changed();
}

void DatePicker::changed()
{
    using Style = DateFormatter::Style;
    QString words;
    if (isSomeday)
        words = localized(u"Someday"_s);
    else if (date)
        words = DateFormatter::string(*date, Style::Medium, hasClock ? Style::Short : Style::None);
    if (isHolding)
        setValue(words, localized(u"None"_s));
    else
        setValue({}, words);
}
