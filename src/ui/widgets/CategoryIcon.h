#pragma once

#include <QIcon>

class EntityCategory;

/// Coloured circles for menus and pop-ups.
namespace CategoryIcon {

/// The circle of a colour; none for an invalid one.
QIcon circle(const QColor &colour);
QColor colorOf(const EntityCategory &category);
/// The circle in a category's colour.
QIcon of(const EntityCategory &category);

} // namespace CategoryIcon
