#pragma once

#include "records/Categories.h"
#include "widgets/TableModel.h"

/// The categories of the screen, last the row for tasks without one, and while one is being made its row.
class CategoryListModel : public TableModel
{
    Q_OBJECT
public:
    enum Role { ColorRole = Qt::UserRole, CountRole, IsDefaultRole };

    using TableModel::TableModel;

    /// Fetches the rows; with a colour, a row for a new category of that colour stands at the end.
    void reload(const std::optional<CategoryColor> &newCategory = {});
    /// Brings the rows up to date one by one, where there is no row for a new category.
    void update();
    const std::optional<CategoryColor> &newCategoryDictionary() const { return newColor; }
    /// The row of the new category, or -1.
    int newRow() const { return newColor ? rowCount() - 1 : -1; }

    /// Null for "none" and for the new row.
    CategoryPtr categoryAt(int row) const;
    /// The row of a category, or of "none" for a null one; -1 if it is not there.
    int rowOf(const CategoryPtr &category) const;
    bool isTitleEditable(int row) const;

    RowKind kindOf(int) const override { return RowKind::Item; }
    quint64 stableIdAt(int row) const override;
    QString countInWords(int items) const override;
    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;

private:
    struct Row
    {
        CategoryPtr category;
        int openTasks = 0;
    };

    static std::vector<Row> fetchRows();
    QColor colorOf(int row) const;

    std::vector<Row> dataAllCategory;
    std::optional<CategoryColor> newColor;
};
