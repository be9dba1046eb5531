#include "widgets/RepeatCalendarItem.h"

#include "widgets/MorvaneStyle.h"
#include "widgets/Theme.h"

#include <QKeyEvent>
#include <QPainter>

constexpr int cellGap = 2;
constexpr int ringRoom = 1;

RepeatCalendarItem::RepeatCalendarItem(int number, const QString &title, QWidget *parent)
    : QAbstractButton(parent)
    , value(number)
{
    setText(title);
    setCheckable(true);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
}

void RepeatCalendarItem::setEdges(Qt::Edges outerEdges)
{
    edges = outerEdges;
}

QColor RepeatCalendarItem::fill() const
{
    if (isChecked())
        return underMouse() ? Theme::accentHover : Theme::accent;
    return isDown() ? Theme::controlPressed : underMouse() ? Theme::hover : Theme::content;
}

/// The grid moves the focus.
void RepeatCalendarItem::keyPressEvent(QKeyEvent *event)
{
    if (event->key() >= Qt::Key_Left && event->key() <= Qt::Key_Down)
        event->ignore();
    else
        QAbstractButton::keyPressEvent(event);
}

void RepeatCalendarItem::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill());
    const QRect cell = rect().adjusted(isFirstColumn() ? 0 : cellGap / 2, isFirstRow() ? 0 : cellGap / 2,
                                       isLastColumn() ? 0 : -cellGap / 2, isLastRow() ? 0 : -cellGap / 2);
    painter.drawRoundedRect(cell, Theme::controlRadius, Theme::controlRadius);
    painter.setPen(isChecked() ? Theme::textOnAccent : Theme::text);
    painter.drawText(cell, Qt::AlignCenter, fontMetrics().elidedText(text(), Qt::ElideRight, cell.width()));
    if (hasFocus())
        MorvaneStyle::drawFocusRing(painter, cell.adjusted(ringRoom, ringRoom, -ringRoom, -ringRoom),
                                    Theme::controlRadius, isChecked() ? Theme::text : Theme::focusRing);
}
