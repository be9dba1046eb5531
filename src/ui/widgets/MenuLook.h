#pragma once

#include <QStyleOptionMenuItem>

/// The lines of menus.
namespace MenuLook {

inline constexpr int itemHeight = 28;
inline constexpr int tickRoom = 24;

void drawSelection(const QStyleOption *option, QPainter *painter);
/// The bar of the menus is one piece with the sidebar below it.
void drawBar(const QRect &rect, QPainter *painter);
void drawBarItem(const QStyleOptionMenuItem &item, QPainter *painter);
void drawSeparator(const QRect &rect, QPainter *painter);
bool isCheckable(const QStyleOptionMenuItem &item);
/// A tick stands before the words, or behind them where an icon is before them.
void drawTick(const QStyleOptionMenuItem &item, QPainter *painter);
/// The words and the icon, without the marks that are drawn by themselves.
QStyleOptionMenuItem withoutMarks(const QStyleOptionMenuItem &item);

} // namespace MenuLook
