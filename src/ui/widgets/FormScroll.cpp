#include "widgets/FormScroll.h"

#include "widgets/Direction.h"
#include "widgets/Theme.h"

#include <QEvent>
#include <QLayout>

FormScroll::FormScroll(QWidget *body, QWidget *parent)
    : QScrollArea(parent)
{
    setWidget(body);
    setWidgetResizable(true);
    setFrameShape(NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setAutoFillBackground(false);
    body->setAutoFillBackground(false);
}

/// As much as the form needs; who has less room scrolls.
QSize FormScroll::sizeHint() const
{
    return widget()->sizeHint();
}

/// A bar without anything to scroll is not seen.
void FormScroll::keepRoomForBar()
{
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    QMargins margins = widget()->layout()->contentsMargins();
    margins -= Direction::margins(*this, 0, 0, Theme::scrollBarWidth, 0);
    widget()->layout()->setContentsMargins(margins);
}

/// Who stands around the form hears that it needs another height.
bool FormScroll::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == widget() && event->type() == QEvent::LayoutRequest)
        updateGeometry();
    return QScrollArea::eventFilter(watched, event);
}
