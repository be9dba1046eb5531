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
    /// How many of those that pass are late, each asked for itself.
    int countLate(const Lateness &lateness, const Predicate &condition) const
    {
        int sum = 0;
        mainContext().visit(EntityTask::fetchRequest().where(condition && visible), {"type", "dueDate"},
                            [&](const RowReader &row) { sum += isLate(lateness, row) ? 1 : 0; });
        return sum;
    }
    static bool isLate(const Lateness &lateness, const RowReader &row)
    {
        const std::optional<TaskType> type =
            row.isNull(0) ? std::nullopt : std::optional(static_cast<TaskType>(row.integer(0)));
        return lateness.isLate(type, row.date(1));
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
        badge.left += counter.count(each(lateness.recentlyLate(part.type), part.condition));
    }
    badge.left += counter.countLate(lateness, tasklists::today().base && lateness.longPast());
    return badge;
}

} // namespace

int DBWorker::countStaleTasks()
{
    const Lateness lateness;
    const Counter counter;
    int count = counter.countLate(lateness, openTasks() && lateness.longPast());
    for (const TaskType type : allTaskTypes)
        count += counter.count(
            each(lateness.recentlyLate(type), openTasks() && Predicate::format("type = %d", type)));
    // What is none of them counts as a ToDo.
    for (const Predicate &other :
         {Predicate::format("type = nil"), Predicate::format("type < %d", TaskType::ToDo),
          Predicate::format("type > %d", TaskType::EmailCall)})
        count += counter.countLate(lateness, openTasks() && other && lateness.notLongPast());
    return count;
}

TaskList DBWorker::allDelayTasks()
{
    std::vector<RowId> rows;
    const Lateness lateness;
    const FetchRequest dated =
        EntityTask::fetchRequest()
            .where(openTasks() && Predicate::format("dueDate != nil") && tasklists::visibleTasks())
            .sortedBy({ascending("title")});
    mainContext().visit(dated, {"type", "dueDate"}, [&](const RowReader &row) {
        if (Counter::isLate(lateness, row))
            rows.push_back(row.rowId());
    });
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
