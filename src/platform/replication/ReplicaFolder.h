#pragma once

#include "foundation/Error.h"
#include "replication/Stamp.h"

#include <QDateTime>
#include <QString>

#include <vector>

namespace replication {

/// The folder through which devices exchange their saves, and which another program replicates. Each device
/// writes into a folder of its own, one file for each save, which never changes once it has its name, unless
/// it is sealed later; and now and then a snapshot of all that it knows, after which files may go. Other
/// files are left alone: what is still being transferred, and what a replicating program makes of conflicts,
/// has other names. Any thread.
class ReplicaFolder
{
public:
    struct Entry
    {
        DeviceId device;
        qint64 number = 0;
        QString path;
    };

    explicit ReplicaFolder(QString contentFolder)
        : folder(std::move(contentFolder))
    {}

    const QString &path() const { return folder; }
    /// Whether the folder is there or can be made.
    OptionalError prepare() const;
    OptionalError write(const Dot &dot, const QByteArray &bytes) const;
    /// The saves beyond those that are known, in the order of their numbers.
    std::vector<Entry> list(const VersionVector &beyond) const;
    /// The numbers of all saves of one device that are there.
    std::vector<qint64> numbersOf(const DeviceId &device) const;
    /// The folders that change when something new comes.
    QStringList watchedFolders() const;
    QString pathOf(const Dot &dot) const;
    /// The snapshots of all devices; the number is that of the last save of the device that is in it.
    std::vector<Entry> snapshots() const;
    QString snapshotPathOf(const Dot &dot) const;
    OptionalError makeFolderOf(const DeviceId &device) const;
    /// Removes what a device was writing when it was killed, if it was last written before that. Such a file
    /// has the name that it was to get, and six letters behind it, so that nobody takes it for a save.
    void removeLeftovers(const DeviceId &device, const QDateTime &before) const;

private:
    QString folderOf(const DeviceId &device) const { return folder + u'/' + QString::fromUtf8(device); }
    std::vector<DeviceId> devices() const;
    QString folder;
};

} // namespace replication
