#include "records/Functional.h"
#include "records/TaskManager.h"
#include "records/copies/MVTask.h"
#include "records/dates/MTDates.h"
#include "records/dates/MVDate.h"

// What picking a date does to a working copy.

bool TaskManager::dateVerefications(OptionalDate startDate, OptionalDate dueDate,
                                    std::optional<TaskType> taskType)
{
    const bool isChecked = taskType == TaskType::Appointment && startDate && dueDate;
    if (!isChecked || !Functional::sameMinute(*startDate, *dueDate))
        return true;
    Functional::messageAlertWithTitle(QStringLiteral("Invalid Date"),
                                      QStringLiteral("Due Date can't be the same as Start Date!"));
    return false;
}

namespace {

bool isLater(OptionalDate date, OptionalDate base)
{
    return date && base && *date > *base;
}

} // namespace

void TaskManager::saveStartDate(OptionalDate date, MVTask &task)
{
    if (date && task.isToDo())
        date = MTDates::startOfCurrentDay(*date);
    if (date) {
        date = Functional::dateWithZeroSeconds(*date);
        if (!dateVerefications(date, task.dueDate, task.type))
            return;
    }
    const OptionalDate alert = task.alert;
    OptionalDate secondAlert = task.secondAlert;
    if (task.isToDo() && date) {
        task.startDate = MVDate::getStartOfDay(*date);
        if (!task.dueDate && !task.dueSomeDay.value_or(false))
            task.dueDate = MTDates::endOfCurrentDay(*task.startDate);
    } else {
        task.startDate = date;
    }
    if (task.isAppointment() && task.startDate) {
        if (isLater(secondAlert, task.startDate)) {
            secondAlert.reset();
            task.secondAlert.reset();
        }
        // Without a second alert to take its place the first one stays where it is.
        if (isLater(alert, task.startDate) && secondAlert)
            task.alert = secondAlert;
        if (isLater(alert, task.startDate))
            task.secondAlert.reset();
    }
    dateVerefications(task.startDate, task.dueDate, task.type);
}

void TaskManager::saveDueDate(OptionalDate date, MVTask &task)
{
    if (date && task.isToDo())
        date = MTDates::endOfCurrentDay(*date);
    if (date) {
        date = Functional::dateWithZeroSeconds(*date);
        if (!dateVerefications(task.startDate, date, task.type))
            return;
    }
    const OptionalDate alert = task.alert;
    OptionalDate secondAlert = task.secondAlert;
    if (task.dueSomeDay.value_or(false)) {
        task.alert.reset();
        task.secondAlert.reset();
    }
    task.dueDate = date;
    if (task.dueDate) {
        const Date end = task.isToDo() ? MVDate::getEndOfDay(*task.dueDate) : *task.dueDate;
        if (isLater(secondAlert, end)) {
            secondAlert.reset();
            task.secondAlert.reset();
        }
        if (isLater(alert, task.startDate)) {
            task.alert = secondAlert ? secondAlert : task.alert;
            task.secondAlert.reset();
        }
    }
    dateVerefications(task.startDate, task.dueDate, task.type);
}
