#include "store/queries/TaskRows.h"

namespace {

struct KeyOfHeader
{
    GroupKey operator()(const PriorityHeader &header) const
    {
        return QString::number(static_cast<int>(header.priority));
    }
    GroupKey operator()(const DayHeader &header) const { return header.day; }
    GroupKey operator()(const EntityNotValue &) const { return QString(); }
    GroupKey operator()(const ObjectPtr &object) const { return object ? object->identifier() : QString(); }
};

} // namespace

GroupKey keyOf(const GroupHeader &header)
{
    return std::visit(KeyOfHeader(), header);
}

void TaskRows::renumber()
{
    int row = 0;
    for (Group &group : groups) {
        group.firstRow = row;
        row = group.endRow() + 1;
    }
    taskAndHeaderRows = groups.empty() ? 0 : groups.back().endRow();
}

void TaskRows::appendGroup(std::optional<GroupHeader> header, TaskList tasks)
{
    if (tasks.isEmpty())
        return;
    // A separator stands between two groups: it takes the row before this group.
    const int firstRow = groups.empty() ? 0 : groups.back().endRow() + 1;
    groups.push_back({std::move(header), std::move(tasks), firstRow});
    taskAndHeaderRows = groups.back().endRow();
}

TaskRows TaskRows::flat(TaskList tasks, bool alwaysEnds)
{
    TaskRows rows;
    const bool ends = alwaysEnds || !tasks.isEmpty();
    rows.appendGroup(std::nullopt, std::move(tasks));
    if (ends)
        rows.appendSeparator();
    return rows;
}

TaskRows TaskRows::empty(EntityNotValue saying)
{
    TaskRows rows;
    rows.groups.push_back({saying, TaskList(), 0});
    rows.taskAndHeaderRows = 1;
    return rows;
}

/// The group that a row of a header or task lies in, or null for a separator.
const TaskRows::Group *TaskRows::groupAt(int row) const
{
    const auto next = std::upper_bound(groups.begin(), groups.end(), row, [](int wanted, const Group &group) {
        return wanted < group.firstRow;
    });
    if (next == groups.begin())
        return nullptr;
    const Group &group = *(next - 1);
    return row < group.endRow() ? &group : nullptr;
}

TaskRows::Kind TaskRows::kindOf(int row) const
{
    const Group *group = groupAt(row);
    if (!group)
        return Kind::Separator;
    return row < group->firstTaskRow() ? Kind::Header : Kind::Task;
}

TaskRow TaskRows::at(int row) const
{
    const Group *group = groupAt(row);
    if (!group)
        return EntitySeperator();
    if (row < group->firstTaskRow())
        return *group->header;
    return group->tasks.at(row - group->firstTaskRow());
}

TaskPtr TaskRows::taskAt(int row) const
{
    const Group *group = groupAt(row);
    return group && row >= group->firstTaskRow() ? group->tasks.at(row - group->firstTaskRow()) : nullptr;
}

RowId TaskRows::identifierAt(int row) const
{
    const Group *group = groupAt(row);
    if (!group || row < group->firstTaskRow())
        return 0;
    return group->tasks.rows()[static_cast<size_t>(row - group->firstTaskRow())];
}

int TaskRows::rowOf(const EntityTask &task) const
{
    for (const Group &group : groups) {
        const int place = group.tasks.indexOf(task);
        if (place >= 0)
            return group.firstTaskRow() + place;
    }
    return -1;
}

int TaskRows::taskCount() const
{
    int count = 0;
    for (const Group &group : groups)
        count += group.tasks.size();
    return count;
}

std::vector<TaskPtr> TaskRows::tasks() const
{
    std::vector<TaskPtr> all;
    for (const Group &group : groups) {
        for (TaskPtr task : group.tasks) {
            if (task)
                all.push_back(std::move(task));
        }
    }
    return all;
}
