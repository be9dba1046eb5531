#pragma once

#include "records/HomeRowContent.h"
#include "store/queries/HomeRows.h"
#include "widgets/TableModel.h"

#include <set>

/// The rows of one of the lists of Home as a view takes them.
class HomeListModel : public TableModel, private RowsWatcher
{
    Q_OBJECT
public:
    /// A header of today is marked, and the row that says there is nothing.
    enum Role { ContentRole = Qt::UserRole, IsTodayRole, IsNoticeRole };
    enum class List { Overdue, Week };

    explicit HomeListModel(List shownList, QObject *parent = nullptr);

    /// Whether its rows have check boxes.
    bool isTickable() const { return list == List::Overdue; }
    /// Fetches the rows; those that stay in their order are not touched.
    void fetch();
    const HomeRows &homeRows() const { return rows; }
    ObjectPtr recordAt(int row) const;
    /// The first row of a record, or -1.
    int rowOf(const ObjectPtr &record) const;
    /// The rows of stable ids that are there.
    std::set<int> rowsOfKeys(const std::set<quint64> &keys) const;

    RowKind kindOf(int row) const override;
    std::optional<int> heightOf(int row) const override;
    quint64 stableIdAt(int row) const override { return rows.keyAt(row); }
    QString countInWords(int items) const override;
    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;

private:
    HomeRowContent contentOf(const ObjectPtr &record) const;
    QVariant recordData(const ObjectPtr &record, int role) const;

    void willInsert(int first, int last) override { beginInsertRows({}, first, last); }
    void didInsert() override { endInsertRows(); }
    void willRemove(int first, int last) override { beginRemoveRows({}, first, last); }
    void didRemove() override { endRemoveRows(); }
    void willMove(int row, int above) override { beginMoveRows({}, row, row, {}, above); }
    void didMove() override { endMoveRows(); }
    void willReset() override { beginResetModel(); }
    void didReset() override { endResetModel(); }
    void rowChanged(int row) override { Q_EMIT dataChanged(index(row), index(row)); }

    List list;
    HomeRows rows;
};
