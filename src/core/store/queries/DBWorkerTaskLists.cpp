#include "records/dates/MVDate.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"
#include "store/queries/ListDefinitions.h"

// The flat task lists and the other fetches of tasks.

using tasklists::Definition;
using tasklists::Order;

namespace {

TaskList listOf(const Definition &definition, const FilterEntry *filter = nullptr)
{
    std::vector<RowId> rows;
    for (const tasklists::PlacedRow &placed :
         tasklists::placedRows(definition, {.filter = DBWorker::predicateTasks(filter)}))
        rows.push_back(placed.row);
    return tasklists::list(std::move(rows));
}

TaskList visible(Predicate base, SortDescriptors sorting = {})
{
    return listOf({std::move(base), std::move(sorting), Order::Fetched});
}

const QString cannotGetTask = QStringLiteral("Can't get task");

/// The same, with a failure in the log under the words for it.
TaskList reported(Predicate base, SortDescriptors sorting)
{
    return listOf({std::move(base), std::move(sorting), Order::Fetched, cannotGetTask});
}

} // namespace

TaskList DBWorker::allInboxTasks(const FilterEntry *filter)
{
    return listOf(tasklists::inbox(), filter);
}

TaskList DBWorker::allTodayTasks(const FilterEntry *filter)
{
    return listOf(tasklists::today(), filter);
}

TaskList DBWorker::allScheduledTasks(const FilterEntry *filter)
{
    return listOf(tasklists::scheduled(), filter);
}

TaskList DBWorker::allSomedayTasks(const FilterEntry *filter)
{
    return listOf(tasklists::someday(), filter);
}

TaskList DBWorker::allNotDoneTasks(const FilterEntry *filter)
{
    return listOf(tasklists::notDone(), filter);
}

TaskList DBWorker::allTasks()
{
    return visible(Predicate(), {ascending("title")});
}

TaskList DBWorker::getAllTasks()
{
    return visible(Predicate());
}

TaskList DBWorker::allDoneTasksNoGroup()
{
    return visible(Predicate::format("status = %d and expirationDate != nil", TaskStatus::Done));
}

TaskList DBWorker::allTasksWithDelegatesNoGroup()
{
    return visible(Predicate::format("delegateToUser != nil and status != %d", TaskStatus::Done));
}

TaskList DBWorker::allTasksWithCategoryNoGroup()
{
    return visible(Predicate::format("category != nil and status != %d", TaskStatus::Done));
}

TaskList DBWorker::getTasksWithoutCategories()
{
    return listOf(tasklists::withoutCategory());
}

TaskList DBWorker::tasksHaveReminder()
{
    return visible(Predicate::format("remindID != nil"));
}

TaskList DBWorker::getAllTasksWithAlert()
{
    return reported(Predicate::format("alert != nil"), {descending("dueDate")});
}

TaskPtr DBWorker::getFirstTaskByTitle(const QString &title)
{
    return visible(Predicate::format("title = %@ && status != %i", title, TaskStatus::Done),
                   {ascending("startDate")})
        .first();
}

TaskList DBWorker::getSampleNotDoneTask()
{
    return mainContext().fetch<EntityTask>(EntityTask::fetchRequest()
                                               .where(Predicate::format("status <> %d", TaskStatus::Done))
                                               .sortedBy({ascending("startDate")})
                                               .reportedAs(cannotGetTask));
}

TaskList DBWorker::getAllTaskWithType(TaskType type, Date atDay, bool includeDoneTasks)
{
    const Date start = MVDate::getStartOfDay(atDay);
    const Date end = MVDate::getEndOfDay(atDay);
    const Predicate onDay = Predicate::format(
        "(type = %d) and ((startDate >= %@ and startDate <= %@) || (dueDate >= %@ and dueDate <= %@))", type,
        start, end, start, end);
    const Predicate open = Predicate::format("status <> %d", TaskStatus::Done);
    return reported(includeDoneTasks ? onDay : open && onDay, {ascending("startDate")});
}
