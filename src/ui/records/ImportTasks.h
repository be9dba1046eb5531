#pragma once

#include <QStringList>

class QMimeData;
class QWidget;

/// iCalendar files that become tasks.
namespace ImportTasks {

/// Asks for files and imports them.
void run(QWidget &window);
/// Imports files: one step that can be taken back, after which the user is told what has become of them.
void openFiles(const QStringList &paths);
/// The files of a drag that can be imported; empty for a drag of anything else.
QStringList filesIn(const QMimeData &data);

} // namespace ImportTasks
