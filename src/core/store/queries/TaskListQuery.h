#pragma once

#include "objectstore/StoreChanges.h"
#include "store/queries/ListDefinitions.h"
#include "store/queries/TaskRows.h"

#include <optional>
#include <vector>

/// By what the rows of a list stand under headers.
enum class GroupedBy { Nothing, Category, Project, Priority, Delegate, DayDone };

/// What stands below the tasks of a list, or in their place.
enum class ListEnd {
    /// A gap, if there are tasks.
    Gap,
    /// A gap, also in an empty list.
    GapAlways,
    /// A gap; an empty list says that there is nothing.
    GapOrNotice,
};

/// One list as it is shown: what it asks of a task, its order and its groups. It can be fetched as a whole,
/// or asked about some tasks only, by the same conditions and in the same order.
struct TaskListQuery
{
    tasklists::Definition definition;
    std::vector<Predicate> filter = {};
    GroupedBy groupedBy = GroupedBy::Nothing;
    ListEnd end = ListEnd::Gap;

    /// The query behind a list with an optional grouping; a filter counts in the ungrouped list only. A
    /// grouping that nobody knows is none.
    static TaskListQuery of(tasklists::Definition definition, Grouping grouping,
                            const FilterEntry *filter = nullptr);
    /// All open tasks under the contact they are delegated to.
    static TaskListQuery delegated();
    /// Done tasks by day.
    static TaskListQuery doneByDay();

    TaskRows fetch() const;
    /// The list of rows that were placed, all that it has.
    TaskRows rowsOf(const std::vector<tasklists::PlacedRow> &placed) const;

    /// Those among some rows that the list has, in its order.
    std::vector<tasklists::PlacedRow> placed(std::vector<RowId> among) const;
    /// The header of a group, or absent for tasks that stand in none (of a category that is gone, or of a
    /// priority that nobody knows).
    std::optional<GroupHeader> headerOf(const GroupKey &key) const;
    /// All headers that the list can have, in their order; none where the keys themselves say it.
    std::vector<GroupHeader> headers() const;

    /// Whether other records than tasks changed so that groups are called otherwise or stand elsewhere.
    bool isRegroupedBy(const StoreChanges &changes) const;

private:
    tasklists::Reading reading() const;
};
