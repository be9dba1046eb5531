#pragma once

#include "shell/tasks/TaskListModel.h"
#include "store/queries/RecordRows.h"

/// The rows of what others were given to do, in the order of how long they have had it, which each row tells.
class WaitingForModel : public TaskListModel
{
    Q_OBJECT
public:
    explicit WaitingForModel(QObject *parent = nullptr);

    void fetch() override;
    void update(const std::set<RowId> &changed, const std::set<RowId> &held) override;
    bool isRegroupedBy(const StoreChanges &) const override { return false; }
    ObjectPtr recordAt(int row) const override;
    RowId identifierAt(int row) const override;
    int rowOf(const ObjectPtr &record) const override;
    RowKind kindOf(int) const override { return RowKind::Item; }
    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;

protected:
    TaskRowContent contentOf(const EntityTask &task) const override;

private:
    RecordRows tasks;
};
