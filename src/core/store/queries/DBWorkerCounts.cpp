#include "records/dates/MVDate.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"
#include "store/queries/Lateness.h"
#include "store/queries/ListDefinitions.h"

#include <algorithm>
#include <limits>

// The numbers on badges.

namespace {

/// Counts among the tasks that the user can see, which is found out once.
class Counter
{
public:
    int count(const Predicate &condition) const
    {
        return mainContext().count(EntityTask::fetchRequest().where(condition && visible));
    }
    /// How many pass one of several conditions that exclude each other. Each is counted for itself, along a
    /// range of an index.
    int count(const std::vector<Predicate> &parts) const
    {
        int sum = 0;
        for (const Predicate &part : parts)
            sum += count(part);
        return sum;
    }

private:
    Predicate visible = tasklists::visibleTasks();
};

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

Badge todayBadge(const Counter &counter)
{
    const Lateness lateness;
    Badge badge;
    for (const TypePart &part : todayParts(MVDate::getEndOfDay(MVDate::date()))) {
        badge.right += counter.count(part.condition);
        badge.left += counter.count(part.condition && lateness.isLate(part.type));
    }
    return badge;
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
    return Counter().count(openLateParts());
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

TaskBadges DBWorker::taskBadges()
{
    const Counter counter;
    TaskBadges badges;
    badges.inbox.right = counter.count(tasklists::inbox().base);
    badges.today = todayBadge(counter);
    badges.scheduled.right = counter.count(scheduledParts(MVDate::getEndOfDay(MVDate::date())));
    badges.someday.right = counter.count(somedayParts());
    badges.categories.right = counter.count(openTasks() && Predicate::format("category != nil"));
    badges.delegated.right = counter.count(openTasks() && Predicate::format("delegateToUser != nil"));
    badges.notDone.right = counter.count(openTasks());
    badges.done.right =
        counter.count(Predicate::format("status = %d and expirationDate != nil", TaskStatus::Done));
    return badges;
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
