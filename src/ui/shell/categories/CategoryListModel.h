#pragma once

#include "records/Categories.h"
#include "records/RecordListModel.h"
#include "store/entities/EntityCategory.h"
#include "store/queries/RecordRows.h"

#include <QHash>

#include <optional>

/// The categories of the screen, last the row for tasks without one, and while one is being made its row.
class CategoryListModel : public RecordListModel
{
    Q_OBJECT
public:
    enum Role { ColorRole = Qt::UserRole, CountRole, IsDefaultRole };

    using RecordListModel::RecordListModel;

    void fetch() override;
    void update(const std::set<RowId> &changed, const std::set<RowId> &held) override;
    bool isRegroupedBy(const StoreChanges &) const override { return true; }
    ObjectPtr recordAt(int row) const override { return categoryAt(row); }
    RowId identifierAt(int row) const override { return row < rows.size() ? rows.identifierAt(row) : 0; }
    int rowOf(const ObjectPtr &record) const override;

    /// Adds a row at the end in which a new category of this colour is named.
    void beginNew(const CategoryColor &color);
    /// Takes that row away. The category that was made of it; null if none was.
    CategoryPtr endNew();
    /// The row of the new category, or -1.
    int newRow() const { return newColor ? rowCount() - 1 : -1; }
    /// Null for "none" and for the new row.
    CategoryPtr categoryAt(int row) const;

    RowKind kindOf(int) const override { return RowKind::Item; }
    quint64 stableIdAt(int row) const override;
    QString countInWords(int items) const override;
    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    /// Names a category. Nothing is said of a title that is empty or taken: it is given up.
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;

private:
    std::vector<ListedRecord> listed();
    QColor colorOf(int row) const;

    RecordRows rows{EntityCategory::entityName};
    bool hasNone = false;
    /// By category; that of tasks without one is 0.
    QHash<RowId, int> openTasks;
    std::optional<CategoryColor> newColor;
    CategoryPtr made;
};
