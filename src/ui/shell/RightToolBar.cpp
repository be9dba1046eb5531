#include "shell/RightToolBar.h"

#include "widgets/Theme.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QMouseEvent>
#include <QPainter>
#include <QWindow>

ChengedToolBar::ChengedToolBar(QWidget *parent)
    : QWidget(parent)
{
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins({});
}

void ChengedToolBar::addToolBar(QWidget *bar)
{
    if (shownBar == bar)
        return;
    if (shownBar) {
        layout()->removeWidget(shownBar);
        shownBar->hide();
    }
    shownBar = bar;
    layout()->addWidget(bar);
    bar->show();
}

RightToolBar::RightToolBar(QWidget *parent)
    : QWidget(parent)
    , slot(new ChengedToolBar(this))
{
    setFixedHeight(Theme::toolBarHeight);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins({});
    row->addWidget(slot);
}

void RightToolBar::paintEvent(QPaintEvent *)
{
    QPainter(this).fillRect(rect(), Theme::content);
}

void RightToolBar::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        pressedAt = event->position().toPoint();
}

void RightToolBar::mouseMoveEvent(QMouseEvent *event)
{
    const bool isFar = pressedAt && (event->position().toPoint() - *pressedAt).manhattanLength() >=
                                        QApplication::startDragDistance();
    if (!isFar)
        return;
    pressedAt.reset();
    window()->windowHandle()->startSystemMove();
}

void RightToolBar::mouseReleaseEvent(QMouseEvent *)
{
    pressedAt.reset();
}
