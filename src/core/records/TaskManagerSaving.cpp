#include "calendarsync/CalendarEvent.h"
#include "foundation/Alert.h"
#include "foundation/Localization.h"
#include "foundation/Log.h"
#include "records/Functional.h"
#include "records/MVTask.h"
#include "records/TaskManager.h"
#include "records/dates/MTDates.h"
#include "store/queries/DBWorker.h"
#include "store/state/NotificationNames.h"
#include "usernotifications/UserNotificationCenter.h"

// Saving a working copy: the rules for its dates, then the row, its calendar item and those who show it.

namespace {

void post(NotificationName name, const TaskPtr &task)
{
    NotificationCenter::defaultCenter().post(name, task);
}

/// One rule of the dates: when it applies, and what it says then.
struct DateRule
{
    bool (*applies)(const MVTask &);
    const char16_t *title;
    const char16_t *message;
    NotificationName notification;
};

/// Whether the copy has neither a due date nor the promise to be done some day.
bool lacksDueDate(const MVTask &task)
{
    return !task.dueDate && !task.dueSomeDay.value_or(false);
}

bool isSameMinute(const MVTask &task)
{
    return task.startDate && task.dueDate &&
           Functional::sameMinute(*task.startDate, *task.dueDate).value_or(false);
}

constexpr DateRule dateRules[] = {
    {[](const MVTask &task) { return task.startDate && task.dueDate && *task.dueDate < *task.startDate; },
     u"Invalid Due Date", u"Due Date can't be less than Start Date!", notifications::reloadTasks},
    {[](const MVTask &task) { return task.isAppointment() && !task.startDate; }, u"Invalid Start Date",
     u"Since task type is Appointment - Start Date can't be empty!", notifications::taskChange},
    {[](const MVTask &task) { return task.isAppointment() && lacksDueDate(task); }, u"Invalid Due Date",
     u"Since task type is Appointment - Due Date can't be empty!", notifications::taskChange},
    {[](const MVTask &task) { return task.isAppointment() && isSameMinute(task); }, u"Invalid Date",
     u"Due Date can't be the same as Start Date!", notifications::taskChange},
    {[](const MVTask &task) { return task.isEmailCall() && lacksDueDate(task); }, u"Invalid Start Date",
     u"Since task type is Email/Call - Start Date can't be empty!", notifications::taskChange},
    {[](const MVTask &task) { return task.isToDo() && task.startDate && lacksDueDate(task); },
     u"Invalid Due Date",
     u"Since task type is ToDo and Start Date is not empty - Due Date can't be empty too!",
     notifications::taskChange},
};

bool meetsDateRules(const MVTask &task)
{
    for (const DateRule &rule : dateRules) {
        if (!rule.applies(task))
            continue;
        Functional::messageAlertWithTitle(QString::fromUtf16(rule.title), QString::fromUtf16(rule.message));
        post(rule.notification, task.task());
        return false;
    }
    return true;
}

/// Whether the row of the copy was deleted, here or elsewhere. To write to it, and to read it again, would
/// lose what the user has typed.
bool hasLostRow(const MVTask &task)
{
    return task.task() && DBWorker::getObjectFromId(DBWorker::getIdFromObject(task.task())) != task.task();
}

void prepareFields(MVTask &task)
{
    task.title = task.title.trimmed();
    if (task.startDate)
        task.startDate = Functional::dateWithZeroSeconds(*task.startDate);
    if (task.dueDate)
        task.dueDate = Functional::dateWithZeroSeconds(*task.dueDate);
}

/// Every delegate of a task of a project belongs to the project. Whether this one did not before.
bool joinDelegateToProject(const MVTask &task)
{
    if (!task.project || !task.delegateToUser)
        return false;
    const std::vector<ContactPtr> members = task.project->delegateToUser();
    if (std::find(members.begin(), members.end(), task.delegateToUser) != members.end())
        return false;
    task.project->addRelated("delegateToUser", task.delegateToUser);
    return true;
}

/// Whether the calendar holds no item for such a task: it is done, or has no date to stand at.
bool isOffCalendar(const MVTask &task)
{
    return task.status == TaskStatus::Done || (!task.startDate && !task.isEmailCall());
}

bool isOffCalendar(const EntityTask &task)
{
    return task.status() == TaskStatus::Done || (!task.startDate() && task.type() != TaskType::EmailCall);
}

/// The row can have been replaced, or have gone with what the calendars no longer show.
void followRow(MVTask &task, const TaskPtr &row)
{
    if (row && row != task.task())
        task.moveToRow(row);
}

void saveSingle(MVTask &task, OptionalDate oldDate)
{
    task.save();
    if (isOffCalendar(task))
        followRow(task, CalendarEvent::removeEventCalendarFromTask(task.task(), Span::FutureTasks, false));
    else
        CalendarEvent::initEventCalendarFromTask(*task.task(), Span::FutureTasks, oldDate, false);
    post(notifications::taskChange, task.task());
}

/// False if the user gives it up.
bool saveMemberOfSeries(MVTask &task, OptionalDate oldDate)
{
    const QStringList buttons = {localized(QStringLiteral("Save This Task Only")),
                                 localized(QStringLiteral("Save All Future Tasks")),
                                 localized(QStringLiteral("Cancel"))};
    const int answer = Alert::run({{}, localized(QStringLiteral("This is a repeating task.")), {}, buttons});
    if (answer != Alert::firstButton && answer != Alert::secondButton)
        return false;
    task.save();
    const Span span = answer == Alert::firstButton ? Span::ThisTask : Span::FutureTasks;
    followRow(task, TaskManager::saveWithDate(oldDate, task.task(), span, true));
    return true;
}

void replaceNotifications(const EntityTask &task)
{
    task.removeNotifications();
    std::vector<UserNotification> notifications = task.newLocalNotification();
    if (!notifications.empty())
        UserNotificationCenter::defaultUserNotificationCenter().setScheduledNotifications(
            std::move(notifications));
}

bool commit(const MVTask &task)
{
    if (auto error = DBWorker::saveContext()) {
        Log::line(QStringLiteral("Can't Save Task! %1 %2").arg(error->message, error->domain));
        return false;
    }
    if (!CalendarEvent::hasAccesToCalendar() && task.task())
        replaceNotifications(*task.task());
    return true;
}

bool leavesProject(const MVTask &task)
{
    if (!task.project || !TaskManager::incorrectTaskTimeMessageProjectStartDate(task.project->startDate(),
                                                                                task.project->dueDate(),
                                                                                task.startDate, task.dueDate))
        return false;
    post(notifications::taskChange, task.task());
    return true;
}

} // namespace

