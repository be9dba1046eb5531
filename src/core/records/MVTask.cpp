#include "records/MVTask.h"

#include "calendarsync/CalendarEvent.h"
#include "calendarsync/RecordsTransaction.h"
#include "records/FillEmpty.h"
#include "records/Functional.h"
#include "records/TaskManager.h"
#include "records/dates/MVDate.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"

#include <algorithm>

namespace {

/// A copy of texts in which null and empty are the same.
bool isSameText(const QString &one, const QString &other)
{
    return one.isEmpty() ? other.isEmpty() : one == other;
}

} // namespace

MVTask::MVTask(TaskPtr task)
{
    setTask(std::move(task));
}

void MVTask::setTask(TaskPtr task)
{
    row = std::move(task);
    if (!row)
        return;
    isNew = false;
    fill(creationDate, row->creationDate());
    fill(position, row->position());
    fill(expirationDate, row->expirationDate());
    fill(title, row->title());
    fill(alert, row->alert());
    fill(secondAlert, row->secondAlert());
    fill(dueDate, row->dueDate());
    fill(dueSomeDay, row->dueSomeDay());
    fill(startDate, row->startDate());
    fill(status, row->status());
    fill(details, row->details());
    fill(priority, row->priority());
    fill(type, row->type());
    fill(tags, row->tags());
    fill(category, row->category());
    fill(company, row->company());
    fill(delegateToUser, row->delegateToUser());
    fill(location, row->location());
    fill(project, row->project());
    fill(repeat, row->repeat());
    fill(endRepeat, row->endRepeat());
    fill(calendarID, row->calendarID());
    fill(calendarTitle, row->calendarTitle());
    fill(typeCalendarID, row->typeCalendarID());
    fill(colorCalendarR, row->colorCalendarR());
    fill(colorCalendarG, row->colorCalendarG());
    fill(colorCalendarB, row->colorCalendarB());
    fill(colorCalendarA, row->colorCalendarA());
    fill(allowsContentModifications, row->allowsContentModifications());
    fill(lastModificationDate, row->lastModificationDate());
    fill(remindID, row->remindID());
    fill(repeatInfoUser, row->repeatInfoUser());
    fill(wasCreatedOffCalendar, row->wasCreatedOffCalendar());
}

void MVTask::setTaskValues()
{
    if (!row)
        return;
    const std::optional<int> formerRowIndex = rowIndex;
    const bool wasNew = isNew;
    *this = MVTask(row);
    rowIndex = formerRowIndex;
    isNew = wasNew;
}

void MVTask::moveToRow(TaskPtr task)
{
    row = std::move(task);
    setTaskValues();
}

MVTask &MVTask::save()
{
    isNew = false;
    if (!row) {
        // Asked before the row is there: a query has to write what is unsaved.
        const bool goesToInbox = !startDate && isToDo();
        const int lastPosition = goesToInbox ? DBWorker::maxPositionTaskInbox() : 0;
        makeRow();
        if (goesToInbox)
            row->setPosition(lastPosition + 1);
    }
    if (status == TaskStatus::Done)
        row->setExpirationDate(MVDate::date());
    lastModificationDate = MVDate::date();
    writeFields();
    return *this;
}

void MVTask::makeRow()
{
    setTask(mainContext().insert<EntityTask>());
    isNew = true;
    creationDate = MVDate::date();
    if (!CalendarEvent::hasAccesToCalendar())
        wasCreatedOffCalendar = true;
    row->setCreationDate(MVDate::date());
    row->setWasCreatedOffCalendar(wasCreatedOffCalendar);
}

void MVTask::writeFields()
{
    row->setTitle(title);
    row->setAlert(alert);
    row->setSecondAlert(secondAlert);
    row->setDueDate(dueDate);
    row->setStartDate(startDate);
    row->setDueSomeDay(dueSomeDay);
    row->setStatus(status);
    row->setDetails(details);
    row->setPriority(priority);
    row->setType(type);
    row->setTags(tags);
    row->setCategory(category);
    row->setCompany(company);
    row->setDelegateToUser(delegateToUser);
    row->setLocation(location);
    row->setProject(project);
    row->setRepeat(repeat);
    row->setEndRepeat(endRepeat);
    row->setCalendarID(calendarID);
    row->setCalendarTitle(calendarTitle);
    row->setTypeCalendarID(typeCalendarID);
    row->setAllowsContentModifications(allowsContentModifications);
    row->setColorCalendarR(colorCalendarR);
    row->setColorCalendarG(colorCalendarG);
    row->setColorCalendarB(colorCalendarB);
    row->setColorCalendarA(colorCalendarA);
    row->setLastModificationDate(lastModificationDate);
    row->setRemindID(remindID);
    row->setRepeatInfoUser(repeatInfoUser);
    row->setWasCreatedOffCalendar(wasCreatedOffCalendar);
}

