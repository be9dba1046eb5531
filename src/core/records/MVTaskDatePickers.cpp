#include "calendarsync/CalendarEvent.h"
#include "foundation/Alert.h"
#include "foundation/Localization.h"
#include "records/DatePickerState.h"
#include "records/Functional.h"
#include "records/TaskManager.h"
#include "records/copies/MVTask.h"
#include "records/dates/MTDates.h"
#include "records/dates/MVDate.h"

// What the five date pickers of an editor do with a working copy.

using PickerType = DatePickerState::Type;

namespace {

constexpr Seconds minute{60};
constexpr Seconds hour{3600};

const QString needsStart = QStringLiteral("You should fill in Start Date to open this alert!");
const QString needsDue = QStringLiteral("You should fill in Due Date to open this alert!");
const QString noAccess = QStringLiteral("To access local repeat events, please go to device Settings -> "
                                        "Private -> Calendars and enable access for Morvane app.");

void warn(const QString &title, const QString &information)
{
    Functional::messageAlertWithTitle(title, information);
}

void warnCannotOpen(const QString &information)
{
    warn(QStringLiteral("Can't open Alert"), information);
}

} // namespace

bool MVTask::warnsOfMissingBaseDate(bool needsEnd) const
{
    if (isEmailCall()) {
        if (!dueDate)
            warnCannotOpen(needsDue);
        return !dueDate.has_value();
    }
    if (!startDate) {
        warnCannotOpen(needsStart);
        return true;
    }
    const bool lacksEnd = needsEnd && isAppointment() && !dueDate;
    if (lacksEnd)
        warnCannotOpen(needsDue);
    return lacksEnd;
}

void MVTask::datePickerMouseDown(DatePickerState &picker, bool editing)
{
    switch (picker.typePicker) {
    case PickerType::StartDate:
    case PickerType::DueDate:
        picker.showPopover = editing;
        break;
    case PickerType::Alert:
    case PickerType::SecondAlert:
        picker.showPopover = !warnsOfMissingBaseDate(false) && editing;
        break;
    case PickerType::EndRepeat:
        // The messages only warn: the picker opens all the same.
        if (!CalendarEvent::hasAccesToCalendar())
            warn(QStringLiteral("Permission denied!"), noAccess);
        warnsOfMissingBaseDate(true);
        picker.showPopover = editing;
        break;
    }
}

void MVTask::prepareStartPicker(DatePickerState &picker) const
{
    picker.titlePopover = localized(QStringLiteral("Edit Start Date"));
    picker.showClock = !isToDo();
    picker.dateValue = startDate ? *startDate : dueDate ? *dueDate - hour : MVDate::date();
    if (!dueDate || dueSomeDay.value_or(false))
        return;
    if (isAppointment())
        picker.minDate = MVDate::getStartOfDay(*dueDate);
    picker.maxDate = isToDo() ? *dueDate : *dueDate - minute;
}

void MVTask::prepareDuePicker(DatePickerState &picker) const
{
    picker.titlePopover =
        localized(isEmailCall() ? QStringLiteral("Edit Start Date") : QStringLiteral("Edit Due Date"));
    picker.showClock = !isToDo();
    picker.showCheckBox = isToDo();
    picker.checkBoxTitle = localized(QStringLiteral("Due Someday"));
    picker.isChecked = dueSomeDay.value_or(false);
    picker.dateValue = dueDate ? *dueDate : (startDate ? *startDate : MVDate::date()) + hour;
    if (!startDate)
        return;
    picker.minDate = *startDate + minute;
    if (isAppointment())
        picker.maxDate = MVDate::getEndOfDay(*startDate);
}

void MVTask::prepareAlertPicker(DatePickerState &picker) const
{
    const bool isFirst = picker.typePicker == PickerType::Alert;
    const OptionalDate held = isFirst ? alert : secondAlert;
    picker.titlePopover = localized(isFirst ? QStringLiteral("Alert") : QStringLiteral("Second Alert"));
    picker.showCheckBox = !isToDo();
    picker.checkBoxTitle = localized(QStringLiteral("At time of Start Date"));
    picker.isChecked = held && held == baseDate();
    picker.dateValue = held ? *held : MVDate::date();
    if (isToDo())
        picker.maxDate = dueDate ? OptionalDate(MVDate::getEndOfDay(*dueDate)) : std::nullopt;
    else
        picker.maxDate = baseDate();
}

void MVTask::prepareEndRepeatPicker(DatePickerState &picker) const
{
    picker.titlePopover = localized(QStringLiteral("End Repeat"));
    picker.showClock = false;
    picker.dateValue = endRepeat ? *endRepeat : MVDate::date();
    picker.minDate = startDate ? *startDate : dueDate ? *dueDate : MVDate::date();
}

void MVTask::datePickerWillShowPopover(DatePickerState &picker)
{
    picker.showClock = true;
    picker.showCheckBox = false;
    picker.checkBoxTitle.clear();
    picker.isChecked = false;
    picker.minDate.reset();
    picker.maxDate.reset();
    switch (picker.typePicker) {
    case PickerType::StartDate:
        return prepareStartPicker(picker);
    case PickerType::DueDate:
        return prepareDuePicker(picker);
    case PickerType::Alert:
    case PickerType::SecondAlert:
        return prepareAlertPicker(picker);
    case PickerType::EndRepeat:
        return prepareEndRepeatPicker(picker);
    }
}

void MVTask::datePickerClickButtonDone(DatePickerState &picker, Date newDate)
{
    picker.showPopover = false;
    switch (picker.typePicker) {
    case PickerType::StartDate:
        TaskManager::saveStartDate(newDate, *this);
        break;
    case PickerType::DueDate:
        TaskManager::saveDueDate(newDate, *this);
        break;
    case PickerType::Alert:
        alert = Functional::dateWithZeroSeconds(newDate);
        picker.dateValue = alert;
        break;
    case PickerType::SecondAlert:
        secondAlert = Functional::dateWithZeroSeconds(newDate);
        picker.dateValue = secondAlert;
        break;
    case PickerType::EndRepeat:
        endRepeat = MTDates::endOfCurrentDay(newDate);
        picker.dateValue = endRepeat;
        break;
    }
}

void MVTask::datePickerClickButtonClose(DatePickerState &picker)
{
    picker.showPopover = false;
}

void MVTask::datePickerChangeStateCheck(DatePickerState &picker)
{
    switch (picker.typePicker) {
    case PickerType::DueDate:
        if (picker.isChecked && !isAppointment()) {
            dueDate.reset();
            picker.showPopover = false;
            dueSomeDay = true;
        } else if (!picker.isChecked && isToDo() && startDate) {
            picker.dateValue = MTDates::endOfCurrentDay(*startDate);
        }
        break;
    case PickerType::Alert:
        if (picker.isChecked)
            alert = baseDate();
        break;
    case PickerType::SecondAlert:
        if (picker.isChecked)
            secondAlert = baseDate();
        break;
    default:
        break;
    }
}
