#pragma once

#include "shell/home/HomeRowLayout.h"
#include "widgets/TableCell.h"

struct HomeRowContent;

/// Paints the rows of the lists of Home: tasks and projects on cards, and the headers of days between them.
class HomeCell : public TableCell
{
    Q_OBJECT
public:
    using TableCell::TableCell;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QRect checkBoxRect(const QRect &row, Qt::LayoutDirection direction,
                       const QModelIndex &index) const override;

protected:
    QString cutText(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

private:
    static HomeRowLayout layoutOf(const QRect &row, const QModelIndex &index, const HomeRowContent &content);
    static void paintRecord(QPainter &painter, const QStyleOptionViewItem &option, const QModelIndex &index);
    static void paintDay(QPainter &painter, const QStyleOptionViewItem &option, const QModelIndex &index);
    static void paintNotice(QPainter &painter, const QStyleOptionViewItem &option, const QModelIndex &index);
};
