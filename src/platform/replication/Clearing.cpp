#include "replication/Clearing.h"

#include "replication/ReplicaBooks.h"

#include <algorithm>
#include <numeric>

namespace replication {

namespace {

/// Beyond that, single saves take longer than the snapshot.
constexpr qint64 shorterWay = 2000;
constexpr qint64 daysOfPatience = 90;

/// How many saves a snapshot brings that are not known.
qint64 gainOf(const SnapshotHead &snapshot, const VersionVector &known, const DeviceId &own)
{
    const auto &entries = snapshot.seen.entries();
    return std::accumulate(entries.begin(), entries.end(), qint64(0), [&](qint64 sum, const auto &one) {
        return one.first == own ? sum : sum + std::max(qint64(0), one.second - known.of(one.first));
    });
}

bool hasWhatIsGone(const SnapshotHead &snapshot, const VersionVector &known, const Dots &present,
                   const DeviceId &own)
{
    return std::ranges::any_of(snapshot.seen.entries(), [&](const auto &one) {
        const qint64 next = known.of(one.first) + 1;
        return one.first != own && one.second >= next && !present.contains({one.first, next});
    });
}

} // namespace

std::optional<size_t> snapshotToTake(const std::vector<SnapshotHead> &snapshots, const VersionVector &known,
                                     const Dots &present, const DeviceId &own)
{
    std::optional<size_t> best;
    qint64 most = 0;
    for (size_t place = 0; place < snapshots.size(); ++place) {
        const qint64 gain = gainOf(snapshots[place], known, own);
        const bool isWanted = gain >= shorterWay || hasWhatIsGone(snapshots[place], known, present, own);
        if (isWanted && gain > most) {
            best = place;
            most = gain;
        }
    }
    return best;
}

qint64 coveredBy(const std::vector<SnapshotHead> &snapshots, const DeviceId &device)
{
    qint64 covered = 0;
    for (const SnapshotHead &one : snapshots)
        covered = std::max(covered, one.seen.of(device));
    return covered;
}

bool isExpected(const Device &device)
{
    const Date longAgo = dateOfMilliseconds(wallMilliseconds() - daysOfPatience * millisecondsADay);
    return !device.isOwn && !device.isRemoved && device.heard.value_or(longAgo) > longAgo;
}

/// The saves of a device that all have told of which are waited for.
static qint64 toldByAll(qint64 most, const DeviceId &device, const std::vector<Device> &devices)
{
    for (const Device &other : devices) {
        if (isExpected(other))
            most = std::min(most, other.seen.of(device));
    }
    return std::max(qint64(0), most);
}

qint64 clearableUpTo(qint64 lastNumber, const std::vector<Device> &devices,
                     const std::vector<SnapshotHead> &snapshots, const DeviceId &own)
{
    return toldByAll(std::min(lastNumber - 1, coveredBy(snapshots, own)), own, devices);
}

qint64 clearableOfRemoved(const DeviceId &removed, const std::vector<Device> &devices,
                          const std::vector<SnapshotHead> &snapshots)
{
    qint64 most = coveredBy(snapshots, removed);
    for (const Device &device : devices) {
        if (device.isOwn)
            most = std::min(most, device.seen.of(removed));
    }
    return toldByAll(most, removed, devices);
}

} // namespace replication
