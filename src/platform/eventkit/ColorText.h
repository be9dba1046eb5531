#pragma once

#include "eventkit/EKCalendar.h"

/// Reads "#rrggbb", "#rgb", "#rrggbbaa" and "rgb(1,2,3)"; absent for anything else.
std::optional<EKColor> colorFromText(const QString &text);
/// "#rrggbb".
QString textOfColor(const EKColor &color);
