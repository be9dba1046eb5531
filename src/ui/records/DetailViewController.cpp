#include "records/DetailViewController.h"

#include "widgets/ClearKey.h"
#include "widgets/Theme.h"

#include <QPainter>

DetailViewController::DetailViewController(QWidget *parent)
    : QWidget(parent)
{}

void DetailViewController::setActive(bool isNowActive)
{
    active = isNowActive;
}

/// The Delete key in a pane must not reach the selection of the list below it.
bool DetailViewController::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride && ClearKey::is(static_cast<QKeyEvent &>(*event)))
        event->accept();
    return QWidget::event(event);
}

/// The screen below is of the same colour; a line keeps the two apart.
void DetailViewController::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), QColor(Theme::content));
    painter.fillRect(isRightToLeft() ? QRect(width() - 1, 0, 1, height()) : QRect(0, 0, 1, height()),
                     QColor(Theme::cardBorder));
}
