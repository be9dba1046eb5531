#include "widgets/MenuLook.h"

#include "widgets/Icons.h"
#include "widgets/Shapes.h"

#include <QPainter>

using namespace Qt::Literals::StringLiterals;

constexpr int tickSize = 22;

void MenuLook::drawSelection(const QStyleOption *option, QPainter *painter)
{
    if (!option->state.testFlag(QStyle::State_Selected) || !option->state.testFlag(QStyle::State_Enabled))
        return;
    Shapes::drawRounded(painter, QRectF(option->rect).adjusted(4, 1, -4, -1), Theme::selection, {});
}

void MenuLook::drawBar(const QRect &rect, QPainter *painter)
{
    painter->fillRect(rect, Theme::mixed(Theme::sidebar, Theme::content));
}

void MenuLook::drawBarItem(const QStyleOptionMenuItem &item, QPainter *painter)
{
    if (item.state.testFlag(QStyle::State_Selected))
        Shapes::drawRounded(painter, QRectF(item.rect).adjusted(2, 2, -2, -2), Theme::sidebarSelection, {});
    painter->setPen(item.state.testFlag(QStyle::State_Enabled) ? Theme::sidebarText : Theme::sidebarQuiet);
    painter->drawText(item.rect, Qt::AlignCenter | Qt::TextHideMnemonic, item.text);
}

void MenuLook::drawSeparator(const QRect &rect, QPainter *painter)
{
    painter->fillRect(QRect(rect.left(), rect.center().y(), rect.width(), 1), QColor(Theme::cardBorder));
}

bool MenuLook::isCheckable(const QStyleOptionMenuItem &item)
{
    return item.checkType != QStyleOptionMenuItem::NotCheckable;
}

void MenuLook::drawTick(const QStyleOptionMenuItem &item, QPainter *painter)
{
    if (!isCheckable(item) || !item.checked)
        return;
    QRect place(item.rect.left() + Theme::unit / 2, item.rect.top(), tickRoom, item.rect.height());
    if (!item.icon.isNull())
        place.moveRight(item.rect.right() - Theme::unit / 2);
    Icons::paint(*painter, QStyle::visualRect(item.direction, item.rect, place), u"check-mark"_s,
                 Theme::accent, tickSize);
}

QStyleOptionMenuItem MenuLook::withoutMarks(const QStyleOptionMenuItem &item)
{
    QStyleOptionMenuItem plain(item);
    plain.checkType = QStyleOptionMenuItem::NotCheckable;
    plain.checked = false;
    plain.state.setFlag(QStyle::State_Selected, false);
    plain.state.setFlag(QStyle::State_Sunken, false);
    return plain;
}