bool MVTask::saveStatus()
{
    RecordsTransaction transaction;
    const OptionalDate formerExpiration = row ? row->expirationDate() : std::nullopt;
    if (!saveStatus(transaction))
        return false;
    if (!TaskManager::commit(transaction, *this)) {
        if (row && row->status() != TaskStatus::Done)
            row->setExpirationDate(formerExpiration);
        return false;
    }
    return true;
}

bool MVTask::saveStatus(RecordsTransaction &transaction)
{
    const OptionalDate formerExpiration = row ? row->expirationDate() : std::nullopt;
    if (status == TaskStatus::Done && row)
        row->setExpirationDate(MVDate::date());
    lastModificationDate = MVDate::date();
    const bool isSaved = TaskManager::saveTaskTemp(transaction, *this);
    // A rule that refuses the change leaves the row as it was.
    if (!isSaved && row && row->status() != TaskStatus::Done)
        row->setExpirationDate(formerExpiration);
    return isSaved;
}

QString MVTask::priorityString() const
{
    return priority ? Functional::priorityStringFromType(*priority) : QString();
}

QString MVTask::statusString() const
{
    return status ? Functional::statusStringFromType(*status) : QString();
}

namespace {

/// That of some values whose word a text equals.
template <typename Values, typename WordOf>
auto valueOfWord(const QString &text, const Values &values, WordOf wordOf)
{
    const auto found = std::ranges::find_if(values, [&](const auto value) { return text == wordOf(value); });
    return found == values.end() ? std::nullopt : std::optional(*found);
}

} // namespace

void MVTask::changeStatus(const QString &text, bool autoSaved)
{
    const auto known = valueOfWord(text, allTaskStatuses, &Functional::statusStringFromType);
    if (changeStatusTo(known ? known : status) && autoSaved)
        saveStatus();
}

void MVTask::changeStatusType(TaskStatus newStatus, bool autoSaved)
{
    if (changeStatusTo(newStatus) && autoSaved)
        saveStatus();
}

void MVTask::changeStatusType(RecordsTransaction &transaction, TaskStatus newStatus)
{
    if (changeStatusTo(newStatus))
        saveStatus(transaction);
}

bool MVTask::changeStatusTo(std::optional<TaskStatus> newStatus)
{
    if (!repeat.isEmpty() && !CalendarEvent::isAccessChangeRepeatTaskWithMessage(true))
        return false;
    status = newStatus;
    expirationDate = status == TaskStatus::Done ? OptionalDate(MVDate::date()) : std::nullopt;
    return true;
}

void MVTask::changeType(const QString &text)
{
    if (const auto known = valueOfWord(text, allTaskTypes, &Functional::typeStringFromType))
        type = known;
}

void MVTask::changePriority(const QString &text)
{
    if (const auto known = valueOfWord(text, allPriorities, &Functional::priorityStringFromType))
        priority = known;
}

bool MVTask::isChangedTask() const
{
    if (!row)
        return true;
    const bool isSameDates = lastModificationDate == row->lastModificationDate() &&
                             startDate == row->startDate() && dueDate == row->dueDate() &&
                             alert == row->alert() && secondAlert == row->secondAlert() &&
                             endRepeat == row->endRepeat();
    const bool isSameTexts = isSameText(title, row->title()) && isSameText(details, row->details()) &&
                             isSameText(repeat, row->repeat()) && isSameText(calendarID, row->calendarID()) &&
                             isSameText(calendarTitle, row->calendarTitle()) &&
                             isSameText(typeCalendarID, row->typeCalendarID()) &&
                             isSameText(remindID, row->remindID()) &&
                             isSameText(repeatInfoUser, row->repeatInfoUser());
    const bool isSameNumbers =
        position == row->position() && allowsContentModifications == row->allowsContentModifications() &&
        colorCalendarR == row->colorCalendarR() && colorCalendarG == row->colorCalendarG() &&
        colorCalendarB == row->colorCalendarB() && colorCalendarA == row->colorCalendarA() &&
        type == row->type() && status == row->status() && priority == row->priority() &&
        dueSomeDay == row->dueSomeDay() && wasCreatedOffCalendar == row->wasCreatedOffCalendar();
    const bool isSameLinks = category == row->category() && company == row->company() &&
                             delegateToUser == row->delegateToUser() && location == row->location() &&
                             project == row->project();
    return !(isSameDates && isSameTexts && isSameNumbers && isSameLinks);
}

bool MVTask::isProgramRuleString() const
{
    return repeat.contains(QStringLiteral("RRULE:"));
}

QString MVTask::ruleForICalendar() const
{
    return QStringLiteral("RRULE:%1").arg(repeat.split(QStringLiteral(" RRULE ")).value(1));
}

namespace {

double offsetOf(const EntityTask &task, OptionalDate alert)
{
    const OptionalDate base = task.type() == TaskType::EmailCall ? task.dueDate() : task.startDate();
    return alert && base ? (*alert - *base).count() : 0.0;
}

} // namespace

double MVTask::timeIntervalAlertOfTask(const EntityTask &task)
{
    return offsetOf(task, task.alert());
}

double MVTask::timeIntervalSecondAlertOfTask(const EntityTask &task)
{
    return offsetOf(task, task.secondAlert());
}
