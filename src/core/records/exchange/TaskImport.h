#pragma once

#include "records/exchange/CalendarFile.h"
#include "records/exchange/RecordTable.h"
#include "store/state/StepBlock.h"

#include <QStringList>

#include <memory>
#include <vector>

class QIODevice;

/// What has become of what iCalendar files and tables hold.
struct TaskImportAccount
{
    int added = 0;
    int same = 0;
    /// The titles of those that the file has in a later form, which was taken over, and of those that were
    /// changed here since the file was written, or whose file does not say when, and stay as they are.
    QStringList changed;
    QStringList newerHere;
    /// The titles of those of which a task cannot hold everything.
    QStringList partial;
    /// What is not what its column wants, each with its line, and stands in the details.
    QStringList unread;
    /// The titles of columns that mean nothing here and hold something, which stands in the details.
    QStringList unknownColumns;
    /// The titles of calendars that are not here.
    QStringList otherCalendars;
    /// The titles of tasks that a table of projects names, and that the projects do not have.
    QStringList missingTasks;
    /// What was not imported, each with its reason in the user's language.
    QStringList refused;
    bool wasStopped = false;
    /// False if the store could not be written, which the user was told. The tasks wait for the next save.
    bool isSaved = true;

    /// All of it for the user to read, a sentence each; names only of the first few.
    QStringList sentences() const;
};

/// Makes tasks of the events and tasks of iCalendar files, projects of projects that this program has
/// written, and notes of journals; the same of tables (`RecordTable`). What has come in before is known by
/// its UID or identifier, from which its row has its identifier. Main thread only.
class TaskImport
{
public:
    /// Reads a file. A part that cannot be read takes no other with it, and is told of by `import`.
    /// \param name what the user calls it; that of a table ends with ".csv".
    void addFile(QIODevice &device, const QString &name);
    /// A file that cannot be opened; `reason` in the words of the system.
    void addUnreadable(const QString &name, const QString &reason);
    /// How many records there are to be imported.
    std::size_t count() const;

    /// Imports everything in one step that can be taken back. Some hundred at a time are written; if that
    /// fails, those before stay. \param step called after each record.
    TaskImportAccount import(const StepBlock &step = {});

    /// The identifier of the row that stands for an object of another program: always the same.
    static QString identifierOf(const QString &uid);

private:
    /// Of the two one is empty.
    struct File
    {
        QString name;
        CalendarFile content;
        RecordTable table;
    };
    void addTable(QIODevice &device, const QString &name);

    std::vector<File> files;
    QStringList problems;
};
