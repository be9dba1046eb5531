#pragma once

#include "widgets/Theme.h"

#include <QColor>
#include <QIcon>
#include <QPixmap>
#include <QString>

class QPainter;

/// The icon set: outlines on a grid of 24, drawn in the colour that is asked for. Rendered at first use and
/// kept.
namespace Icons {

/// The icon at a size in device-independent pixels; an empty pixmap for a name that there is not.
QPixmap pixmap(const QString &name, const QColor &colour, int size, qreal devicePixelRatio);
/// For menus and buttons, in the colours of text and disabled text.
QIcon icon(const QString &name, Theme::Role colour);
/// Draws an icon in the middle of a rectangle, sharp at the painter's scale.
void paint(QPainter &painter, const QRect &where, const QString &name, const QColor &colour, int size);
/// The icon of the program itself.
QIcon application();

} // namespace Icons
