#include "records/dates/MVDate.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"
#include "store/queries/Lateness.h"
#include "store/queries/ListDefinitions.h"

#include <algorithm>
#include <limits>

// The numbers on badges.

namespace {

std::vector<Predicate> each(const std::vector<Predicate> &parts, const Predicate &condition)
{
    std::vector<Predicate> all;
    for (const Predicate &part : parts)
        all.push_back(part && condition);
    return all;
}

Predicate openTasks()
{
    return Predicate::format("status != %d", TaskStatus::Done);
}

Predicate openDated()
{
    return openTasks() && Predicate::format("dueSomeDay = %@", false);
}

// The lists of dated tasks taken apart by type, in words that a range of an index can answer.

struct TypePart
{
    TaskType type;
    Predicate condition;
};

std::vector<TypePart> todayParts(Date end)
{
    return {{TaskType::ToDo,
             Predicate::format("type = %d and startDate <= %@", TaskType::ToDo, end) && openDated()},
            {TaskType::Appointment,
             Predicate::format("type = %d and startDate <= %@", TaskType::Appointment, end) && openDated()},
            {TaskType::EmailCall,
             Predicate::format("type = %d and dueDate <= %@", TaskType::EmailCall, end) && openDated()}};
}

std::vector<Predicate> scheduledParts(Date end)
{
    return each(
        {Predicate::format("type = %d and startDate > %@ and dueDate <> nil", TaskType::ToDo, end),
         Predicate::format("type = %d and startDate > %@ and dueDate <> nil", TaskType::Appointment, end),
         Predicate::format("type = %d and dueDate > %@", TaskType::EmailCall, end)},
        openDated());
}

std::vector<Predicate> somedayParts()
{
    return each(
        {Predicate::format("type = %d", TaskType::ToDo), Predicate::format("type = %d", TaskType::EmailCall)},
        openTasks() && Predicate::format("dueSomeDay = %@", true));
}

/// The open tasks that are late, by type; what is none of the types counts as a ToDo.
std::vector<Predicate> openLateParts()
{
    const Lateness lateness;
    std::vector<Predicate> parts;
    for (const TaskType type : allTaskTypes)
        parts.push_back(openTasks() && Predicate::format("type = %d", type) && lateness.isLate(type));
    for (const Predicate &other :
         {Predicate::format("type = nil"), Predicate::format("type < %d", TaskType::ToDo),
          Predicate::format("type > %d", TaskType::EmailCall)})
        parts.push_back(openTasks() && other && lateness.isLate(TaskType::ToDo));
    return parts;
}

} // namespace

int DBWorker::countStaleTasks()
{
    const Predicate visible = tasklists::visibleTasks();
    int count = 0;
    for (const Predicate &part : openLateParts())
        count += mainContext().count(EntityTask::fetchRequest().where(part && visible));
    return count;
}

TaskList DBWorker::allDelayTasks()
{
    std::vector<RowId> rows;
    mainContext().visit(EntityTask::fetchRequest()
                            .where(Predicate::anyOf(openLateParts()) && tasklists::visibleTasks())
                            .sortedBy({ascending("title")}),
                        {}, [&rows](const RowReader &row) { rows.push_back(row.rowId()); });
    return tasklists::list(std::move(rows));
}

std::vector<BadgePart> DBWorker::badgeParts()
{
    const Predicate visible = tasklists::visibleTasks();
    std::vector<BadgePart> parts;
    const auto add = [&](Badge TaskBadges::*badge, const Predicate &condition,
                         int Badge::*number = &Badge::right) {
        parts.push_back({badge, number, EntityTask::fetchRequest().where(condition && visible)});
    };
    const Date endOfToday = MVDate::getEndOfDay(MVDate::date());
    const Lateness lateness;
    add(&TaskBadges::inbox, tasklists::inbox().base);
    for (const TypePart &part : todayParts(endOfToday)) {
        add(&TaskBadges::today, part.condition);
        add(&TaskBadges::today, part.condition && lateness.isLate(part.type), &Badge::left);
    }
    for (const Predicate &part : scheduledParts(endOfToday))
        add(&TaskBadges::scheduled, part);
    for (const Predicate &part : somedayParts())
        add(&TaskBadges::someday, part);
    add(&TaskBadges::categories, openTasks() && Predicate::format("category != nil"));
    add(&TaskBadges::delegated, openTasks() && Predicate::format("delegateToUser != nil"));
    add(&TaskBadges::notDone, openTasks());
    add(&TaskBadges::done, Predicate::format("status = %d and expirationDate != nil", TaskStatus::Done));
    return parts;
}

TaskBadges DBWorker::taskBadges()
{
    TaskBadges badges;
    for (const BadgePart &part : badgeParts())
        part.of(badges) += mainContext().count(part.request);
    return badges;
}

void DBWorker::makePositionsDistinct()
{
    std::vector<TaskPtr> tasks;
    for (const TaskPtr &task : mainContext().fetch<EntityTask>(EntityTask::fetchRequest().where(
             Predicate::format("startDate ==  nil and type == %d and position != nil", TaskType::ToDo))))
        tasks.push_back(task);
    const auto place = [](const TaskPtr &task) {
        return std::pair(task->position().value_or(0), task->identifier());
    };
    std::ranges::sort(tasks,
                      [&](const TaskPtr &one, const TaskPtr &other) { return place(one) < place(other); });
    for (size_t next = 1; next < tasks.size(); ++next) {
        const auto before = tasks[next - 1]->position().value_or(0);
        if (tasks[next]->position().value_or(0) <= before)
            tasks[next]->setPosition(before + 1);
    }
}

int DBWorker::maxPositionTaskInbox()
{
    const FetchRequest all = EntityTask::fetchRequest().where(
        Predicate::format("startDate ==  nil and type == %d", TaskType::ToDo));
    // Another program may have left any number there; the next position must be one, too.
    constexpr double lowest = std::numeric_limits<int>::min();
    constexpr double greatest = std::numeric_limits<int>::max() - 1;
    return static_cast<int>(std::clamp(mainContext().maximum(all, "position").value_or(0), lowest, greatest));
}
