#include "widgets/FormScroll.h"

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
