#pragma once

#include "objectstore/ObjectList.h"
#include "store/entities/Entities.h"

#include <memory>
#include <variant>
#include <vector>

using TaskList = ObjectList<EntityTask>;

/// A gap between two groups of a task list, and the end mark of a list.
struct EntitySeperator
{
    bool operator==(const EntitySeperator &) const = default;
};

/// The header of the group of tasks that have no value, or the only row of an empty task table.
struct EntityNotValue
{
    enum Type { NoCategory = 0, NoProject = 1, NoDelegate = 2, NoTasks = 3, NoEvents = 4 };
    Type type;
    /// Whether it stands for a whole list that is empty.
    bool isOnlyRow() const { return type == NoTasks || type == NoEvents; }
    bool operator==(const EntityNotValue &) const = default;
};

/// The header of a group by priority.
struct PriorityHeader
{
    Priority priority;
    bool operator==(const PriorityHeader &) const = default;
};

/// The header of the tasks done on one day; `day` is the start of it.
struct DayHeader
{
    Date day;
    bool operator==(const DayHeader &) const = default;
};

/// What stands above a group of tasks.
using GroupHeader =
    std::variant<CategoryPtr, ProjectPtr, ContactPtr, PriorityHeader, DayHeader, EntityNotValue>;

/// By what a group is found again: the text of what its tasks have in common (an identifier, a number,
/// nothing) or their day.
using GroupKey = std::variant<QString, Date>;
GroupKey keyOf(const GroupHeader &header);

/// One row of a task list: a task, a header or a gap. A task that was deleted since the list was made is
/// null.
using TaskRow = std::variant<TaskPtr, GroupHeader, EntitySeperator>;

/// The rows of a task list: groups of tasks under headers, a separator between groups and one at the end. A
/// flat list is a single group without a header. Tasks are loaded when their row is looked at.
class TaskRows
{
public:
    /// A group as it is added: an empty group leaves no trace.
    void appendGroup(std::optional<GroupHeader> header, TaskList tasks);
    /// The gap after the last row.
    void appendSeparator() { hasTrailingSeparator = true; }
    /// What a screen shows of an ungrouped list: the tasks, and a separator as the last row. An empty list
    /// gets none, unless `alwaysEnds` asks for it.
    static TaskRows flat(TaskList tasks, bool alwaysEnds = false);
    /// What a table shows that has no tasks: nothing but a header that says so.
    static TaskRows empty(EntityNotValue saying);

    int size() const { return taskAndHeaderRows + (hasTrailingSeparator ? 1 : 0); }
    bool isEmpty() const { return size() == 0; }
    /// The row at a place from 0 to size() - 1.
    TaskRow at(int row) const;
    enum class Kind { Task, Header, Separator };
    /// What the row is, without loading anything.
    Kind kindOf(int row) const;
    /// The task at a row, or null if the row is something else.
    TaskPtr taskAt(int row) const;
    /// The row of a task, or -1.
    int rowOf(const EntityTask &task) const;
    /// What the store calls the task at a row, without loading it; 0 if the row is something else.
    RowId identifierAt(int row) const;
    /// The number of tasks in all groups.
    int taskCount() const;
    /// The tasks of all groups in order, without headers and gaps.
    std::vector<TaskPtr> tasks() const;

private:
    friend class TaskRowsUpdate;

    struct Group
    {
        std::optional<GroupHeader> header;
        TaskList tasks;
        int firstRow;
        int firstTaskRow() const { return firstRow + (header ? 1 : 0); }
        int endRow() const { return firstTaskRow() + tasks.size(); }
    };
    const Group *groupAt(int row) const;
    /// Finds out again where the groups stand.
    void renumber();

    std::vector<Group> groups;
    int taskAndHeaderRows = 0;
    bool hasTrailingSeparator = false;
};
