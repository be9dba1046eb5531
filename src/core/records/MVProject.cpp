#include "records/MVProject.h"

#include "records/Functional.h"
#include "records/copies/FillEmpty.h"
#include "records/dates/MVDate.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"

#include <algorithm>
#include <tuple>

MVProject::MVProject(ProjectPtr project)
{
    setProject(std::move(project));
}

MVProject MVProject::startEntityProjectValue()
{
    MVProject copy;
    copy.status = TaskStatus::Open;
    copy.priority = Priority::None;
    copy.stage = 0;
    copy.category = EntityCategory::getCustom();
    return copy;
}

void MVProject::setProject(ProjectPtr project)
{
    row = std::move(project);
    if (!row)
        return;
    isNew = false;
    fill(title, row->title());
    fill(dueDate, row->dueDate());
    fill(startDate, row->startDate());
    fill(stage, row->stage());
    fill(status, row->status());
    fill(details, row->details());
    fill(priority, row->priority());
    fill(category, row->category());
    fill(delegateToUser, row->delegateToUser());
    fill(expirationDate, row->expirationDate());
    fill(rowIndex, row->rowIndex());
    fill(task, row->task());
    fill(creationDate, row->creationDate());
}

void MVProject::setProjectValues()
{
    if (!row)
        return;
    const bool wasNew = isNew;
    *this = MVProject(row);
    isNew = wasNew;
}

MVProject &MVProject::save()
{
    isNew = false;
    if (!row)
        makeRow();
    writeFields();
    return *this;
}

void MVProject::makeRow()
{
    status = status.value_or(TaskStatus::Open);
    priority = priority.value_or(Priority::None);
    stage = stage.value_or(0);
    row = mainContext().insert<EntityProject>();
    row->setCreationDate(MVDate::date());
    isNew = true;
}

void MVProject::writeFields()
{
    row->setTitle(title);
    row->setDueDate(dueDate);
    row->setStartDate(startDate);
    row->setStage(stage);
    row->setStatus(status);
    row->setDetails(details);
    row->setPriority(priority);
    row->setCategory(category);
    row->setTask(task);
    row->setDelegateToUser(delegateToUser);
    row->setExpirationDate(expirationDate);
    row->setRowIndex(rowIndex);
}

std::vector<TaskPtr> MVProject::sorted(const std::vector<TaskPtr> &tasks)
{
    std::vector<TaskPtr> open;
    std::vector<TaskPtr> done;
    for (const TaskPtr &one : tasks)
        (one->status() == TaskStatus::Done ? done : open).push_back(one);
    std::stable_sort(done.begin(), done.end(), [](const TaskPtr &one, const TaskPtr &other) {
        return one->expirationDate() < other->expirationDate();
    });
    std::stable_sort(open.begin(), open.end(), [](const TaskPtr &one, const TaskPtr &other) {
        const OptionalDate due = one->dueDate();
        const OptionalDate otherDue = other->dueDate();
        return due == otherDue ? one->title() < other->title() : due > otherDue;
    });
    std::vector<TaskPtr> sorted = DBWorker::dueDateWithSomedayArrayComparator(std::move(open));
    sorted.insert(sorted.end(), done.begin(), done.end());
    return sorted;
}

std::vector<ContactPtr> MVProject::sortedContacts() const
{
    std::vector<ContactPtr> sorted = delegateToUser;
    std::stable_sort(sorted.begin(), sorted.end(), [](const ContactPtr &one, const ContactPtr &other) {
        return std::tuple(one->firstName(), one->lastName()) <
               std::tuple(other->firstName(), other->lastName());
    });
    return sorted;
}

void MVProject::changeStatus(const QString &text)
{
    for (const TaskStatus known : allTaskStatuses) {
        if (text == Functional::statusStringFromType(known))
            status = known;
    }
    expirationDate = status == TaskStatus::Done ? OptionalDate(MVDate::date()) : std::nullopt;
}

void MVProject::changePriority(const QString &text)
{
    for (const Priority known : allPriorities) {
        if (text == Functional::priorityStringFromType(known))
            priority = known;
    }
}
