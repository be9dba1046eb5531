#include "widgets/ButtonLook.h"

#include "widgets/Icons.h"
#include "widgets/MorvaneStyle.h"
#include "widgets/Shapes.h"

#include <QPainter>
#include <QStyleOption>
#include <QWidget>

using namespace Qt::Literals::StringLiterals;
using namespace Shapes;

bool ButtonLook::isDefault(const QStyleOption *option)
{
    const auto *button = qstyleoption_cast<const QStyleOptionButton *>(option);
    return button && button->features.testFlag(QStyleOptionButton::DefaultButton);
}

constexpr const char *takesAwayProperty = "takesAway";

void ButtonLook::setTakesAway(QWidget &button)
{
    button.setProperty(takesAwayProperty, true);
}

bool ButtonLook::takesAway(const QStyleOption *option)
{
    return option->styleObject && option->styleObject->property(takesAwayProperty).toBool();
}

QColor ButtonLook::wordsOf(const QStyleOption *option)
{
    if (takesAway(option))
        return isDefault(option) ? Theme::badgeOverdueText : Theme::overdue;
    return isDefault(option) ? Theme::textOnAccent : Theme::text;
}

static QColor dangerFill(const QStyleOption *option)
{
    constexpr int hovered = 108;
    constexpr int pressed = 120;
    const QColor fill = Theme::badgeOverdue;
    if (option->state.testFlag(QStyle::State_Sunken))
        return fill.darker(pressed);
    return option->state.testFlag(QStyle::State_MouseOver) ? fill.darker(hovered) : fill;
}

static QColor accentFill(const QStyleOption *option)
{
    if (!option->state.testFlag(QStyle::State_Enabled))
        return Theme::divider;
    if (option->state.testFlag(QStyle::State_Sunken))
        return Theme::accentPressed;
    return option->state.testFlag(QStyle::State_MouseOver) ? Theme::accentHover : Theme::accent;
}

QColor ButtonLook::plainFill(const QStyleOption *option)
{
    if (option->state.testFlag(QStyle::State_Sunken) || option->state.testFlag(QStyle::State_On))
        return Theme::controlPressed;
    return option->state.testFlag(QStyle::State_MouseOver) ? Theme::hover : Theme::control;
}

void ButtonLook::draw(const QStyleOption *option, QPainter *painter)
{
    const bool stands = isDefault(option);
    const QColor standing = takesAway(option) ? dangerFill(option) : accentFill(option);
    drawRounded(painter, bounds(option->rect), stands ? standing : plainFill(option),
                stands ? QColor() : Theme::controlBorder);
    if (option->state.testFlag(QStyle::State_HasFocus))
        MorvaneStyle::drawFocusRing(*painter, option->rect, Theme::controlRadius,
                                    stands ? Theme::text : Theme::focusRing);
}

void ButtonLook::drawCheck(const QStyleOption *option, QPainter *painter)
{
    const bool isOn = option->state.testFlag(QStyle::State_On);
    constexpr qreal radius = 4;
    drawRounded(painter, bounds(option->rect).adjusted(1, 1, -1, -1), isOn ? Theme::accent : Theme::control,
                isOn ? Theme::accent : Theme::checkBox, radius);
    if (isOn)
        Icons::paint(*painter, option->rect, u"check-mark"_s, Theme::textOnAccent, option->rect.width());
}

void ButtonLook::drawRadio(const QStyleOption *option, QPainter *painter)
{
    const bool isOn = option->state.testFlag(QStyle::State_On);
    const QRectF circle = bounds(option->rect).adjusted(1, 1, -1, -1);
    const qreal radius = circle.height() / 2;
    drawRounded(painter, circle, isOn ? Theme::accent : Theme::control,
                isOn ? Theme::accent : Theme::checkBox, radius);
    if (isOn)
        drawRounded(painter, circle.adjusted(radius / 2, radius / 2, -radius / 2, -radius / 2),
                    Theme::textOnAccent, {}, radius / 2);
}

void ButtonLook::drawWordsBesideIcon(const QStyleOptionToolButton &button, QPainter *painter)
{
    constexpr int gap = 6;
    const QSize icon = button.iconSize;
    const int words = button.fontMetrics.horizontalAdvance(button.text) + 1;
    const int left = button.rect.left() + std::max(0, (button.rect.width() - icon.width() - gap - words) / 2);
    const auto placed = [&](int from, int width) {
        return QStyle::visualRect(button.direction, button.rect,
                                  QRect(from, button.rect.top(), width, button.rect.height()));
    };
    const bool isEnabled = button.state.testFlag(QStyle::State_Enabled);
    button.icon.paint(painter, placed(left, icon.width()), Qt::AlignCenter,
                      isEnabled ? QIcon::Normal : QIcon::Disabled);
    painter->setPen(isEnabled ? Theme::text : Theme::disabledText);
    painter->drawText(placed(left + icon.width() + gap, words), Qt::AlignCenter | Qt::TextHideMnemonic,
                      button.text);
}

bool ButtonLook::hasWordsBesideIcon(const QStyleOptionToolButton *button)
{
    return button && button->toolButtonStyle == Qt::ToolButtonTextBesideIcon && !button->icon.isNull();
}
