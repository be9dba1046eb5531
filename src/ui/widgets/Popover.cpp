#include "widgets/Popover.h"

#include "widgets/Theme.h"

#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>

constexpr int gap = 4;

Popover::Popover(QWidget *parent)
    : QWidget(parent, Qt::Popup | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint)
{
    setAttribute(Qt::WA_TranslucentBackground);
}

static QPainterPath shapeOf(const QRectF &rect)
{
    QPainterPath path;
    path.addRoundedRect(rect.adjusted(0.5, 0.5, -0.5, -0.5), Theme::cardRadius, Theme::cardRadius);
    return path;
}

/// Where no compositor blends the corners, the mask cuts them off.
void Popover::resizeEvent(QResizeEvent *)
{
    QPainterPath path;
    // A little rounder than the shape, whose soft edge would be dark there.
    constexpr qreal rounder = 1.5;
    path.addRoundedRect(QRectF(rect()), Theme::cardRadius + rounder, Theme::cardRadius + rounder);
    setMask(QRegion(path.toFillPolygon().toPolygon()));
    if (anchor && isVisible())
        place();
}

void Popover::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPainterPath shape = shapeOf(rect());
    painter.fillPath(shape, Theme::card);
    painter.strokePath(shape, QPen(Theme::controlBorder));
}

void Popover::showBeside(const QWidget &control)
{
    showBeside(control, control.rect());
}

void Popover::showBeside(const QWidget &control, const QRect &partOfControl)
{
    anchor = &control;
    part = partOfControl;
    adjustSize();
    place();
    show();
}

void Popover::place()
{
    const QRect room = anchor->screen()->availableGeometry();
    const QRect around(anchor->mapToGlobal(part.topLeft()), part.size());
    int top = around.bottom() + gap;
    if (top + height() > room.bottom() && around.top() - gap - height() >= room.top())
        top = around.top() - gap - height();
    const int wanted = anchor->isRightToLeft() ? around.right() - width() : around.left();
    const int left = std::clamp(wanted, room.left(), std::max(room.left(), room.right() - width()));
    move(left, std::clamp(top, room.top(), std::max(room.top(), room.bottom() - height())));
}

void Popover::closeEvent(QCloseEvent *event)
{
    QWidget::closeEvent(event);
    Q_EMIT closed();
}

void Popover::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}
