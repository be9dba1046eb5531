#include "calendarsync/CalendarEvent.h"
#include "calendarsync/RecordsTransaction.h"
#include "calendarsync/StoreReach.h"
#include "foundation/Alert.h"
#include "foundation/Localization.h"
#include "foundation/Log.h"
#include "records/Functional.h"
#include "records/TaskManager.h"
#include "records/copies/MVTask.h"
#include "records/dates/MTDates.h"
#include "store/queries/DBWorker.h"
#include "store/state/NotificationNames.h"

#include <algorithm>

// Saving a working copy: the rules for its dates, then the row, its calendar item and those who show it.

namespace {

void tellOfChange(const TaskPtr &task)
{
    NotificationCenter::defaultCenter().post(notifications::taskChange, task);
}

/// One rule of the dates: when it applies, and what it says then.
struct DateRule
{
    bool (*applies)(const MVTask &);
    const char16_t *title;
    const char16_t *message;
};

/// Whether the copy has neither a due date nor the promise to be done some day.
bool lacksDueDate(const MVTask &task)
{
    return !task.dueDate && !task.dueSomeDay.value_or(false);
}

bool isSameMinute(const MVTask &task)
{
    return task.startDate && task.dueDate && Functional::sameMinute(*task.startDate, *task.dueDate);
}

constexpr DateRule dateRules[] = {
    {[](const MVTask &task) { return task.startDate && task.dueDate && *task.dueDate < *task.startDate; },
     u"Invalid Due Date", u"Due Date can't be less than Start Date!"},
    {[](const MVTask &task) { return task.isAppointment() && !task.startDate; }, u"Invalid Start Date",
     u"Since task type is Appointment - Start Date can't be empty!"},
    {[](const MVTask &task) { return task.isAppointment() && lacksDueDate(task); }, u"Invalid Due Date",
     u"Since task type is Appointment - Due Date can't be empty!"},
    {[](const MVTask &task) { return task.isAppointment() && isSameMinute(task); }, u"Invalid Date",
     u"Due Date can't be the same as Start Date!"},
    {[](const MVTask &task) { return task.isEmailCall() && lacksDueDate(task); }, u"Invalid Start Date",
     u"Since task type is Email/Call - Start Date can't be empty!"},
    {[](const MVTask &task) { return task.isToDo() && task.startDate && lacksDueDate(task); },
     u"Invalid Due Date",
     u"Since task type is ToDo and Start Date is not empty - Due Date can't be empty too!"},
};

bool meetsDateRules(RecordsTransaction &transaction, const MVTask &task)
{
    for (const DateRule &rule : dateRules) {
        if (!rule.applies(task))
            continue;
        transaction.tell(QString::fromUtf16(rule.title), QString::fromUtf16(rule.message));
        tellOfChange(task.task());
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

/// A task that was written down while there was no calendar gets the usual one. One that has an event
/// somewhere is left there.
void takeUsualCalendar(MVTask &task)
{
    if (!task.typeCalendarID.isEmpty() || !task.calendarID.isEmpty() || DBWorker::isSample() ||
        !CalendarEvent::hasAccesToCalendar())
        return;
    const auto usual = CalendarEvent::getDefaultAccessCalendar();
    if (!usual || !usual->allowsContentModifications)
        return;
    task.typeCalendarID = CalendarEvent::identifierOfCalendar(*usual);
    TaskManager::takeValues(task, *usual);
}

/// Every delegate of a task of a project belongs to the project.
void joinDelegateToProject(const MVTask &task)
{
    if (!task.project || !task.delegateToUser)
        return;
    const std::vector<ContactPtr> members = task.project->delegateToUser();
    if (std::find(members.begin(), members.end(), task.delegateToUser) == members.end())
        task.project->addRelated("delegateToUser", task.delegateToUser);
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

/// Takes a task that is done, or has no date any more, out of the calendar. Its event is found by the dates
/// and the rule that the row had, so that these stay with it until then.
void leaveCalendar(RecordsTransaction &transaction, MVTask &task, Span span)
{
    const TaskPtr row = task.task();
    const bool isOnCalendar = row && !row->calendarID().isEmpty() && !calendarstore::isOffline();
    const OptionalDate start = task.startDate;
    const OptionalDate due = task.dueDate;
    if (isOnCalendar) {
        task.startDate = row->startDate();
        task.dueDate = row->dueDate();
        task.repeat = row->repeat();
        task.endRepeat = row->endRepeat();
    }
    task.save();
    CalendarEvent::removeEventCalendarFromTask(transaction, task.task(), span, false);
    if (!isOnCalendar || !task.task()->context() || task.task()->isDeleted())
        return;
    task.startDate = start;
    task.dueDate = due;
    task.task()->setStartDate(start);
    task.task()->setDueDate(due);
}

void saveSingle(RecordsTransaction &transaction, MVTask &task, OptionalDate oldDate)
{
    if (isOffCalendar(task)) {
        leaveCalendar(transaction, task, Span::FutureTasks);
    } else {
        task.save();
        CalendarEvent::initEventCalendarFromTask(transaction, *task.task(), Span::FutureTasks, oldDate,
                                                 false);
    }
    tellOfChange(task.task());
}

/// How far the change of a member of a series reaches; absent if the user gives it up.
std::optional<Span> askForSpan(RecordsTransaction &transaction)
{
    const QStringList buttons = {localized(QStringLiteral("Save This Task Only")),
                                 localized(QStringLiteral("Save All Future Tasks")),
                                 localized(QStringLiteral("Cancel"))};
    const int answer =
        transaction.ask({{}, localized(QStringLiteral("This is a repeating task.")), {}, buttons});
    if (answer == Alert::firstButton)
        return Span::ThisTask;
    return answer == Alert::secondButton ? std::optional(Span::FutureTasks) : std::nullopt;
}

/// What is said where the dates of a task leave those of its project.
struct EnvelopeRule
{
    int result;
    const char16_t *title;
    const char16_t *message;
};

constexpr EnvelopeRule envelopeRules[] = {
    {1, u"Invalid Start Date", u"Start Date can't be less than project Start Date!"},
    {2, u"Invalid Start Date", u"Start Date can't be more than project Due Date!"},
    {3, u"Invalid Due Date", u"Due Date can't be less than project Start Date!"},
    {4, u"Invalid Due Date", u"Due Date can't be more than project Due Date!"},
};

/// Null if the task lies within its project.
const EnvelopeRule *brokenEnvelopeRule(OptionalDate projectStart, OptionalDate projectDue,
                                       OptionalDate taskStart, OptionalDate taskDue)
{
    const OptionalDate end = projectDue ? OptionalDate(MTDates::endOfCurrentDay(*projectDue)) : std::nullopt;
    const int result = Functional::dateValidationsMainStartDate(projectStart, end, taskStart, taskDue);
    const auto *found = std::ranges::find(envelopeRules, result, &EnvelopeRule::result);
    return found == std::end(envelopeRules) ? nullptr : found;
}

bool leavesProject(RecordsTransaction &transaction, const MVTask &task)
{
    if (!task.project)
        return false;
    const EnvelopeRule *broken =
        brokenEnvelopeRule(task.project->startDate(), task.project->dueDate(), task.startDate, task.dueDate);
    if (!broken)
        return false;
    transaction.tell(QString::fromUtf16(broken->title), QString::fromUtf16(broken->message));
    tellOfChange(task.task());
    return true;
}

/// The copy holds what the store now holds, and who shows the task hears of it.
void finish(MVTask &task)
{
    if (task.isNewTask())
        NotificationCenter::defaultCenter().post(notifications::coreDataAddNewTask);
    task.setTaskValues();
    tellOfChange(task.task());
}

QString undoName(const MVTask &task)
{
    return task.task() ? QStringLiteral("Edit Task") : QStringLiteral("New Task");
}

} // namespace

void TaskManager::takeValues(MVTask &task, const EKCalendar &calendar)
{
    const EKColor color = CalendarEvent::getColorOfCalendar(calendar);
    task.calendarTitle = calendar.title;
    task.colorCalendarR = static_cast<float>(color.red);
    task.colorCalendarG = static_cast<float>(color.green);
    task.colorCalendarB = static_cast<float>(color.blue);
    task.colorCalendarA = static_cast<float>(color.alpha);
}

bool TaskManager::saveTaskTemp(MVTask &task, bool autoSave)
{
    RecordsTransaction transaction(undoName(task));
    if (saveTaskTemp(transaction, task) == SaveEnd::Refused)
        return false;
    if (autoSave || !CalendarEvent::hasAccesToCalendar())
        return commit(transaction, task);
    transaction.settle();
    finish(task);
    return true;
}

SaveEnd TaskManager::saveTaskOfForm(MVTask &task)
{
    RecordsTransaction transaction(undoName(task));
    const SaveEnd end = saveTaskTemp(transaction, task);
    if (end == SaveEnd::Saved && !commit(transaction, task))
        return SaveEnd::Refused;
    return end;
}

bool TaskManager::commit(RecordsTransaction &transaction, MVTask &task)
{
    if (auto error = transaction.commit()) {
        DBWorker::tellOfFailure(error);
        Log::line(QStringLiteral("Can't Save Task! %1 %2").arg(error->message, error->domain));
        return false;
    }
    finish(task);
    return true;
}

SaveEnd TaskManager::saveTaskTemp(RecordsTransaction &transaction, MVTask &task)
{
    if (hasLostRow(task)) {
        Log::line(QStringLiteral("Can't Save Task! It was deleted."));
        return SaveEnd::Refused;
    }
    prepareFields(task);
    takeUsualCalendar(task);
    if (!meetsDateRules(transaction, task) || leavesProject(transaction, task))
        return SaveEnd::Refused;
    const TaskPtr row = task.task();
    const bool isMemberOfSeries = row && !row->repeat().isEmpty();
    const bool wasEmailCall = row && row->type() == TaskType::EmailCall;
    const OptionalDate oldDate = !row ? std::nullopt : wasEmailCall ? row->dueDate() : row->startDate();
    const auto span = isMemberOfSeries ? askForSpan(transaction) : Span::FutureTasks;
    if (!span)
        return SaveEnd::GivenUp;
    joinDelegateToProject(task);
    if (isMemberOfSeries)
        saveMemberOfSeries(transaction, task, oldDate, *span);
    else
        saveSingle(transaction, task, oldDate);
    return SaveEnd::Saved;
}

void TaskManager::saveMemberOfSeries(RecordsTransaction &transaction, MVTask &task, OptionalDate date,
                                     Span span)
{
    if (isOffCalendar(task))
        return leaveCalendar(transaction, task, span);
    task.save();
    saveWithDate(transaction, date, task.task(), span, true);
}

void TaskManager::saveWithDate(RecordsTransaction &transaction, OptionalDate date, const TaskPtr &task,
                               Span span, bool wasRepeat)
{
    if (isOffCalendar(*task))
        CalendarEvent::removeEventCalendarFromTask(transaction, task, span, false);
    else
        CalendarEvent::initEventCalendarFromTask(transaction, *task, span, date, wasRepeat);
}

bool TaskManager::incorrectTaskTimeMessageProjectStartDate(OptionalDate projectStartDate,
                                                           OptionalDate projectDueDate,
                                                           OptionalDate taskStartDate,
                                                           OptionalDate taskDueDate)
{
    const EnvelopeRule *broken =
        brokenEnvelopeRule(projectStartDate, projectDueDate, taskStartDate, taskDueDate);
    if (broken)
        Functional::messageAlertWithTitle(QString::fromUtf16(broken->title),
                                          QString::fromUtf16(broken->message));
    return broken;
}
