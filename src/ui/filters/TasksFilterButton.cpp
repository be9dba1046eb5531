#include "filters/TasksFilterButton.h"

#include "filters/TaskFilterController.h"
#include "foundation/Localization.h"
#include "widgets/Icons.h"
#include "widgets/MorvaneStyle.h"
#include "widgets/Popover.h"
#include "widgets/Theme.h"

#include <QKeyEvent>
#include <QPainter>

using namespace Qt::Literals::StringLiterals;

constexpr int iconSide = 18;
constexpr int padding = 8;
constexpr int iconGap = 6;

TasksFilterButton::TasksFilterButton(QWidget *parent)
    : QAbstractButton(parent)
{
    setObjectName(u"buttonFilter"_s);
    setFont(Theme::font(Theme::FontRole::Small));
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    connect(this, &QAbstractButton::clicked, this, &TasksFilterButton::togglePopover);
    describe();
}

void TasksFilterButton::setShowing(bool isShowing)
{
    setEnabled(isShowing);
    if (!isShowing)
        closePopover();
    describe();
}

void TasksFilterButton::setState(int newState)
{
    shownState = newState;
    describe();
}

/// The words beside the icon.
void TasksFilterButton::describe()
{
    setText(localized(!isEnabled()      ? u"Filter inactive, grouping is activated"_s
                      : shownState == 1 ? u"Filtered"_s
                                        : u"Filter"_s));
    setAccessibleName(text());
    updateGeometry();
    update();
}

void TasksFilterButton::clearFilter()
{
    closePopover();
    filter.clear();
}

Popover *TasksFilterButton::popover() const
{
    return bubble;
}

void TasksFilterButton::togglePopover()
{
    if (bubble)
        return closePopover();
    if (!isEnabled())
        return;
    bubble = TaskFilterController::makePopover(filter, this);
    connect(bubble, &Popover::closed, this, [this] { update(); });
    bubble->showBeside(*this);
    update();
}

void TasksFilterButton::closePopover()
{
    if (bubble)
        bubble->close();
}

QSize TasksFilterButton::sizeHint() const
{
    return {2 * padding + iconSide + iconGap + fontMetrics().horizontalAdvance(text()) + 1,
            std::max(Theme::controlHeight, fontMetrics().height() + Theme::unit)};
}

QSize TasksFilterButton::minimumSizeHint() const
{
    return {2 * padding + iconSide, sizeHint().height()};
}

QColor TasksFilterButton::ink() const
{
    if (!isEnabled())
        return Theme::filterInactive;
    return shownState == 1 ? Theme::selectedText : Theme::filterOff;
}

void TasksFilterButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool isOpen = bubble && bubble->isVisible();
    if (isEnabled() && (isDown() || isOpen || underMouse())) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(isDown() || isOpen ? Theme::inactiveSelection : Theme::controlPressed);
        painter.drawRoundedRect(rect(), Theme::controlRadius, Theme::controlRadius);
    }
    const auto placed = [this](const QRect &where) {
        return QStyle::visualRect(layoutDirection(), rect(), where);
    };
    const int iconLeft = width() - padding - iconSide;
    Icons::paint(painter, placed({iconLeft, 0, iconSide, height()}),
                 shownState == 1 ? u"filtered"_s : u"filter"_s, ink(), iconSide);
    painter.setPen(ink());
    const QRect words(padding, 0, iconLeft - iconGap - padding, height());
    if (words.width() > 0)
        painter.drawText(placed(words),
                         QStyle::visualAlignment(layoutDirection(), Qt::AlignRight | Qt::AlignVCenter),
                         fontMetrics().elidedText(text(), Qt::ElideRight, words.width()));
    if (hasFocus())
        MorvaneStyle::drawFocusRing(painter, rect(), Theme::controlRadius, Theme::focusRing);
}

void TasksFilterButton::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter || event->key() == Qt::Key_Down)
        click();
    else
        QAbstractButton::keyPressEvent(event);
}
