#include "records/copies/MVTask.h"

#include "records/copies/FillEmpty.h"
#include "records/copies/TaskColumns.h"
#include "records/dates/MVDate.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"
#include "store/state/CoreContext.h"

#include <QUuid>

MVTask::MVTask(TaskPtr task)
{
    setTask(std::move(task));
}

std::vector<std::shared_ptr<MVTask>> MVTask::copiesOf(std::vector<TaskPtr> tasks)
{
    std::erase(tasks, nullptr);
    std::vector<std::shared_ptr<MVTask>> copies;
    copies.reserve(tasks.size());
    const auto tagsOf = mainContext().relatedObjects({tasks.begin(), tasks.end()}, "tags");
    for (const TaskPtr &task : tasks) {
        const auto copy = std::make_shared<MVTask>();
        copy->setTaskWithoutTags(task);
        if (const auto found = tagsOf.find(task.get()); found != tagsOf.end()) {
            for (const ObjectPtr &tag : found->second)
                copy->tags.push_back(std::static_pointer_cast<EntityTags>(tag));
        }
        copies.push_back(copy);
    }
    return copies;
}

void MVTask::setTask(TaskPtr task)
{
    setTaskWithoutTags(std::move(task));
    if (row)
        fill(tags, row->tags());
}

void MVTask::setTaskWithoutTags(TaskPtr task)
{
    row = std::move(task);
    if (!row)
        return;
    isNew = false;
    taskcolumns::forEach([this](const auto &column) {
        if constexpr (!std::is_same_v<decltype(column.member), decltype(&MVTask::tags)>) {
            if (column.copied != taskcolumns::Copied::Never)
                fill(this->*column.member, column.of(*row));
        }
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

void MVTask::detachFromEvent()
{
    detach();
    calendarID.clear();
    remindID.clear();
    repeatInfoUser.clear();
    position.reset();
    expirationDate.reset();
    lastModificationDate.reset();
    allowsContentModifications.reset();
    wasCreatedOffCalendar.reset();
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
    const QString identifier =
        newIdentifier.isEmpty() ? QUuid::createUuid().toString(QUuid::WithoutBraces) : newIdentifier;
    setTask(
        std::static_pointer_cast<EntityTask>(mainContext().insertObject(EntityTask::entityName, identifier)));
    isNew = true;
    creationDate = MVDate::date();
    if (!CoreContext::current().hasAccessToCalendars())
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
