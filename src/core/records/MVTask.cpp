#include "records/MVTask.h"

#include "calendarsync/CalendarEvent.h"
#include "calendarsync/RecordsTransaction.h"
#include "records/FillEmpty.h"
#include "records/Functional.h"
#include "records/TaskColumns.h"
#include "records/TaskManager.h"
#include "records/dates/MVDate.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"

#include <algorithm>

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
    taskcolumns::forEach([this](const auto &column) {
        if (column.copied != taskcolumns::Copied::Never)
            fill(this->*column.member, column.of(*row));
    });
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
    taskcolumns::forEach([this](const auto &column) {
        if (column.copied == taskcolumns::Copied::BothWays)
            column.set(*row, this->*column.member);
    });
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
    bool isSame = true;
    taskcolumns::forEach([this, &isSame](const auto &column) {
        if (isSame && column.difference == taskcolumns::Difference::Counts)
            isSame = taskcolumns::isSame(this->*column.member, column.of(*row));
    });
    return !isSame;
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
