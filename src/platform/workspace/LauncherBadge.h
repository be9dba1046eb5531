#pragma once

#include <QString>

/// The number beside the program's icon in the desktop's docks (com.canonical.Unity.LauncherEntry).
namespace LauncherBadge {

/// Shows a number beside the icon of a desktop file, named without its suffix; an empty text for none.
/// Without a message bus nothing happens.
void show(const QString &label, const QString &desktopFile);

} // namespace LauncherBadge
