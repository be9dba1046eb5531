#pragma once

#include "foundation/Error.h"
#include "replication/Sealing.h"
#include "replication/Stamp.h"

#include <atomic>

class ManagedObjectModel;

namespace replication {

/// What a snapshot says of itself.
struct SnapshotHead
{
    /// Of the model that its tables belong to.
    int schema = 0;
    /// Who made it, and the last save of that device that is in it.
    Dot dot;
    /// All saves that are in it.
    VersionVector seen;
    /// Of the whole file, in bytes.
    qint64 size = 0;
    /// Of the key that it is sealed with; empty if it is open.
    QByteArray keyMark = {};
};

/// All that a store holds for its devices, in one file: it takes the place of the saves of which it came
/// about, for devices that have not got them. It consists of parts, each with its length, its digest and, in
/// a sealed folder, its own seal: the head, then a database, compressed, with the rows and the books on them.
/// Its tables have the keys and indexes of a new store, since copying these is quicker than making them. What
/// a device keeps for itself is not in it. Any thread.
namespace snapshot {

/// Copies what belongs into a snapshot from a store, as its last commit left it, to a new database file.
/// \param storePath of a store that may be in use.
/// \param isCancelled ends it soon, with an error, once it is true.
Result<SnapshotHead> extract(const QString &storePath, const ManagedObjectModel &model,
                             const QString &databasePath, const std::atomic<bool> &isCancelled);
/// Writes a snapshot of an extracted database, whole or not at all.
/// \param sealer null for an open folder.
/// \param name what the seal binds it to: where it lies below the folder.
OptionalError pack(const SnapshotHead &head, const QString &databasePath, const Sealer *sealer,
                   const QString &name, const QString &path);
/// What a snapshot says of itself, without reading it to its end. The error says why it is none, cut off
/// included.
Result<SnapshotHead> readHead(const QString &path, const SealingStatus &sealed, const QString &name);
/// Writes the database in a snapshot to a file, or only reads all of it. The error says why it is damaged,
/// or cannot be written; then no file is left.
/// \param databasePath empty for reading only.
Result<SnapshotHead> unpack(const QString &path, const SealingStatus &sealed, const QString &name,
                            const QString &databasePath);

} // namespace snapshot

} // namespace replication
