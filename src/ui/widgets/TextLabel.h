#pragma once

#include "widgets/Theme.h"

class QLabel;

/// A text from elsewhere, cut to what can be read at a glance: nobody reads more of it in a row, a box or a
/// tip, and laying out a megabyte stops the program.
QString firstPart(const QString &text);
/// The same for a text of several lines: very long words get places where a line may break.
QString readablePart(const QString &text);

/// A label that breaks its lines, in a role's font and a colour of the theme.
QLabel *makeTextLabel(const QString &text, Theme::FontRole role, Theme::Role colour);
