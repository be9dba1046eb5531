#include "shell/home/HomeCell.h"

#include "shell/home/HomeListModel.h"
#include "shell/tasks/RowDetails.h"
#include "shell/tasks/RowWriter.h"
#include "widgets/Direction.h"
#include "widgets/TaskTableRow.h"
#include "widgets/Theme.h"

#include <QPainter>

using namespace Qt::Literals::StringLiterals;

static const HomeListModel &modelOf(const QModelIndex &index)
{
    return static_cast<const HomeListModel &>(*index.model());
}

static HomeRowContent contentOf(const QModelIndex &index)
{
    return index.data(HomeListModel::ContentRole).value<HomeRowContent>();
}

static QStringList signsOf(const HomeRowContent &content)
{
    return rowdetails::signsOf(content.repeats, content.hasNote);
}

HomeRowLayout HomeCell::layoutOf(const QRect &row, const QModelIndex &index, const HomeRowContent &content)
{
    const QFont title = Theme::font(Theme::FontRole::Body);
    const QFont small = Theme::font(Theme::FontRole::Small);
    HomeRowLayout::Input input{.row = row,
                               .titleHeight = QFontMetrics(title).height(),
                               .detailHeight = QFontMetrics(small).height(),
                               .hasCheckBox = content.hasCheckBox,
                               .isTickable = modelOf(index).isTickable(),
                               .hasProject = !content.project.isEmpty(),
                               .hasDate = !content.dateLabel.isEmpty(),
                               .hasDateIcon = content.dateIcon != HomeRowContent::DateIcon::None,
                               .titleWidth = rowdetails::widthOf(content.title, title),
                               .dateWidth = rowdetails::widthOf(content.dateLabel, small),
                               .signs = static_cast<int>(signsOf(content).size())};
    for (const TaskRowDetail &detail : content.details)
        input.detailWidths.push_back(rowdetails::widthOf(detail));
    return HomeRowLayout::of(input);
}

QRect HomeCell::checkBoxRect(const QRect &row, Qt::LayoutDirection direction, const QModelIndex &index) const
{
    if (!modelOf(index).isItem(index.row()))
        return {};
    const QRect box = layoutOf(row, index, contentOf(index)).checkBox;
    // A press near it means it.
    return box.isEmpty() ? box
                         : QStyle::visualRect(direction, row, box.marginsAdded(QMargins() + Theme::unit));
}

QString HomeCell::cutText(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    if (!modelOf(index).isItem(index.row()))
        return {};
    const HomeRowContent content = contentOf(index);
    return ifWider(content.title, Theme::font(Theme::FontRole::Body),
                   layoutOf(option.rect, index, content).title.width());
}

void HomeCell::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    if (modelOf(index).isItem(index.row()))
        paintRecord(*painter, option, index);
    else if (index.data(HomeListModel::IsNoticeRole).toBool())
        paintNotice(*painter, option, index);
    else
        paintDay(*painter, option, index);
    painter->restore();
}

static QColor dateColour(HomeRowContent::DateLook look)
{
    switch (look) {
    case HomeRowContent::DateLook::AllDay:
        return Theme::accent;
    case HomeRowContent::DateLook::Late:
        return Theme::overdue;
    case HomeRowContent::DateLook::Plain:
        break;
    }
    return Theme::secondaryText;
}

void HomeCell::paintRecord(QPainter &painter, const QStyleOptionViewItem &option, const QModelIndex &index)
{
    const HomeRowContent content = contentOf(index);
    const HomeRowLayout layout = layoutOf(option.rect, index, content);
    const RowWriter writer(painter, option);
    TaskTableRow::at(modelOf(index), index.row())
        .paint(painter, option, writer.placed(layout.card), writer.placed(layout.title));
    if (content.hasCheckBox)
        writer.paintCheckBox(layout.checkBox, content.isDone);
    writer.writeTitle(layout.title, content.title, content.isDone);
    const QStringList signs = signsOf(content);
    for (std::size_t sign = 0; sign < layout.signs.size(); ++sign)
        writer.paintIcon(layout.signs[sign], signs[static_cast<qsizetype>(sign)], Theme::secondaryText);
    writer.write(layout.project, Theme::FontRole::Small, Theme::secondaryText, content.project);
    const QColor colour = dateColour(content.dateLook);
    if (content.dateIcon != HomeRowContent::DateIcon::None) {
        const bool isProject = content.dateIcon == HomeRowContent::DateIcon::Project;
        writer.paintIcon(layout.dateIcon, isProject ? u"project"_s : u"today"_s, colour);
    }
    writer.write(layout.date, Theme::FontRole::Small, colour, content.dateLabel);
    for (std::size_t detail = 0; detail < content.details.size(); ++detail)
        rowdetails::write(writer, layout.details[detail], content.details[detail]);
}

void HomeCell::paintDay(QPainter &painter, const QStyleOptionViewItem &option, const QModelIndex &index)
{
    const bool isToday = index.data(HomeListModel::IsTodayRole).toBool();
    constexpr int aboveCard = 5;
    const int indent = HomeRowLayout::margin + Theme::unit / 2;
    painter.setFont(Theme::font(Theme::FontRole::SmallStrong));
    painter.setPen(isToday ? Theme::accent : Theme::secondaryText);
    Direction::drawLine(painter, option.rect.adjusted(indent, 0, -indent, -aboveCard), option.direction,
                        index.data().toString(), Qt::AlignBottom);
}

/// A card of its own with a sign that all is well.
void HomeCell::paintNotice(QPainter &painter, const QStyleOptionViewItem &option, const QModelIndex &index)
{
    constexpr int iconSize = 20;
    constexpr int gap = 10;
    const RowWriter writer(painter, option);
    const QRect card = HomeRowLayout::cardOf(option.rect);
    TaskTableRow{.isFirstRow = true, .isLastRow = true}.paint(painter, option, writer.placed(card),
                                                              writer.placed(card));
    const QRect icon(card.left() + HomeRowLayout::margin, card.center().y() - iconSize / 2, iconSize,
                     iconSize);
    writer.paintIcon(icon, u"done"_s, Theme::emptyIcon);
    writer.write(card.adjusted(icon.right() + gap - card.left(), 0, -HomeRowLayout::margin, 0),
                 Theme::FontRole::Body, Theme::secondaryText, index.data().toString());
}
