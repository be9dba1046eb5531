#include "records/dates/MVDate.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"
#include "store/queries/ListDefinitions.h"

#include <map>
#include <unordered_map>

// Lists with headers. A list is read once, in its order, and dealt out to its groups: each group then holds
// what a fetch of its own would give, in the same order.

using tasklists::Definition;
using tasklists::Order;

namespace {

/// The rows of a list by the text in one column; a row without a value stands under the empty text.
using Buckets = std::unordered_map<QString, std::vector<RowId>>;

Buckets dealtOut(const Definition &definition, const std::string &column)
{
    Buckets buckets;
    for (tasklists::PlacedRow &placed : tasklists::placedRows(definition, {}, column))
        buckets[placed.group].push_back(placed.row);
    return buckets;
}

void append(TaskRows &rows, Buckets &buckets, const QString &key, GroupHeader header)
{
    rows.appendGroup(std::move(header), tasklists::list(std::move(buckets[key])));
}

TaskRows closed(TaskRows rows)
{
    if (!rows.isEmpty())
        rows.appendSeparator();
    return rows;
}

template <typename Headers>
TaskRows groupedByObject(const Definition &definition, const std::string &column, const Headers &headers,
                         EntityNotValue::Type missing)
{
    Buckets buckets = dealtOut(definition, column);
    TaskRows rows;
    for (const auto &header : headers)
        append(rows, buckets, header->identifier(), header);
    append(rows, buckets, QString(), EntityNotValue{missing});
    return closed(std::move(rows));
}

TaskRows groupedByPriority(const Definition &definition)
{
    Buckets buckets = dealtOut(definition, "priority");
    TaskRows rows;
    for (const Priority priority : allPriorities)
        append(rows, buckets, QString::number(static_cast<int>(priority)), PriorityHeader{priority});
    return closed(std::move(rows));
}

TaskRows grouped(const Definition &definition, Grouping grouping)
{
    switch (grouping) {
    case Grouping::Category:
        return groupedByObject(definition, "category", DBWorker::allCategories(), EntityNotValue::NoCategory);
    case Grouping::Project:
        return groupedByObject(definition, "project", DBWorker::allProjects(), EntityNotValue::NoProject);
    case Grouping::Priority:
        return groupedByPriority(definition);
    default:
        return {};
    }
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
    return groupedByObject(tasklists::notDone(), "delegateToUser", allDelegateds(),
                           EntityNotValue::NoDelegate);
}

std::optional<TaskRows> DBWorker::allDoneTasks()
{
    std::map<Date, std::vector<RowId>> days;
    mainContext().visit(
        tasklists::request(tasklists::doneByDay()), {"expirationDate"}, [&days](const RowReader &row) {
            // Rows come in order, so that nearly always the day is the last one.
            const Date moment = *row.date(0);
            const bool isLastDay = !days.empty() && moment >= days.rbegin()->first &&
                                   moment <= MVDate::getEndOfDay(days.rbegin()->first);
            days[isLastDay ? days.rbegin()->first : MVDate::getStartOfDay(moment)].push_back(row.rowId());
        });
    if (days.empty())
        return std::nullopt;
    TaskRows rows;
    for (auto &[day, tasks] : days)
        rows.appendGroup(DayHeader{day}, tasklists::list(std::move(tasks)));
    return closed(std::move(rows));
}
