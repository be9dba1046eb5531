#include "calendarsync/CalendarEvent.h"
#include "calendarsync/RecordsTransaction.h"
#include "records/Functional.h"
#include "records/TaskManager.h"
#include "records/copies/MVTask.h"
#include "records/dates/MVDate.h"

#include <algorithm>

// The words of a working copy, and what choosing one does.

bool MVTask::saveStatus()
{
    RecordsTransaction transaction(QStringLiteral("Change Status"));
    return saveStatus(transaction) != SaveEnd::Refused && TaskManager::commit(transaction, *this);
}

SaveEnd MVTask::saveStatus(RecordsTransaction &transaction)
{
    lastModificationDate = MVDate::date();
    return TaskManager::saveTaskTemp(transaction, *this);
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

SaveEnd MVTask::changeStatusType(RecordsTransaction &transaction, TaskStatus newStatus)
{
    return changeStatusTo(newStatus) ? saveStatus(transaction) : SaveEnd::Refused;
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
