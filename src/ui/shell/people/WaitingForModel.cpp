#include "shell/people/WaitingForModel.h"

#include "records/people/WaitingFor.h"

static std::vector<ListedRecord> waiting()
{
    std::vector<ListedRecord> listed;
    for (const RowId row : WaitingFor::rows())
        listed.push_back({row});
    return listed;
}

WaitingForModel::WaitingForModel(QObject *parent)
    : TaskListModel(ListType::Delegated, parent)
    , tasks(EntityTask::entityName)
{}

void WaitingForModel::fetch()
{
    beginResetModel();
    tasks.set(waiting());
    endResetModel();
}

void WaitingForModel::update(const std::set<RowId> &changed, const std::set<RowId> &held)
{
    tasks.follow(waiting(), changed, held, *this);
}

ObjectPtr WaitingForModel::recordAt(int row) const
{
    return row >= 0 && row < tasks.size() ? tasks.recordAt(row) : nullptr;
}

RowId WaitingForModel::identifierAt(int row) const
{
    return row >= 0 && row < tasks.size() ? tasks.identifierAt(row) : 0;
}

int WaitingForModel::rowOf(const ObjectPtr &record) const
{
    return record ? tasks.rowOf(*record) : -1;
}

int WaitingForModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : tasks.size();
}

QVariant WaitingForModel::data(const QModelIndex &index, int role) const
{
    const auto task = std::static_pointer_cast<EntityTask>(index.isValid() ? recordAt(index.row()) : nullptr);
    return task ? taskData(*task, role) : QVariant();
}

/// Who has it comes first, then since when.
TaskRowContent WaitingForModel::contentOf(const EntityTask &task) const
{
    TaskRowContent content = TaskListModel::contentOf(task);
    using Kind = TaskRowDetail::Kind;
    const auto others = std::ranges::stable_partition(
        content.details, [](const TaskRowDetail &detail) { return detail.kind == Kind::Person; });
    content.details.insert(others.begin(), {Kind::Waiting, WaitingFor::timesInWords(task), nullptr});
    return content;
}
