#include "widgets/Direction.h"

#include "widgets/TextLabel.h"
#include "widgets/TextLines.h"

#include <QGuiApplication>
#include <QPainter>
#include <QScreen>
#include <QStyle>
#include <QWidget>

QMargins Direction::margins(const QWidget &widget, int leading, int top, int trailing, int bottom)
{
    return widget.isRightToLeft() ? QMargins(trailing, top, leading, bottom)
                                  : QMargins(leading, top, trailing, bottom);
}

/// Whether letters have another size on a device than on the screen, as on paper.
static bool isOtherThanScreen(const QPaintDevice &device)
{
    const QScreen *screen = QGuiApplication::primaryScreen();
    return screen && device.logicalDpiY() != qRound(screen->logicalDotsPerInchY());
}

void Direction::drawLine(QPainter &painter, const QRect &place, Qt::LayoutDirection direction,
                         const QString &text, Qt::Alignment vertical)
{
    const QString shown = firstPart(text);
    if (!isOtherThanScreen(*painter.device())) {
        const QTextLayout &line = TextLines::line(painter.font(), shown, place.width());
        if (line.lineCount() == 0)
            return;
        const QFontMetrics metrics = painter.fontMetrics();
        const int width = qCeil(line.lineAt(0).naturalTextWidth());
        // Letters of other fonts do not move the line.
        const QRect words =
            QStyle::alignedRect(direction, Qt::AlignLeft | vertical, {width, metrics.height()}, place);
        line.draw(&painter, QPointF(words.left(), words.top() + metrics.ascent() - line.lineAt(0).ascent()));
        return;
    }
    painter.setLayoutDirection(text.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
    painter.drawText(place, QStyle::visualAlignment(direction, Qt::AlignLeft | vertical),
                     painter.fontMetrics().elidedText(shown, Qt::ElideRight, place.width()));
}

void Direction::drawWords(QPainter &painter, const QRectF &place, Qt::Alignment alignment,
                          const QString &text)
{
    painter.setLayoutDirection(text.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
    painter.drawText(place, static_cast<int>(alignment | Qt::AlignAbsolute | Qt::TextDontClip), text);
}
