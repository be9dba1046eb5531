#pragma once

class QWidget;

/// Paints the ground of a small card that lies over other widgets of its window, from within its paintEvent.
void paintFloatingCard(QWidget &card);
