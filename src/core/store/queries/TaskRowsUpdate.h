#pragma once

#include "store/queries/RowsWatcher.h"
#include "store/queries/TaskListQuery.h"

#include <set>

/// Brings the rows of a list up to date after some tasks changed: those tasks leave, come, or go to another
/// place, headers and gaps with them, and no other row is touched. The result is what a fetch would give,
/// except that rows which the list does not order stay in the order in which they were.
class TaskRowsUpdate
{
public:
    TaskRowsUpdate(TaskRows &updated, const TaskListQuery &listQuery, RowsWatcher &hearer)
        : rows(updated)
        , query(listQuery)
        , watcher(hearer)
    {}

    /// \param changed the tasks that changed; they may be gone.
    /// \param held tasks that changed, too, but stay where they are.
    void run(const std::set<RowId> &changed, const std::set<RowId> &held = {});

private:
    struct Place
    {
        size_t group;
        size_t index;
    };
    /// A changed task that the list has.
    struct Member
    {
        RowId row;
        /// How many of the tasks that did not change stand above it in its group.
        size_t rest = 0;
        /// Whether it stands there already.
        bool isSettled = false;
    };
    /// What becomes of one group.
    struct Target
    {
        std::vector<Member> members;
        /// The tasks that did not change.
        std::vector<RowId> rest;
    };

    std::vector<tasklists::PlacedRow> wanted() const;
    bool isReset(const std::vector<tasklists::PlacedRow> &placed);
    void removeLeavers(const std::vector<tasklists::PlacedRow> &placed);
    void openGroups(const std::vector<tasklists::PlacedRow> &placed);
    void openGroup(const GroupHeader &header);
    bool standsBelow(const GroupKey &one, const GroupKey &other);
    void closeEmptyGroups();

    Target targetOf(const TaskRows::Group &group, std::vector<RowId> members) const;
    void findPlaces(std::vector<Target> &targets);
    void keepSettled(Target &target, const tasklists::OrderKeys &keys) const;
    void searchPlaces(std::vector<Target> &targets);
    void sortMembers(Target &target, const TaskRows::Group &group) const;
    void settle(size_t group, const Target &target);
    void bring(RowId row, Place to);

    size_t groupOf(const GroupKey &key) const;
    std::optional<Place> placeOf(RowId row) const;
    int rowAt(Place place) const;
    void insertAt(Place place, RowId row);
    void eraseAt(Place place);

    TaskRows &rows;
    const TaskListQuery &query;
    RowsWatcher &watcher;
    std::set<RowId> changedRows;
    std::set<RowId> heldRows;
    /// The places of all headers, once they were asked for.
    std::vector<GroupKey> headerOrder;
};
