#include "widgets/Popover.h"

#include "widgets/Accessibility.h"
#include "widgets/RoundCorners.h"
#include "widgets/Theme.h"

#include <QKeyEvent>
#include <QPainter>
#include <QPushButton>
#include <QScreen>

constexpr int gap = 4;

Popover::Popover(QWidget *parent)
    : QWidget(parent, Qt::Popup | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint)
{
    RoundCorners::give(*this, Theme::cardRadius);
}

void Popover::resizeEvent(QResizeEvent *)
{
    if (anchor && isVisible())
        place();
}

void Popover::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    RoundCorners::drawPanel(painter, *this, Theme::cardRadius);
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

/// The bubble begins where the control does, or ends there if it would leave the window otherwise.
int Popover::leadingEdge(const QRect &around) const
{
    const QWidget &whole = *anchor->window();
    const int windowLeft = whole.mapToGlobal(QPoint(0, 0)).x();
    const int fromLeft = around.left();
    const int fromRight = around.right() + 1 - width();
    const bool fitsFromLeft = fromLeft + width() <= windowLeft + whole.width();
    const bool fitsFromRight = fromRight >= windowLeft;
    if (anchor->isRightToLeft())
        return fitsFromRight || !fitsFromLeft ? fromRight : fromLeft;
    return fitsFromLeft || !fitsFromRight ? fromLeft : fromRight;
}

void Popover::place()
{
    const QRect room = anchor->screen()->availableGeometry();
    const QRect around(anchor->mapToGlobal(part.topLeft()), part.size());
    int top = around.bottom() + gap;
    if (top + height() > room.bottom() && around.top() - gap - height() >= room.top())
        top = around.top() - gap - height();
    const int wanted = leadingEdge(around);
    const int left = std::clamp(wanted, room.left(), std::max(room.left(), room.right() - width()));
    move(left, std::clamp(top, room.top(), std::max(room.top(), room.bottom() - height())));
}

void Popover::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    Accessibility::bubbleOpened(*this);
}

void Popover::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    Accessibility::bubbleCloses(*this);
}

void Popover::closeEvent(QCloseEvent *event)
{
    QWidget::closeEvent(event);
    Q_EMIT closed();
}

/// A bubble is no dialog of the toolkit, which would press the button that stands out by itself.
void Popover::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape) {
        close();
        return;
    }
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        if (auto *focused = qobject_cast<QPushButton *>(focusWidget()))
            return focused->click();
        for (QPushButton *button : findChildren<QPushButton *>()) {
            if (button->isDefault() && button->isVisible() && button->isEnabled())
                return button->click();
        }
    }
    QWidget::keyPressEvent(event);
}
