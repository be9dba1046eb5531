#include "store/queries/DBWorker.h"
#include "store/queries/TaskListQuery.h"

// Lists with headers.

namespace {

TaskRows grouped(const tasklists::Definition &definition, Grouping grouping)
{
    const TaskListQuery query = TaskListQuery::of(definition, grouping);
    return query.groupedBy == GroupedBy::Nothing ? TaskRows() : query.fetch();
}

} // namespace

TaskRows DBWorker::allTodayTasksGrouped(Grouping grouping)
{
    return grouped(tasklists::today(), grouping);
}

TaskRows DBWorker::allScheduledTasksGrouped(Grouping grouping)
{
    return grouped(tasklists::scheduled(), grouping);
}

TaskRows DBWorker::allSomedayTasksGrouped(Grouping grouping)
{
    return grouped(tasklists::someday(), grouping);
}

TaskRows DBWorker::allNotDoneTasksGrouped(Grouping grouping)
{
    return grouped(tasklists::notDone(), grouping);
}

TaskRows DBWorker::allDoneTasksGrouped(Grouping grouping)
{
    return grouped(tasklists::done(), grouping);
}

TaskRows DBWorker::allTasksWithDelegates()
{
    return TaskListQuery::delegated().fetch();
}

std::optional<TaskRows> DBWorker::allDoneTasks()
{
    TaskRows rows = TaskListQuery::doneByDay().fetch();
    return rows.isEmpty() ? std::nullopt : std::optional(std::move(rows));
}
