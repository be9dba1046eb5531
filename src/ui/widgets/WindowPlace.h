#pragma once

class QWidget;

/// Puts a window over the middle of its parent, with the title bar where it can be reached. Nothing without a
/// parent.
void placeOverParent(QWidget &window);
