#include "shell/tasks/TaskTableCell.h"

#include "records/RecordCell.h"
#include "shell/tasks/RowDetails.h"
#include "shell/tasks/RowWriter.h"
#include "shell/tasks/TaskListModel.h"
#include "widgets/TaskTableRow.h"
#include "widgets/Theme.h"

#include <QPainter>

using namespace Qt::Literals::StringLiterals;

static TaskRowContent contentOf(const QModelIndex &index)
{
    auto content = index.data(TaskListModel::ContentRole).value<TaskRowContent>();
    // The project of a table that has one stands with what else there is to tell.
    if (!content.project.isEmpty())
        content.details.insert(content.details.begin(), {TaskRowDetail::Kind::Project, content.project, {}});
    return content;
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

static QStringList signsOf(const TaskRowContent &content)
{
    return rowdetails::signsOf(content.repeats, content.hasNote);
}

TaskRowLayout TaskTableCell::layoutOf(const QRect &row, const TaskRowContent &content)
{
    const QFont title = Theme::font(Theme::FontRole::Body);
    const QFont small = Theme::font(Theme::FontRole::Small);
    TaskRowLayout::Input input{.row = row,
                               .titleHeight = QFontMetrics(title).height(),
                               .detailHeight = QFontMetrics(small).height(),
                               .titleWidth = rowdetails::widthOf(content.title, title),
                               .dateWidth = rowdetails::widthOf(content.dateLabel, small),
                               .signs = static_cast<int>(signsOf(content).size()),
                               .hasCheckBox = content.hasCheckBox,
                               .isOverdue = content.isOverdue};
    for (const TaskRowDetail &detail : content.details)
        input.detailWidths.push_back(rowdetails::widthOf(detail));
    return TaskRowLayout::of(input);
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

void TaskTableCell::paintTask(QPainter &painter, const QStyleOptionViewItem &option, const QModelIndex &index)
{
    const TaskRowContent content = contentOf(index);
    const TaskRowLayout layout = layoutOf(option.rect, content);
    const RowWriter writer(painter, option);
    const TaskTableRow row = TaskTableRow::at(modelOf(index), index.row());
    row.paint(painter, option, writer.placed(layout.card), writer.placed(layout.title));
    if (content.hasCheckBox) {
        writer.paintCheckBox(layout.checkBox, content.isChecked);
        if (const QColor colour = Theme::priority(content.priority); colour.isValid())
            writer.paintDisc(layout.priorityDot, colour);
    }
    writer.writeTitle(layout.title, content.title, content.isChecked);
    const QStringList signs = signsOf(content);
    for (size_t sign = 0; sign < layout.signs.size(); ++sign)
        writer.paintIcon(layout.signs[sign], signs[static_cast<qsizetype>(sign)], Theme::secondaryText);
    for (size_t detail = 0; detail < content.details.size(); ++detail)
        rowdetails::write(writer, layout.details[detail], content.details[detail]);
    writer.write(layout.date, Theme::FontRole::Small, Theme::secondaryText, content.dateLabel);
    if (content.isOverdue)
        writer.paintIcon(layout.overdueMark, u"overdue"_s, Theme::overdue);
}
