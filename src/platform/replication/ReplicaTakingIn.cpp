#include "replication/Replica.h"
#include "replication/ReplicaBooks.h"
#include "replication/RowMerge.h"

#include <QScopedValueRollback>

#include <algorithm>

// What a replica takes in from the others.

namespace replication {

bool Replica::isReady(const ChangeFile &file) const
{
    return !isOfNewerVersion(file) && known.of(file.dot.device) + 1 == file.dot.number &&
           known.covers(file.seen);
}

OptionalError Replica::noteDevice(const ChangeFile &file)
{
    sqlite::Statement statement = database.prepare(
        "INSERT INTO ObjectStoreReplicas (device, name, number, time, seen) VALUES (?1, ?2, ?3, ?4, ?5) ON "
        "CONFLICT (device) DO UPDATE SET name = ?2, number = ?3, time = MAX(time, ?4), seen = ?5");
    VersionVector its = file.seen;
    its.add(file.dot.device, file.dot.number);
    statement.bind(QString::fromUtf8(file.dot.device)).bind(file.deviceName).bind(file.dot.number);
    return bookResult(database, statement.bind(file.time).bind(QString::fromUtf8(its.text())).run());
}

Result<StoreChanges> Replica::takeIn(std::deque<ChangeFile> &waiting, int mostChanges)
{
    const VersionVector before = known;
    const qint64 clockBefore = clock;
    std::deque<ChangeFile> rest = waiting;
    const QScopedValueRollback guard(isTakingIn, true);
    auto changes = context.changeRows(
        [&](sqlite::Database &, const RowNumbering &nextRow) -> Result<std::vector<AppliedChange>> {
            RowMerge merge(database, model, nextRow);
            int taken = 0;
            bool isMoving = true;
            while (isMoving && taken < mostChanges) {
                isMoving = false;
                for (auto file = rest.begin(); file != rest.end() && taken < mostChanges;) {
                    if (isKnown(*file)) {
                        file = rest.erase(file);
                        continue;
                    }
                    if (!isReady(*file)) {
                        ++file;
                        continue;
                    }
                    const auto deltas = file->deltas(model);
                    if (!deltas)
                        return Error{QStringLiteral("replication"), 0,
                                     QStringLiteral("What another device changed cannot be read")};
                    for (const RowDelta &delta : *deltas) {
                        if (!merge.merge(delta, true))
                            return bookFailure(database);
                    }
                    if (auto error = noteDevice(*file))
                        return *error;
                    taken += static_cast<int>(deltas->size()) + 1;
                    known.add(file->dot.device, file->dot.number);
                    clock = std::max(clock, file->time);
                    isMoving = true;
                    file = rest.erase(file);
                }
            }
            auto applied = merge.finish();
            if (applied) {
                if (auto error = writeOwn())
                    return *error;
            }
            return applied;
        });
    if (!changes) {
        known = before;
        clock = clockBefore;
        return changes.error();
    }
    waiting = std::move(rest);
    return changes;
}

Result<StoreChanges> Replica::settle()
{
    const QScopedValueRollback guard(isTakingIn, true);
    const std::set<RowKey> keys = std::exchange(unsettled, {});
    return context.changeRows(
        [&](sqlite::Database &, const RowNumbering &nextRow) -> Result<std::vector<AppliedChange>> {
            RowMerge merge(database, model, nextRow);
            RowLedger ledger(database);
            for (const RowKey &key : keys) {
                merge.settleLater(key);
                for (const auto &[place, column] : ledger.placesOf(key.id))
                    merge.settleLater(place);
            }
            return merge.finish();
        });
}

} // namespace replication
