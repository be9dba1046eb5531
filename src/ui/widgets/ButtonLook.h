#pragma once

#include <QColor>

class QPainter;
class QStyleOption;
class QStyleOptionToolButton;
class QWidget;

/// Buttons, check boxes and radio buttons.
namespace ButtonLook {

/// Whether a button stands out as the one that Return presses.
bool isDefault(const QStyleOption *option);
/// Marks a button that takes something away from the user: it does not look like one that does no harm.
void setTakesAway(QWidget &button);
bool takesAway(const QStyleOption *option);
/// The colour of the words on a button that stands out or takes something away.
QColor wordsOf(const QStyleOption *option);
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
