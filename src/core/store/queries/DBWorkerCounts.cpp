#include "foundation/Clock.h"
#include "records/MVTask.h"
#include "records/dates/MVDate.h"
#include "store/queries/DBWorker.h"
#include "store/queries/ListDefinitions.h"

// The numbers on badges.

namespace {

/// Tells which open tasks are late: a moment as soon as it has passed, a ToDo from the next day on.
class Lateness
{
public:
    bool isLate(bool isMoment, Date dueDate) const
    {
        if (now <= dueDate)
            return false;
        if (isMoment)
            return true;
        const OptionalDate day = MVDate::dayByPattern(dueDate);
        return today && day && *today > *day;
    }
    bool isLate(const RowReader &row) const
    {
        const bool isMoment = !row.isNull(0) && row.integer(0) != static_cast<int>(TaskType::ToDo);
        return !row.isNull(1) && isLate(isMoment, *row.date(1));
    }

private:
    Date now = Clock::now();
    OptionalDate today = MVDate::dayByPattern(now);
};

/// Open tasks whose due date lies before this moment: among them are the late ones.
FetchRequest pastDue(const SortDescriptors &sorting = {})
{
    const auto statusDone = static_cast<int>(TaskStatus::Done);
    return EntityTask::fetchRequest()
        .where(Predicate::format("dueDate != nil and status != %d and dueDate < %@", statusDone, Clock::now()) &&
               tasklists::visibleTasks())
        .sortedBy(sorting);
}

int countOf(const tasklists::Definition &definition)
{
    return tasklists::context().count(tasklists::request(definition));
}

int countOf(Predicate base)
{
    return countOf({std::move(base), {}, tasklists::Order::Fetched});
}

Badge todayBadge()
{
    tasklists::Definition today = tasklists::today();
    today.sorting.clear();
    Badge badge;
    const Lateness lateness;
    tasklists::context().visit(tasklists::request(today), {"type", "dueDate"}, [&](const RowReader &row) {
        ++badge.right;
        badge.left += lateness.isLate(row) ? 1 : 0;
    });
    return badge;
}

} // namespace

int DBWorker::countStaleTasks()
{
    int count = 0;
    const Lateness lateness;
    tasklists::context().visit(pastDue(), {"type", "dueDate"},
                               [&](const RowReader &row) { count += lateness.isLate(row) ? 1 : 0; });
    return count;
}

TaskList DBWorker::allDelayTasks()
{
    std::vector<RowId> rows;
    const Lateness lateness;
    tasklists::context().visit(pastDue({ascending("title")}), {"type", "dueDate"}, [&](const RowReader &row) {
        if (lateness.isLate(row))
            rows.push_back(row.rowId());
    });
    return tasklists::list(std::move(rows));
}

TaskBadges DBWorker::taskBadges()
{
    const auto statusDone = static_cast<int>(TaskStatus::Done);
    TaskBadges badges;
    badges.inbox.right = countOf(tasklists::inbox());
    badges.today = todayBadge();
    badges.scheduled.right = countOf(tasklists::scheduled());
    badges.someday.right = countOf(tasklists::someday());
    badges.categories.right = countOf(Predicate::format("category != nil and status != %d", statusDone));
    badges.delegated.right = countOf(Predicate::format("delegateToUser != nil and status != %d", statusDone));
    badges.notDone.right = countOf(tasklists::notDone());
    badges.done.right = countOf(Predicate::format("status = %d and expirationDate != nil", statusDone));
    return badges;
}
