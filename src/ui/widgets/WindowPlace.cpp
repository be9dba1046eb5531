#include "widgets/WindowPlace.h"

#include <QScreen>
#include <QStyle>
#include <QWidget>

#include <algorithm>

void placeOverParent(QWidget &window)
{
    const QWidget *parent = window.parentWidget();
    if (!parent)
        return;
    const QRect room = parent->screen()->availableGeometry();
    const int titleBar = window.style()->pixelMetric(QStyle::PM_TitleBarHeight);
    const QPoint wanted = parent->geometry().center() - window.rect().center();
    const int top = room.top() + titleBar;
    window.move(std::clamp(wanted.x(), room.left(), std::max(room.left(), room.right() - window.width())),
                std::clamp(wanted.y(), top, std::max(top, room.bottom() - window.height())));
}
