#pragma once

#include "records/RecordListModel.h"
#include "records/TaskRowContent.h"
#include "store/queries/TaskRowsUpdate.h"

/// The rows of a task list under their headers.
class TaskListModel : public RecordListModel
{
    Q_OBJECT
public:
    /// A quiet header is not about rows below it.
    enum Role { ContentRole = Qt::UserRole, IsQuietRole };

    explicit TaskListModel(ListType list, QObject *parent = nullptr);

    ListType listType() const { return type; }
    const TaskRows &rows() const { return dataSourceTasks; }
    /// What is listed, asked at each fetch and at each change.
    void setQuery(std::function<TaskListQuery()> listQuery) { query = std::move(listQuery); }

    void fetch() override;
    void update(const std::set<RowId> &changed, const std::set<RowId> &held) override;
    bool isRegroupedBy(const StoreChanges &changes) const override;
    ObjectPtr recordAt(int row) const override;
    RowId identifierAt(int row) const override { return dataSourceTasks.identifierAt(row); }
    int rowOf(const ObjectPtr &record) const override;
    RowKind kindOf(int row) const override;
    QString countInWords(int items) const override;
    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;

    /// In a list of one project its title would stand in each row.
    void setShowsProject(bool shows) { showsProject = shows; }

    /// The words of a group's header.
    static QString headerText(const GroupHeader &header);

protected:
    void setRows(TaskRows rows);
    virtual TaskRowContent contentOf(const EntityTask &task) const;
    QVariant taskData(const EntityTask &task, int role) const;

private:
    ListType type;
    std::function<TaskListQuery()> query;
    TaskRows dataSourceTasks;
    bool showsProject = true;
    GroupedBy groupedBy = GroupedBy::Nothing;
};
