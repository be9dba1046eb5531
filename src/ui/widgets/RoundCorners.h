#pragma once

class QPainter;
class QRect;
class QWidget;

/// The round corners of the windows that hang on a control: bubbles, menus and the lists of pop-ups.
/// Where the screen blends windows they are soft, else they are cut off.
namespace RoundCorners {

/// Gives a window round corners, which drawPanel() is to fill. To be called before it is first shown.
void give(QWidget &window, int radius);
/// Draws the white ground of such a window with its thin edge.
void drawPanel(QPainter &painter, const QWidget &window, int radius);

} // namespace RoundCorners
