#include "shell/RightToolBar.h"

#include "shell/search/SearchField.h"
#include "shell/search/SearchPopover.h"
#include "widgets/Direction.h"
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
    Q_EMIT toolBarChanged(bar);
}

RightToolBar::RightToolBar(QWidget *parent)
    : QWidget(parent)
    , slot(new ChengedToolBar(this))
    , field(new SearchField(this))
{
    setFixedHeight(Theme::toolBarHeight);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(Direction::margins(*this, 0, 0, Theme::contentMargin, 0));
    row->setSpacing(0);
    row->addWidget(slot, 1);
    connect(slot, &ChengedToolBar::toolBarChanged, this, &RightToolBar::orderKeys);
    row->addWidget(field);
    // A key or a press makes the popover, which then follows the field by itself.
    const auto openFirst = [this] {
        if (!popover)
            searchPopover()->open();
    };
    connect(field, &SearchField::pressed, this, openFirst);
    connect(field, &SearchField::textChanged, this, openFirst);
    connect(field, &SearchField::escaped, this, &RightToolBar::leaveSearch);
}

/// Tab reaches the field after the buttons that stand before it.
void RightToolBar::orderKeys(const QWidget *bar)
{
    QWidget *before = nullptr;
    for (QWidget *control : bar->findChildren<QWidget *>()) {
        if ((control->focusPolicy() & Qt::TabFocus) != 0)
            before = control;
    }
    if (before)
        setTabOrder(before, field);
}

SearchPopover *RightToolBar::searchPopover()
{
    if (!popover) {
        popover = new SearchPopover(*field);
        connect(popover, &SearchPopover::currentChanged, this, &RightToolBar::currentResultChanged);
    }
    return popover;
}

ObjectPtr RightToolBar::currentResult() const
{
    return popover ? popover->currentRecord() : nullptr;
}

void RightToolBar::focusSearch()
{
    if (!field->hasFocus())
        focusBefore = window()->focusWidget();
    field->setFocus(Qt::ShortcutFocusReason);
    field->selectAll();
}

/// The first Escape closes the results, the next one goes back to where the keys were before.
void RightToolBar::leaveSearch()
{
    if (popover && popover->isVisible())
        return popover->hide();
    field->clear();
    if (popover)
        popover->hide();
    if (focusBefore)
        focusBefore->setFocus(Qt::OtherFocusReason);
    else
        field->clearFocus();
}

void RightToolBar::paintEvent(QPaintEvent *)
{
    QPainter(this).fillRect(rect(), QColor(Theme::content));
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
