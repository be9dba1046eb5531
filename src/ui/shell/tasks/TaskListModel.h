#pragma once

#include "records/TaskRowContent.h"
#include "store/queries/TaskRowsUpdate.h"
#include "widgets/TableModel.h"

/// The rows of a task list as a view takes them. A task is loaded when its row is asked for.
class TaskListModel : public TableModel, private TaskRowsWatcher
{
    Q_OBJECT
public:
    /// A quiet header is not about rows below it.
    enum Role { ContentRole = Qt::UserRole, IsQuietRole };

    explicit TaskListModel(ListType list, QObject *parent = nullptr);

    ListType listType() const { return type; }
    const TaskRows &rows() const { return dataSourceTasks; }
    void setRows(TaskRows rows);
    /// Brings the rows of changed tasks up to date and leaves all others alone.
    /// \param held tasks that changed, too, but stay where they are.
    void update(const TaskListQuery &query, const std::set<RowId> &changed, const std::set<RowId> &held);
    /// The task at a row, or null if the row is something else.
    TaskPtr taskAt(int row) const;
    /// The row of a task, or -1.
    int rowOf(const TaskPtr &task) const;
    RowKind kindOf(int row) const override;
    quint64 stableIdAt(int row) const override;
    QString countInWords(int items) const override;
    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;

    /// The words of a group's header.
    static QString headerText(const GroupHeader &header);

private:
    QVariant taskData(const EntityTask &task, int role) const;

    void willInsert(int first, int last) override { beginInsertRows({}, first, last); }
    void didInsert() override { endInsertRows(); }
    void willRemove(int first, int last) override { beginRemoveRows({}, first, last); }
    void didRemove() override { endRemoveRows(); }
    void willMove(int row, int above) override { beginMoveRows({}, row, row, {}, above); }
    void didMove() override { endMoveRows(); }
    void willReset() override { beginResetModel(); }
    void didReset() override { endResetModel(); }
    void rowChanged(int row) override { Q_EMIT dataChanged(index(row), index(row)); }

    ListType type;
    TaskRows dataSourceTasks;
};
