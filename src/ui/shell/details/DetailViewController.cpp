#include "shell/details/DetailViewController.h"

#include "widgets/Theme.h"

#include <QPainter>

DetailViewController::DetailViewController(QWidget *parent)
    : QWidget(parent)
{}

void DetailViewController::setActive(bool isNowActive)
{
    active = isNowActive;
}

/// The screen below is of the same colour; a line keeps the two apart.
void DetailViewController::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), Theme::content);
    painter.fillRect(isRightToLeft() ? QRect(width() - 1, 0, 1, height()) : QRect(0, 0, 1, height()),
                     Theme::cardBorder);
}
