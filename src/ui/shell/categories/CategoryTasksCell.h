#pragma once

#include "widgets/TableCell.h"

/// A row of the categories: its colour, title and mark if it is the default, and how many tasks are open.
class CategoryTasksCell : public TableCell
{
    Q_OBJECT
public:
    using TableCell::TableCell;

    QRect checkBoxRect(const QRect &, Qt::LayoutDirection, const QModelIndex &) const override { return {}; }
    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    /// Where the title stands in a row, for who writes over it.
    static QRect titleRect(const QRect &row, Qt::LayoutDirection direction, const QModelIndex &index);
};
