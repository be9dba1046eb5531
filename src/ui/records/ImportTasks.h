#pragma once

#include <QStringList>

#include <functional>

class QMimeData;
class QWidget;

/// Files that become tasks, projects and notes: iCalendar files, and tables. Tables of people belong to
/// others.
namespace ImportTasks {

using FilesOpener = std::function<void(const QStringList &paths)>;

/// Asks for files and imports them.
/// \param openPeople imports those that hold contacts.
void run(QWidget &window, const FilesOpener &openPeople);
/// Imports files: one step that can be taken back, after which the user is told what has become of them.
void openFiles(const QStringList &paths, const FilesOpener &openPeople);
/// Imports a text that is a table of ours, or of another program with such titles, as a file would be. False,
/// with nothing done, for any other text.
bool openTable(const QString &text, const FilesOpener &openPeople);
/// The files of a drag that can be imported; empty for a drag of anything else.
QStringList filesIn(const QMimeData &data);

} // namespace ImportTasks
