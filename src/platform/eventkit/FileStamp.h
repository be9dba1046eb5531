#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// What tells whether a file was exchanged or written since, also by those who set its date back: its time
/// of change in nanoseconds, by its date and by the system's own record, inode and size.
struct FileStamp
{
    qint64 date = 0;
    qint64 recorded = 0;
    quint64 inode = 0;
    qint64 size = 0;
    bool isFolder = false;
    /// Reading anything else, such as a named pipe, may take for ever.
    bool isRegular = false;

    /// Follows symbolic links; absent if there is nothing.
    static std::optional<FileStamp> of(const QString &path);
    QByteArray text() const;
    /// Whether a further change now would get another time: the clock of files moves in steps.
    bool isSettled() const;

    bool operator==(const FileStamp &) const = default;
};

/// Whether the process may write the file, or make and remove files in the folder.
bool isWritablePath(const QString &path);