bool TaskManager::saveTaskTemp(MVTask &task, bool autoSave)
{
    if (hasLostRow(task)) {
        Log::line(QStringLiteral("Can't Save Task! It was deleted."));
        return false;
    }
    prepareFields(task);
    if (!meetsDateRules(task) || leavesProject(task))
        return false;
    const bool isDelegateNew = joinDelegateToProject(task);
    const TaskPtr row = task.task();
    const bool isMemberOfSeries = row && !row->repeat().isEmpty();
    const bool wasEmailCall = row && row->type() == TaskType::EmailCall;
    const OptionalDate oldDate = !row ? std::nullopt : wasEmailCall ? row->dueDate() : row->startDate();
    if (!isMemberOfSeries)
        saveSingle(task, oldDate);
    else if (!saveMemberOfSeries(task, oldDate) && isDelegateNew)
        task.project->removeRelated("delegateToUser", task.delegateToUser);
    if ((autoSave || !CalendarEvent::hasAccesToCalendar()) && !commit(task))
        return false;
    if (task.isNewTask())
        NotificationCenter::defaultCenter().post(notifications::coreDataAddNewTask);
    task.setTaskValues();
    post(notifications::taskChange, task.task());
    return true;
}

TaskPtr TaskManager::saveWithDate(OptionalDate date, const TaskPtr &task, Span span, bool wasRepeat)
{
    TaskPtr row = task;
    if (isOffCalendar(*task))
        row = CalendarEvent::removeEventCalendarFromTask(task, span, false);
    else
        CalendarEvent::initEventCalendarFromTask(*task, span, date, wasRepeat);
    post(notifications::reloadTasks, row ? row : task);
    return row;
}

void TaskManager::saveActionWithDate(OptionalDate date, Span span, const MVTask &task, bool wasRepeat)
{
    if (!task.task())
        return;
    if (isOffCalendar(task))
        CalendarEvent::removeEventCalendarFromTask(task.task(), span, false);
    else
        CalendarEvent::initEventCalendarFromTask(*task.task(), span, date, wasRepeat);
    post(notifications::reloadTasks, task.task());
}

bool TaskManager::incorrectTaskTimeMessageProjectStartDate(OptionalDate projectStartDate,
                                                           OptionalDate projectDueDate,
                                                           OptionalDate taskStartDate,
                                                           OptionalDate taskDueDate)
{
    const OptionalDate projectEnd =
        projectDueDate ? OptionalDate(MTDates::endOfCurrentDay(*projectDueDate)) : std::nullopt;
    switch (
        Functional::dateValidationsMainStartDate(projectStartDate, projectEnd, taskStartDate, taskDueDate)) {
    case 1:
        Functional::messageAlertWithTitle(
            QStringLiteral("Invalid Start Date"),
            QStringLiteral("Start Date can't be less than project Start Date!"));
        return true;
    case 2:
        Functional::messageAlertWithTitle(QStringLiteral("Invalid Start Date"),
                                          QStringLiteral("Start Date can't be more than project Due Date!"));
        return true;
    case 3:
        Functional::messageAlertWithTitle(QStringLiteral("Invalid Due Date"),
                                          QStringLiteral("Due Date can't be less than project Start Date!"));
        return true;
    case 4:
        Functional::messageAlertWithTitle(QStringLiteral("Invalid Due Date"),
                                          QStringLiteral("Due Date can't be more than project Due Date!"));
        return true;
    default:
        return false;
    }
}
