#pragma once

#include <QAbstractItemDelegate>

/// Paints the rows of a `TableViewExtended` and says where their check box stands.
class TableCell : public QAbstractItemDelegate
{
    Q_OBJECT
public:
    using QAbstractItemDelegate::QAbstractItemDelegate;

    /// Where the check box of a row is pressed; an empty rectangle for a row without one.
    virtual QRect checkBoxRect(const QRect &row, Qt::LayoutDirection direction,
                               const QModelIndex &index) const = 0;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &) const override
    {
        return option.rect.size();
    }
};
