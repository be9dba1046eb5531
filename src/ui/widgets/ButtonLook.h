#pragma once

#include <QColor>

class QPainter;
class QStyleOption;
class QStyleOptionToolButton;

/// Buttons, check boxes and radio buttons.
namespace ButtonLook {

/// Whether a button stands out as the one that Return presses.
bool isDefault(const QStyleOption *option);
/// The ground of a control that is not that one, as it is pressed, hovered or at rest.
QColor plainFill(const QStyleOption *option);
void draw(const QStyleOption *option, QPainter *painter);
void drawCheck(const QStyleOption *option, QPainter *painter);
void drawRadio(const QStyleOption *option, QPainter *painter);
/// Whether a button (or null) has an icon and words beside it.
bool hasWordsBesideIcon(const QStyleOptionToolButton *button);
/// An icon and the words beside it, with air between them.
void drawWordsBesideIcon(const QStyleOptionToolButton &button, QPainter *painter);

} // namespace ButtonLook
