#include "store/queries/TaskListQuery.h"

#include "store/entities/MainContext.h"

#include <unordered_map>

using tasklists::PlacedRow;

namespace {

std::string columnOf(GroupedBy groupedBy)
{
    switch (groupedBy) {
    case GroupedBy::Category:
        return "category";
    case GroupedBy::Project:
        return "project";
    case GroupedBy::Priority:
        return "priority";
    case GroupedBy::Delegate:
        return "delegateToUser";
    case GroupedBy::DayDone:
        return "expirationDate";
    case GroupedBy::Nothing:
        break;
    }
    return {};
}

/// The entity whose objects are headers; empty if they are none.
std::string_view entityOf(GroupedBy groupedBy)
{
    switch (groupedBy) {
    case GroupedBy::Category:
        return EntityCategory::entityName;
    case GroupedBy::Project:
        return EntityProject::entityName;
    case GroupedBy::Delegate:
        return EntityContacts::entityName;
    default:
        return {};
    }
}

std::optional<GroupHeader> headerOfObject(GroupedBy groupedBy, const QString &identifier)
{
    const ObjectPtr object = mainContext().object(entityOf(groupedBy), identifier);
    if (!object || object->isDeleted())
        return std::nullopt;
    switch (groupedBy) {
    case GroupedBy::Category:
        return std::static_pointer_cast<EntityCategory>(object);
    case GroupedBy::Project:
        return std::static_pointer_cast<EntityProject>(object);
    default:
        return std::static_pointer_cast<EntityContacts>(object);
    }
}

std::optional<GroupHeader> headerOfPriority(const QString &number)
{
    for (const Priority priority : allPriorities) {
        if (number == QString::number(static_cast<int>(priority)))
            return PriorityHeader{priority};
    }
    return std::nullopt;
}

EntityNotValue missingIn(GroupedBy groupedBy)
{
    switch (groupedBy) {
    case GroupedBy::Category:
        return {EntityNotValue::NoCategory};
    case GroupedBy::Project:
        return {EntityNotValue::NoProject};
    default:
        return {EntityNotValue::NoDelegate};
    }
}

/// The rows of a list by what they have in common; a row without a value stands under the empty text.
using Buckets = std::unordered_map<QString, std::vector<RowId>>;

TaskRows inBuckets(const std::vector<PlacedRow> &placed, const std::vector<GroupHeader> &headers)
{
    Buckets buckets;
    for (const PlacedRow &one : placed)
        buckets[std::get<QString>(one.group)].push_back(one.row);
    TaskRows rows;
    for (const GroupHeader &header : headers) {
        if (auto bucket = buckets.extract(std::get<QString>(keyOf(header))))
            rows.appendGroup(header, tasklists::list(std::move(bucket.mapped())));
    }
    return rows;
}

/// Rows come by their day.
TaskRows byDay(const std::vector<PlacedRow> &placed)
{
    TaskRows rows;
    for (auto first = placed.begin(); first != placed.end();) {
        std::vector<RowId> tasks;
        auto next = first;
        for (; next != placed.end() && next->group == first->group; ++next)
            tasks.push_back(next->row);
        rows.appendGroup(DayHeader{std::get<Date>(first->group)}, tasklists::list(std::move(tasks)));
        first = next;
    }
    return rows;
}

TaskList listOf(const std::vector<PlacedRow> &placed)
{
    std::vector<RowId> rows;
    rows.reserve(placed.size());
    for (const PlacedRow &one : placed)
        rows.push_back(one.row);
    return tasklists::list(std::move(rows));
}

} // namespace

TaskListQuery TaskListQuery::of(tasklists::Definition definition, Grouping grouping,
                                const FilterEntry *filter)
{
    switch (grouping) {
    case Grouping::Category:
        return {std::move(definition), {}, GroupedBy::Category};
    case Grouping::Project:
        return {std::move(definition), {}, GroupedBy::Project};
    case Grouping::Priority:
        return {std::move(definition), {}, GroupedBy::Priority};
    case Grouping::None:
        break;
    }
    return {std::move(definition), DBWorker::predicateTasks(filter)};
}

TaskListQuery TaskListQuery::delegated()
{
    return {tasklists::notDone(), {}, GroupedBy::Delegate};
}

TaskListQuery TaskListQuery::doneByDay()
{
    return {tasklists::doneByDay(), {}, GroupedBy::DayDone};
}

tasklists::Reading TaskListQuery::reading() const
{
    return {.filter = filter,
            .groupColumn = columnOf(groupedBy),
            .isGroupedByDay = groupedBy == GroupedBy::DayDone,
            .isGroupIndexed = !entityOf(groupedBy).empty()};
}

TaskRows TaskListQuery::fetch() const
{
    return rowsOf(tasklists::placedRows(definition, reading()));
}

TaskRows TaskListQuery::rowsOf(const std::vector<PlacedRow> &placed) const
{
    if (groupedBy == GroupedBy::Nothing) {
        TaskList tasks = listOf(placed);
        if (tasks.isEmpty() && end == ListEnd::GapOrNotice)
            return TaskRows::empty({EntityNotValue::NoEvents});
        return TaskRows::flat(std::move(tasks), end == ListEnd::GapAlways);
    }
    TaskRows rows = groupedBy == GroupedBy::DayDone ? byDay(placed) : inBuckets(placed, headers());
    if (!rows.isEmpty())
        rows.appendSeparator();
    return rows;
}

std::vector<PlacedRow> TaskListQuery::placed(std::vector<RowId> among) const
{
    tasklists::Reading some = reading();
    some.among = std::move(among);
    return tasklists::placedRows(definition, some);
}

std::optional<GroupHeader> TaskListQuery::headerOf(const GroupKey &key) const
{
    if (const auto *day = std::get_if<Date>(&key))
        return DayHeader{*day};
    const QString &text = std::get<QString>(key);
    if (groupedBy == GroupedBy::Priority)
        return headerOfPriority(text);
    return text.isEmpty() ? GroupHeader(missingIn(groupedBy)) : headerOfObject(groupedBy, text);
}

std::vector<GroupHeader> TaskListQuery::headers() const
{
    std::vector<GroupHeader> all;
    switch (groupedBy) {
    case GroupedBy::Category:
        std::ranges::copy(DBWorker::allCategories(), std::back_inserter(all));
        break;
    case GroupedBy::Project:
        for (const ProjectPtr &project : DBWorker::allProjects())
            all.emplace_back(project);
        break;
    case GroupedBy::Delegate:
        std::ranges::copy(DBWorker::allDelegateds(), std::back_inserter(all));
        break;
    case GroupedBy::Priority:
        for (const Priority priority : allPriorities)
            all.emplace_back(PriorityHeader{priority});
        return all;
    case GroupedBy::DayDone:
    case GroupedBy::Nothing:
        return all;
    }
    all.emplace_back(missingIn(groupedBy));
    return all;
}

bool TaskListQuery::isRegroupedBy(const StoreChanges &changes) const
{
    const std::string_view entity = entityOf(groupedBy);
    return !entity.empty() && std::ranges::any_of(changes.updated, [entity](const StoreChanges::Update &one) {
        return one.object->entity().name() == entity && one.columns.any();
    });
}
