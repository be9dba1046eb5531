#pragma once

#include "widgets/TableCell.h"

/// A row of the categories: its colour, title and mark if it is the default, and how many tasks are open. The
/// title is written in its place.
class CategoryTasksCell : public TableCell
{
    Q_OBJECT
public:
    using TableCell::TableCell;

    QRect checkBoxRect(const QRect &, Qt::LayoutDirection, const QModelIndex &) const override { return {}; }
    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;
    void updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                              const QModelIndex &index) const override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    QString cutText(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
};
