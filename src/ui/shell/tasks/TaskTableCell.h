#pragma once

#include "shell/tasks/TaskRowLayout.h"
#include "widgets/TableCell.h"
#include "widgets/TableViewExtended.h"

struct TaskRowContent;

/// Paints the rows of a task list: tasks on cards, headers between them.
class TaskTableCell : public TableCell
{
    Q_OBJECT
public:
    static constexpr RowHeights heights{.compactItem = 34};

    using TableCell::TableCell;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QRect checkBoxRect(const QRect &row, Qt::LayoutDirection direction,
                       const QModelIndex &index) const override;

protected:
    QString cutText(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

private:
    static TaskRowLayout layoutOf(const QRect &row, const TaskRowContent &content);
    static void paintTask(QPainter &painter, const QStyleOptionViewItem &option, const QModelIndex &index);
};
