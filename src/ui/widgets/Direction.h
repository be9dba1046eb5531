#pragma once

#include <QMargins>
#include <Qt>

class QPainter;
class QRect;
class QRectF;
class QString;
class QWidget;

/// What layouts and painters do not mirror by themselves.
namespace Direction {

/// Margins by where a line begins and ends, in the direction of a widget.
QMargins margins(const QWidget &widget, int leading, int top, int trailing, int bottom);
/// Writes a line at the leading edge of a place, with the font and pen of the painter. It reads in the
/// direction of its own script, and ends in dots where it is too long. `vertical` is where it stands in the
/// height of the place.
void drawLine(QPainter &painter, const QRect &place, Qt::LayoutDirection direction, const QString &text,
              Qt::Alignment vertical = Qt::AlignVCenter);

/// Writes a text at an edge that is told as left or right. It reads in the direction of its own script.
void drawWords(QPainter &painter, const QRectF &place, Qt::Alignment alignment, const QString &text);

} // namespace Direction
