#pragma once

#include "widgets/TableCell.h"
#include "widgets/TableViewExtended.h"

/// Paints the rows of search results: headings, and records a little further in.
class CellViewSearchDeteil : public TableCell
{
    Q_OBJECT
public:
    static constexpr RowHeights heights{.item = 32, .lines = 1, .header = 32, .separator = 0, .below = 0};

    using TableCell::TableCell;

    QRect checkBoxRect(const QRect &, Qt::LayoutDirection, const QModelIndex &) const override { return {}; }
    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;

protected:
    QString cutText(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
};
