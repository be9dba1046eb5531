#pragma once

class QPainter;
class QRect;
class QStyleOptionViewItem;
class TableModel;

/// The piece of a card behind one row of a list of any kind: the card goes around all rows of a group.
struct TaskTableRow
{
    bool isFirstRow = false;
    bool isLastRow = false;

    /// What the neighbours make of a row.
    static TaskTableRow at(const TableModel &model, int row);
    /// Paints the piece with its strip, its state and the line to the next row, which begins where the title
    /// does.
    void paint(QPainter &painter, const QStyleOptionViewItem &option, const QRect &card,
               const QRect &title) const;
};
