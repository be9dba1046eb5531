#include "widgets/Shapes.h"

#include <QPainter>

QRectF Shapes::bounds(const QRect &rect)
{
    return QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5);
}

void Shapes::drawRounded(QPainter *painter, const QRectF &rect, const QColor &fill, const QColor &border,
                         qreal radius)
{
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(border.isValid() ? QPen(border) : QPen(Qt::NoPen));
    painter->setBrush(fill);
    painter->drawRoundedRect(rect, radius, radius);
    painter->restore();
}
