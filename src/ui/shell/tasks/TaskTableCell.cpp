#include "shell/tasks/TaskTableCell.h"

#include "records/RecordCell.h"
#include "shell/tasks/RowWriter.h"
#include "shell/tasks/TaskListModel.h"
#include "widgets/TaskTableRow.h"
#include "widgets/Theme.h"

#include <QPainter>

using namespace Qt::Literals::StringLiterals;

static TaskRowContent contentOf(const QModelIndex &index)
{
    return index.data(TaskListModel::ContentRole).value<TaskRowContent>();
}

static const TableModel &modelOf(const QModelIndex &index)
{
    return static_cast<const TableModel &>(*index.model());
}

/// A press near the check box means it.
static QRect generous(const QRect &rect)
{
    return rect.isEmpty() ? QRect() : rect.adjusted(-Theme::unit, -Theme::unit, Theme::unit, Theme::unit);
}

static int widthOf(const QString &text, const QFontMetrics &metrics)
{
    return text.isEmpty() ? 0 : metrics.horizontalAdvance(text) + 1;
}

TaskRowLayout TaskTableCell::layoutOf(const QRect &row, const TaskRowContent &content)
{
    const QFontMetrics title(Theme::font(Theme::FontRole::Body));
    const QFontMetrics detail(Theme::font(Theme::FontRole::Small));
    return TaskRowLayout::of({.row = row,
                              .titleHeight = title.height(),
                              .detailHeight = detail.height(),
                              .dateWidth = widthOf(content.dateLabel, detail),
                              .projectWidth = widthOf(content.project, detail),
                              .hasCheckBox = content.hasCheckBox,
                              .isOverdue = content.isOverdue});
}

QRect TaskTableCell::checkBoxRect(const QRect &row, Qt::LayoutDirection direction,
                                  const QModelIndex &index) const
{
    if (modelOf(index).kindOf(index.row()) != RowKind::Item)
        return {};
    return generous(QStyle::visualRect(direction, row, layoutOf(row, contentOf(index)).checkBox));
}

QString TaskTableCell::cutText(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    if (modelOf(index).kindOf(index.row()) != RowKind::Item)
        return {};
    const TaskRowContent content = contentOf(index);
    return ifWider(content.title, Theme::font(Theme::FontRole::Body),
                   layoutOf(option.rect, content).title.width());
}

void TaskTableCell::paint(QPainter *painter, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const
{
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const RowKind kind = modelOf(index).kindOf(index.row());
    if (kind == RowKind::Item)
        paintTask(*painter, option, index);
    else if (kind == RowKind::Header)
        RecordCell::paintHeading(*painter, option, index.data().toString(),
                                 index.data(TaskListModel::IsQuietRole).toBool());
    painter->restore();
}

static void paintDot(QPainter &painter, const QRect &where, Priority priority)
{
    const QColor colour = Theme::priority(priority);
    if (!colour.isValid())
        return;
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.drawEllipse(where);
}

void TaskTableCell::paintTask(QPainter &painter, const QStyleOptionViewItem &option, const QModelIndex &index)
{
    const TaskRowContent content = contentOf(index);
    const TaskRowLayout layout = layoutOf(option.rect, content);
    const RowWriter writer(painter, option);
    const TaskTableRow row = TaskTableRow::at(modelOf(index), index.row());
    row.paint(painter, option, writer.placed(layout.card), writer.placed(layout.title));
    if (content.hasCheckBox) {
        writer.paintCheckBox(layout.checkBox, content.isChecked);
        paintDot(painter, writer.placed(layout.priorityDot), content.priority);
    }
    writer.writeTitle(layout.title, content.title, content.isChecked);
    writer.write(layout.project, Theme::FontRole::Small, Theme::secondaryText, content.project);
    writer.write(layout.date, Theme::FontRole::Small,
                 content.isOverdue ? Theme::overdue : Theme::secondaryText, content.dateLabel);
    if (content.isOverdue)
        writer.paintIcon(layout.overdueMark, u"overdue"_s, Theme::overdue);
}
