#include "shell/categories/CategoryTasksCell.h"

#include "foundation/Localization.h"
#include "shell/categories/CategoryListModel.h"
#include "widgets/Direction.h"
#include "widgets/Icons.h"
#include "widgets/MorvaneStyle.h"
#include "widgets/Theme.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>

using namespace Qt::Literals::StringLiterals;

constexpr int cardInset = 12;
constexpr int dotSize = 12;
constexpr int markSize = 18;
constexpr int countWidth = 40;

static QRect cardOf(const QRect &row)
{
    return row.adjusted(Theme::unit, 1, -Theme::unit, -1);
}

/// The title has the room that neither a count nor a mark needs.
static QRect titleRect(const QRect &row, Qt::LayoutDirection direction, const QModelIndex &index)
{
    const QRect card = cardOf(row);
    const bool hasMark = index.data(CategoryListModel::IsDefaultRole).toBool();
    const bool hasCount = hasMark || index.data(CategoryListModel::CountRole).toInt() > 0;
    const int trailing = cardInset + (hasCount ? countWidth : 0) + (hasMark ? markSize : 0);
    const QRect title = card.adjusted(cardInset + dotSize + cardInset, 0, -trailing, 0);
    return QStyle::visualRect(direction, row, title);
}

QWidget *CategoryTasksCell::createEditor(QWidget *parent, const QStyleOptionViewItem &,
                                         const QModelIndex &) const
{
    auto *editor = new QLineEdit(parent);
    editor->setObjectName(u"categoryTitleEditor"_s);
    editor->setAccessibleName(localized(u"Title"_s));
    editor->setPlaceholderText(localized(u"New Category"_s));
    return editor;
}

void CategoryTasksCell::updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                                             const QModelIndex &index) const
{
    const QRect title = titleRect(option.rect, option.direction, index);
    editor->setGeometry(title.adjusted(-Theme::unit, 2, 0, -2));
}

/// The tab key leaves the field for the next control, not for the next title.
bool CategoryTasksCell::eventFilter(QObject *watched, QEvent *event)
{
    const int key = event->type() == QEvent::KeyPress ? static_cast<QKeyEvent *>(event)->key() : 0;
    if (key == Qt::Key_Tab || key == Qt::Key_Backtab)
        return false;
    return TableCell::eventFilter(watched, event);
}

QString CategoryTasksCell::cutText(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    return ifWider(index.data().toString(), Theme::font(Theme::FontRole::BodyStrong),
                   titleRect(option.rect, option.direction, index).width());
}

static void paintCount(QPainter &painter, const QRect &where, Qt::LayoutDirection direction, int count)
{
    if (count == 0)
        return;
    painter.setFont(Theme::font(Theme::FontRole::Small));
    painter.setPen(Theme::secondaryText);
    painter.drawText(where, QStyle::visualAlignment(direction, Qt::AlignRight | Qt::AlignVCenter),
                     QString::number(count));
}

void CategoryTasksCell::paint(QPainter *painter, const QStyleOptionViewItem &option,
                              const QModelIndex &index) const
{
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const QRect card = cardOf(option.rect);
    const bool isSelected = option.state & QStyle::State_Selected;
    const bool isActive = option.state & QStyle::State_Active;
    const bool isHovered = option.state & QStyle::State_MouseOver;
    painter->setPen(Qt::NoPen);
    if (isSelected || isHovered) {
        painter->setBrush(isSelected && isActive ? Theme::selection : Theme::inactiveSelection);
        painter->drawRoundedRect(card, Theme::controlRadius, Theme::controlRadius);
    }
    const auto placed = [&](const QRect &rect) {
        return QStyle::visualRect(option.direction, option.rect, rect);
    };
    painter->setBrush(index.data(CategoryListModel::ColorRole).value<QColor>());
    painter->drawEllipse(
        placed({card.left() + cardInset, card.center().y() - dotSize / 2 + 1, dotSize, dotSize}));
    painter->setFont(Theme::font(isSelected ? Theme::FontRole::BodyStrong : Theme::FontRole::Body));
    painter->setPen(isSelected ? Theme::selectedText : Theme::text);
    Direction::drawLine(*painter, titleRect(option.rect, option.direction, index), option.direction,
                        index.data().toString());
    const QRect count(card.right() - cardInset - countWidth, card.top(), countWidth, card.height());
    paintCount(*painter, placed(count), option.direction, index.data(CategoryListModel::CountRole).toInt());
    if (index.data(CategoryListModel::IsDefaultRole).toBool())
        Icons::paint(*painter, placed({count.left() - markSize, card.top(), markSize, card.height()}),
                     u"default"_s, Theme::accent, markSize);
    if (option.state & QStyle::State_HasFocus)
        MorvaneStyle::drawFocusRing(*painter, card, Theme::controlRadius, Theme::focusRing);
    painter->restore();
}
