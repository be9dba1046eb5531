#pragma once

#include <QStyledItemDelegate>

/// Paints the rows of a `TableViewExtended` and says where their check box stands.
class TableCell : public QStyledItemDelegate
{
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    /// Where the check box of a row is pressed; an empty rectangle for a row without one.
    virtual QRect checkBoxRect(const QRect &row, Qt::LayoutDirection direction,
                               const QModelIndex &index) const = 0;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &) const override
    {
        return option.rect.size();
    }
    /// Who rests on a row that is cut off reads the whole of it.
    bool helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                   const QModelIndex &index) override;

protected:
    /// The text of a row if it does not fit into it, else nothing.
    virtual QString cutText(const QStyleOptionViewItem &option, const QModelIndex &index) const;
    /// A text if it is wider than its room.
    static QString ifWider(const QString &text, const QFont &font, int room);
};
