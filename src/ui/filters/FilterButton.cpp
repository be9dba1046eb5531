#include "filters/FilterButton.h"

#include "filters/TaskFilterController.h"
#include "widgets/Icons.h"
#include "widgets/MorvaneStyle.h"
#include "widgets/Popover.h"
#include "widgets/Theme.h"

#include <QKeyEvent>
#include <QPainter>

using namespace Qt::Literals::StringLiterals;

constexpr int funnelSide = 18;
constexpr int fieldPadding = 8;
constexpr int funnelGap = 6;

FilterButton::FilterButton(QWidget *parent)
    : QAbstractButton(parent)
{
    setObjectName(u"buttonFilter"_s);
    setFont(Theme::font(Theme::FontRole::Small));
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    connect(this, &QAbstractButton::clicked, this, &FilterButton::togglePopover);
}

void FilterButton::setState(const FilterState &state)
{
    setEnabled(state.isButtonEnabled());
    if (!isEnabled())
        closePopover();
    label = state.label();
    setText(state.labelText());
    setAccessibleName(text());
    updateGeometry();
    update();
}

Popover *FilterButton::popover() const
{
    return bubble;
}

void FilterButton::togglePopover()
{
    if (bubble)
        return closePopover();
    if (!isEnabled() || !filter)
        return;
    bubble = TaskFilterController::makePopover(*filter, this);
    connect(bubble, &Popover::closed, this, [this] { update(); });
    bubble->showBeside(*this);
    update();
}

void FilterButton::closePopover()
{
    if (bubble)
        bubble->close();
}

QSize FilterButton::sizeHint() const
{
    return {2 * fieldPadding + funnelSide + funnelGap + fontMetrics().horizontalAdvance(text()) + 1,
            std::max(Theme::controlHeight, fontMetrics().height() + Theme::unit)};
}

QSize FilterButton::minimumSizeHint() const
{
    return {2 * fieldPadding + funnelSide, sizeHint().height()};
}

QColor FilterButton::ink() const
{
    switch (label) {
    case FilterState::Label::Inactive:
        return Theme::filterInactive;
    case FilterState::Label::Filtered:
        return Theme::selectedText;
    case FilterState::Label::Filter:
        break;
    }
    return Theme::filterOff;
}

void FilterButton::paintEvent(QPaintEvent *)
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
    const int iconLeft = width() - fieldPadding - funnelSide;
    Icons::paint(painter, placed({iconLeft, 0, funnelSide, height()}),
                 label == FilterState::Label::Filtered ? u"filtered"_s : u"filter"_s, ink(), funnelSide);
    painter.setPen(ink());
    const QRect words(fieldPadding, 0, iconLeft - funnelGap - fieldPadding, height());
    if (words.width() > 0)
        painter.drawText(placed(words),
                         QStyle::visualAlignment(layoutDirection(), Qt::AlignRight | Qt::AlignVCenter),
                         fontMetrics().elidedText(text(), Qt::ElideRight, words.width()));
    if (hasFocus())
        MorvaneStyle::drawFocusRing(painter, rect(), Theme::controlRadius, Theme::focusRing);
}

void FilterButton::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter || event->key() == Qt::Key_Down)
        click();
    else
        QAbstractButton::keyPressEvent(event);
}
