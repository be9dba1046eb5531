#include "widgets/TaskTableRow.h"

#include "widgets/MorvaneStyle.h"
#include "widgets/TableModel.h"
#include "widgets/Theme.h"

#include <QPainter>
#include <QPainterPath>
#include <QStyleOptionViewItem>

constexpr int stripWidth = 3;

TaskTableRow TaskTableRow::at(const TableModel &model, int row)
{
    return {.isFirstRow = !model.isItem(row - 1), .isLastRow = !model.isItem(row + 1)};
}

/// The card's outline reaches beyond the row where the card goes on, so that only its own edges show.
static QPainterPath outline(const TaskTableRow &row, const QRect &card)
{
    const qreal beyond = 2 * Theme::cardRadius;
    QRectF shape = QRectF(card).adjusted(0.5, 0.5, -0.5, -0.5);
    if (!row.isFirstRow)
        shape.setTop(card.top() - beyond);
    if (!row.isLastRow)
        shape.setBottom(card.bottom() + 1 + beyond);
    QPainterPath path;
    path.addRoundedRect(shape, Theme::cardRadius, Theme::cardRadius);
    return path;
}

static void paintState(QPainter &painter, const QStyleOptionViewItem &option, const QRect &card)
{
    const bool isActive = option.state.testFlag(QStyle::State_Active);
    if (option.state.testFlag(QStyle::State_Selected)) {
        painter.fillRect(card, QColor(isActive ? Theme::selection : Theme::inactiveSelection));
        const QRect strip(card.left(), card.top(), stripWidth, card.height());
        painter.fillRect(QStyle::visualRect(option.direction, card, strip),
                         QColor(isActive ? Theme::accent : Theme::checkBox));
    } else if (option.state.testFlag(QStyle::State_MouseOver)) {
        painter.fillRect(card, QColor(Theme::hover));
    }
}

void TaskTableRow::paint(QPainter &painter, const QStyleOptionViewItem &option, const QRect &card,
                         const QRect &title) const
{
    const QPainterPath shape = outline(*this, card);
    painter.save();
    painter.setClipRect(card);
    painter.fillPath(shape, Theme::card);
    painter.setClipPath(shape, Qt::IntersectClip);
    paintState(painter, option, card);
    painter.setClipRect(card);
    if (!isLastRow) {
        const bool isRightToLeft = option.direction == Qt::RightToLeft;
        const int from = isRightToLeft ? card.left() + 1 : title.left();
        const int to = isRightToLeft ? title.right() : card.right() - 1;
        painter.fillRect(QRect(QPoint(from, card.bottom()), QPoint(to, card.bottom())),
                         QColor(Theme::divider));
    }
    painter.strokePath(shape, QPen(Theme::cardBorder));
    painter.restore();
    // On a selected row the colours of the selection tell it, but to who goes by keys among several of them.
    if (option.state.testFlag(QStyle::State_HasFocus) &&
        (!option.state.testFlag(QStyle::State_Selected) ||
         option.state.testFlag(QStyle::State_KeyboardFocusChange)))
        MorvaneStyle::drawFocusRing(painter, QRectF(card).adjusted(2, 2, -2, -2), Theme::controlRadius,
                                    Theme::focusRing);
}
