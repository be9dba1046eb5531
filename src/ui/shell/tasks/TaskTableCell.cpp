#include "shell/tasks/TaskTableCell.h"

#include "records/RecordCell.h"
#include "shell/tasks/RowWriter.h"
#include "shell/tasks/TaskListModel.h"
#include "widgets/CategoryIcon.h"
#include "widgets/TaskTableRow.h"
#include "widgets/TextLines.h"
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

static int widthOf(const QString &text, const QFont &font)
{
    return text.isEmpty() ? 0 : TextLines::width(font, text) + 1;
}

namespace {

constexpr int detailSignSize = 11;
constexpr int categoryDotSize = 8;
constexpr int detailSignGap = 5;

QString signOf(TaskRowDetail::Kind kind)
{
    switch (kind) {
    case TaskRowDetail::Kind::Category:
        break;
    case TaskRowDetail::Kind::Project:
        return u"project"_s;
    case TaskRowDetail::Kind::Person:
        return u"people"_s;
    case TaskRowDetail::Kind::Company:
        return u"company"_s;
    case TaskRowDetail::Kind::Place:
        return u"location"_s;
    }
    return {};
}

int signSizeOf(const TaskRowDetail &detail)
{
    return detail.category ? categoryDotSize : detailSignSize;
}

/// The signs behind the title.
QStringList signsOf(const TaskRowContent &content)
{
    QStringList signs;
    if (content.repeats)
        signs << u"repeat"_s;
    if (content.hasNote)
        signs << u"note"_s;
    return signs;
}

} // namespace

TaskRowLayout TaskTableCell::layoutOf(const QRect &row, const TaskRowContent &content)
{
    const QFont title = Theme::font(Theme::FontRole::Body);
    const QFont small = Theme::font(Theme::FontRole::Small);
    TaskRowLayout::Input input{.row = row,
                               .titleHeight = QFontMetrics(title).height(),
                               .detailHeight = QFontMetrics(small).height(),
                               .titleWidth = widthOf(content.title, title),
                               .dateWidth = widthOf(content.dateLabel, small),
                               .signs = static_cast<int>(signsOf(content).size()),
                               .hasCheckBox = content.hasCheckBox,
                               .isOverdue = content.isOverdue};
    for (const TaskRowDetail &detail : content.details)
        input.detailWidths.push_back(signSizeOf(detail) + detailSignGap + widthOf(detail.text, small));
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

static void writeDetail(const RowWriter &writer, const QRect &where, const TaskRowDetail &detail)
{
    if (where.isEmpty())
        return;
    const int size = signSizeOf(detail);
    const QRect sign(where.left(), where.top() + (where.height() - size) / 2, size, size);
    if (detail.category)
        writer.paintDisc(sign, CategoryIcon::colorOf(*detail.category));
    else
        writer.paintIcon(sign, signOf(detail.kind), Theme::secondaryText);
    writer.write(where.adjusted(size + detailSignGap, 0, 0, 0), Theme::FontRole::Small, Theme::secondaryText,
                 detail.text);
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
        writeDetail(writer, layout.details[detail], content.details[detail]);
    writer.write(layout.date, Theme::FontRole::Small, Theme::secondaryText, content.dateLabel);
    if (content.isOverdue)
        writer.paintIcon(layout.overdueMark, u"overdue"_s, Theme::overdue);
}
