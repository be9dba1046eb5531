#pragma once

#include "widgets/Theme.h"

#include <QRectF>

class QPainter;

/// What the controls are drawn of.
namespace Shapes {

/// The line around a rectangle of pixels, through their middles.
QRectF bounds(const QRect &rect);
/// A rounded rectangle; an invalid border is none.
void drawRounded(QPainter *painter, const QRectF &rect, const QColor &fill, const QColor &border,
                 qreal radius = Theme::controlRadius);

} // namespace Shapes
