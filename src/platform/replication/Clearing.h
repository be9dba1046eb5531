#pragma once

#include "replication/Replica.h"
#include "replication/Snapshot.h"

#include <optional>

// Which saves in the folder are still needed, decided from what is known of the devices. Nothing here touches
// a file.

namespace replication {

/// When a device makes a snapshot.
struct SnapshotTerms
{
    /// So many of its own saves, or so many bytes of them, are in no snapshot.
    int mostFiles = 500;
    qint64 mostBytes = 16'000'000;
};

/// The snapshot to take in, by its place: one that holds a save that is not known here and has gone from the
/// folder, or so many saves that it is the shorter way. Of several the one that holds most. Absent if the
/// saves in the folder do.
/// \param known the saves that are known here.
/// \param present those in the folder that are not, or that wait already.
std::optional<size_t> snapshotToTake(const std::vector<SnapshotHead> &snapshots, const VersionVector &known,
                                     const Dots &present, const DeviceId &own);

/// Whether a device counts as one that takes part: it is another one, was not removed, and was heard of
/// within ninety days.
bool isExpected(const Device &device);

/// The greatest number of a save of a device that is in a snapshot.
qint64 coveredBy(const std::vector<SnapshotHead> &snapshots, const DeviceId &device);

/// Up to which number a device may remove its own saves: those that a snapshot holds and that every other
/// device has told of having. Who was removed, or not heard of for ninety days, is not waited for, and
/// takes in the snapshot when it comes back. The last save always stays, as the sign of how far the device
/// has come. \param snapshots that were read to their end.
qint64 clearableUpTo(qint64 lastNumber, const std::vector<Device> &devices,
                     const std::vector<SnapshotHead> &snapshots, const DeviceId &own);

/// Up to which number everybody may remove the saves of a device that the user has removed: those that a
/// snapshot holds and that all others have.
/// \param snapshots of devices that were not removed, read to their end.
qint64 clearableOfRemoved(const DeviceId &removed, const std::vector<Device> &devices,
                          const std::vector<SnapshotHead> &snapshots);

} // namespace replication
