#pragma once

#include "foundation/Date.h"
#include "replication/Clearing.h"
#include "replication/ReplicaFolder.h"
#include "replication/SealedFiles.h"

#include <QSet>

#include <map>

namespace replication {

/// Writes a save, sealed if the folder is.
OptionalError writeSave(const ReplicaFolder &folder, const SealingStatus &sealed, const Dot &dot,
                        const QByteArray &bytes);

/// Makes a snapshot of a store and puts it into the folder in the place of the former ones of this device.
/// \param storePath of the store, which may be in use. What is made on the way lies beside it.
OptionalError makeSnapshot(const ReplicaFolder &folder, const SealingStatus &sealed, const QString &storePath,
                           const ManagedObjectModel &model, const DeviceId &own,
                           const std::atomic<bool> &isCancelled);

/// A save that could not be read.
struct UnreadSave
{
    /// Tells its file, and the keys that were there, from others.
    QString mark;
    Date tried;
    Error why;
    /// Open in a sealed folder, sealed in an open one, or sealed with another key.
    bool isUnfit = false;
};

/// What one look at the folder does, and what it finds. It runs off the main thread, and knows nothing of the
/// replica but what it was given.
struct ExchangeRound
{
    ExchangeRound(ReplicaFolder shared, DeviceId device)
        : folder(std::move(shared))
        , own(std::move(device))
    {}

    // What it is given.
    ReplicaFolder folder;
    DeviceId own;
    VersionVector known = {};
    int schema = 0;
    /// Of this device.
    qint64 number = 0;
    qint64 cleared = 0;
    std::vector<Replica::Outgoing> outgoing = {};
    std::vector<Device> devices = {};
    SnapshotTerms terms = {};
    /// What waits to be taken in already.
    Dots waiting = {};
    /// Of that, what never can be.
    Dots aside = {};
    /// What could not be read before. It is read again when its file changes, and now and then.
    std::map<Dot, UnreadSave> unread = {};
    bool listsOwn = false;
    /// What was being written before that was left behind by a kill.
    QDateTime started = {};
    /// Where an unpacked snapshot goes; empty if one waits there already.
    QString arrivalPath = {};
    std::shared_ptr<const Sealing> sealing = {};
    /// Snapshots that were read to their end before.
    QSet<QString> verified = {};
    /// Snapshots that could not be taken in.
    QSet<QString> refused = {};
    sealedfiles::Place filesBeside = {};
    /// Those of them that are as they should be.
    QSet<QString> fitFiles = {};

    // What it finds.
    SealingStatus sealed = {};
    std::vector<qint64> written = {};
    std::vector<qint64> ownNumbers = {};
    /// The last of them that is what its name says, apart from those that this device has not written yet,
    /// and what is in it.
    std::optional<Replica::Outgoing> lastOwn = {};
    /// The greatest of those that are, or that cannot be opened without a key.
    qint64 greatestOwn = 0;
    /// Own files that are no such saves, that are open in a sealed folder, sealed in an open one, or sealed
    /// with a former key.
    std::vector<qint64> unfit = {};
    std::vector<ChangeFile> files = {};
    std::vector<FileProblem> problems = {};
    QString folderProblem = {};
    QStringList watchedFolders = {};
    bool isMoreLeft = false;
    /// A snapshot that was unpacked for this device.
    std::optional<SnapshotHead> arrived = {};
    /// Tells its file from others, also from another one of its name.
    QString arrivedMark = {};
    /// Up to which number a save of this device is in a snapshot of the folder.
    qint64 ownCovered = 0;
    bool isSnapshotDue = false;
    qint64 clearable = 0;

    void run();

    /// What is in the file of a save, opened; absent without one that can be.
    static std::optional<QByteArray> contentOf(const ReplicaFolder &folder, const SealingStatus &sealed,
                                               const Dot &dot);

private:
    struct Found
    {
        ReplicaFolder::Entry entry;
        SnapshotHead head;
    };
    void listOwn();
    Result<ChangeFile> saveIn(const QByteArray &bytes, const Dot &dot);
    void heed(const Error &error);
    void write();
    void read();
    qsizetype readOne(const ReplicaFolder::Entry &entry);
    void findSnapshots();
    void takeSnapshot();
    void tidy();
    bool isWhole(const Found &snapshot);
    void clearAwayRemoved(const DeviceId &removed);

    std::vector<ReplicaFolder::Entry> present = {};
    /// Those of them that are open in a sealed folder, sealed in an open one, or sealed with another key.
    Dots unopened = {};
    std::vector<Found> snapshots = {};
};

} // namespace replication
