#pragma once

#include "objectstore/ManagedObject.h"
#include "objectstore/StoreChanges.h"
#include "store/queries/RowsWatcher.h"
#include "widgets/TableModel.h"

#include <set>

/// The rows of a list of records as a view takes them. A record is loaded when its row is asked for.
class RecordListModel : public TableModel, protected RowsWatcher
{
    Q_OBJECT
public:
    using TableModel::TableModel;

    /// Fetches all rows anew.
    virtual void fetch() = 0;
    /// Brings the rows of changed records up to date and leaves all others alone.
    /// \param changed records that changed; they may be gone.
    /// \param held records that changed, too, but stay where they are.
    virtual void update(const std::set<RowId> &changed, const std::set<RowId> &held) = 0;
    /// Whether other records changed so that all rows have to be fetched anew.
    virtual bool isRegroupedBy(const StoreChanges &changes) const = 0;

    /// The record at a row; null if the row is something else, or its record is gone.
    virtual ObjectPtr recordAt(int row) const = 0;
    /// What the store calls the record at a row, without loading it; 0 if the row is something else.
    virtual RowId identifierAt(int row) const = 0;
    /// The row of a record, or -1.
    virtual int rowOf(const ObjectPtr &record) const = 0;

    quint64 stableIdAt(int row) const override;

protected:
    void willInsert(int first, int last) override { beginInsertRows({}, first, last); }
    void didInsert() override { endInsertRows(); }
    void willRemove(int first, int last) override { beginRemoveRows({}, first, last); }
    void didRemove() override { endRemoveRows(); }
    void willMove(int row, int above) override { beginMoveRows({}, row, row, {}, above); }
    void didMove() override { endMoveRows(); }
    void willReset() override { beginResetModel(); }
    void didReset() override { endResetModel(); }
    void rowChanged(int row) override { Q_EMIT dataChanged(index(row), index(row)); }
};
