#include "widgets/Direction.h"

#include "widgets/TextLabel.h"

#include <QPainter>
#include <QStyle>
#include <QWidget>

QMargins Direction::margins(const QWidget &widget, int leading, int top, int trailing, int bottom)
{
    return widget.isRightToLeft() ? QMargins(trailing, top, leading, bottom)
                                  : QMargins(leading, top, trailing, bottom);
}

void Direction::drawLine(QPainter &painter, const QRect &place, Qt::LayoutDirection direction,
                         const QString &text, Qt::Alignment vertical)
{
    painter.setLayoutDirection(text.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
    painter.drawText(place, QStyle::visualAlignment(direction, Qt::AlignLeft | vertical),
                     painter.fontMetrics().elidedText(firstPart(text), Qt::ElideRight, place.width()));
}

void Direction::drawWords(QPainter &painter, const QRectF &place, Qt::Alignment alignment,
                          const QString &text)
{
    painter.setLayoutDirection(text.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
    painter.drawText(place, static_cast<int>(alignment | Qt::AlignAbsolute | Qt::TextDontClip), text);
}
