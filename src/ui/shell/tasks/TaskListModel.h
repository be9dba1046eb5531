#pragma once

#include "records/TaskRowContent.h"
#include "store/queries/TaskRows.h"
#include "widgets/TableModel.h"

/// The rows of a task list as a view takes them. A task is loaded when its row is asked for.
class TaskListModel : public TableModel
{
    Q_OBJECT
public:
    /// A quiet header is not about rows below it.
    enum Role { ContentRole = Qt::UserRole, IsQuietRole };

    explicit TaskListModel(ListType list, QObject *parent = nullptr);

    ListType listType() const { return type; }
    const TaskRows &rows() const { return dataSourceTasks; }
    void setRows(TaskRows rows);
    /// The task at a row, or null if the row is something else.
    TaskPtr taskAt(int row) const;
    /// The row of a task, or -1.
    int rowOf(const TaskPtr &task) const;
    /// A row whose task was changed is painted anew.
    void rowChanged(int row) { Q_EMIT dataChanged(index(row), index(row)); }

    RowKind kindOf(int row) const override;
    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;

    /// The words of a group's header.
    static QString headerText(const GroupHeader &header);

private:
    QVariant taskData(const EntityTask &task, int role) const;

    ListType type;
    TaskRows dataSourceTasks;
};
