#include "widgets/FloatingCard.h"

#include "widgets/Theme.h"

#include <QPainter>
#include <QWidget>

void paintFloatingCard(QWidget &card)
{
    QPainter painter(&card);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Theme::controlBorder, 1));
    painter.setBrush(Theme::card);
    painter.drawRoundedRect(QRectF(card.rect()).adjusted(0.5, 0.5, -0.5, -0.5), Theme::controlRadius,
                            Theme::controlRadius);
}
