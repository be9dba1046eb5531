#pragma once

#include "widgets/TableCell.h"

/// Paints the rows of a plain list: a colour, a title and a quiet line below it, on a card that goes around
/// all rows under a heading.
class RecordCell : public TableCell
{
    Q_OBJECT
public:
    using TableCell::TableCell;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QRect checkBoxRect(const QRect &, Qt::LayoutDirection, const QModelIndex &) const override { return {}; }
    /// Paints the words of a heading above a card.
    static void paintHeading(QPainter &painter, const QStyleOptionViewItem &option, const QString &words,
                             bool isQuiet = false);

protected:
    QString cutText(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
};
