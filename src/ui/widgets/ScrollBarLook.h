#pragma once

#include <QStyle>

class QStyleOptionSlider;

/// A thin scroll bar whose handle runs over the whole length: there are no arrow buttons.
namespace ScrollBarLook {

inline constexpr int handleMinimum = 36;

void draw(const QStyleOptionComplex *option, QPainter *painter, const QRect &handle);
/// The place of a part, written from left to right.
QRect partOf(const QStyleOptionSlider &bar, QStyle::SubControl part);

} // namespace ScrollBarLook
