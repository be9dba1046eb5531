#pragma once

#include "store/queries/TaskListQuery.h"

#include <set>

/// Hears of each step by which rows change, right before and right after it.
class TaskRowsWatcher
{
public:
    virtual ~TaskRowsWatcher() = default;
    virtual void willInsert(int first, int last) = 0;
    virtual void didInsert() = 0;
    virtual void willRemove(int first, int last) = 0;
    virtual void didRemove() = 0;
    /// A row goes to the place above another one, as both are numbered before it goes.
    virtual void willMove(int row, int above) = 0;
    virtual void didMove() = 0;
    /// All rows become others.
    virtual void willReset() = 0;
    virtual void didReset() = 0;
    /// What a row shows can be different.
    virtual void rowChanged(int row) = 0;
};

/// Brings the rows of a list up to date after some tasks changed: those tasks leave, come, or go to another
/// place, headers and gaps with them, and no other row is touched. The result is what a fetch would give,
/// except that rows which the list does not order stay in the order in which they were.
class TaskRowsUpdate
{
public:
    TaskRowsUpdate(TaskRows &updated, const TaskListQuery &listQuery, TaskRowsWatcher &hearer)
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
    TaskRowsWatcher &watcher;
    std::set<RowId> changedRows;
    std::set<RowId> heldRows;
    /// The places of all headers, once they were asked for.
    std::vector<GroupKey> headerOrder;
};
