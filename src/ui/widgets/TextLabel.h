#pragma once

#include "widgets/Theme.h"

class QLabel;

/// A label that breaks its lines, in a role's font and a colour of the theme.
QLabel *makeTextLabel(const QString &text, Theme::FontRole role, const QColor &color);
