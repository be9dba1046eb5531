#include "foundation/Log.h"
#include "replication/Replica.h"
#include "replication/ReplicaBooks.h"
#include "replication/RowMerge.h"
#include "replication/SnapshotMerge.h"

#include <QScopedValueRollback>

#include <sqlite3.h>

#include <algorithm>
#include <array>

// What a replica takes in from the others.

namespace replication {

/// Another program was quicker by a moment; the next look tries again.
static Error foreignWritesWait()
{
    return {QStringLiteral("replication"), 0, QStringLiteral("Another program is writing to the store")};
}

/// Whether what was to be written is the reason, and not the store, which may be in use or full.
static bool isOfContent(const Error &error)
{
    constexpr int resultBits = 0xff;
    // The first and the last one: the rows are not what the books say.
    constexpr std::array codes = {SQLITE_OK,         SQLITE_ERROR,    SQLITE_TOOBIG,
                                  SQLITE_CONSTRAINT, SQLITE_MISMATCH, SQLITE_DONE};
    return error.domain == u"sqlite" && std::ranges::find(codes, error.code & resultBits) != codes.end();
}

bool Replica::isReady(const ChangeFile &file) const
{
    return !isSetAside(file) && !isOfNewerVersion(file) && known.of(file.dot.device) + 1 == file.dot.number &&
           known.covers(file.seen);
}

OptionalError Replica::noteDevice(const ChangeFile &file)
{
    sqlite::Statement statement = database.prepare(
        "INSERT INTO ObjectStoreReplicas (device, name, number, time, seen, wall, heard, holdings) VALUES "
        "(?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8) ON CONFLICT (device) DO UPDATE SET name = ?2, number = ?3, time = "
        "MAX(time, ?4), seen = ?5, wall = ?6, heard = ?7, holdings = "
        "IFNULL(NULLIF(?8, ''), holdings)");
    VersionVector its = file.seen;
    its.add(file.dot.device, file.dot.number);
    statement.bind(QString::fromUtf8(file.dot.device)).bind(file.deviceName).bind(file.dot.number);
    return bookResult(database, statement.bind(file.time)
                                    .bind(QString::fromUtf8(its.text()))
                                    .bind(file.wall)
                                    .bind(wallMilliseconds())
                                    .bind(textOfList(file.holdings))
                                    .run());
}

Arrival Replica::arrivalOf(const ChangeFile &file, const std::vector<RowDelta> &deltas) const
{
    Arrival arrival{file.holdings, QSet<QString>(file.unseen.begin(), file.unseen.end()), deltas, {}};
    if (!arrival.holdings) {
        sqlite::Statement former =
            database.prepare("SELECT holdings FROM ObjectStoreReplicas WHERE device = ?");
        if (former.bind(QString::fromUtf8(file.dot.device)).step())
            arrival.holdings = listOfText(former.text(0));
    }
    sqlite::Statement deleted = database.prepare(
        "SELECT 1 FROM ObjectStoreRowStates WHERE tbl = ? AND id = ? AND deletions IS NOT NULL");
    for (const RowDelta &delta : deltas) {
        if (delta.base.time == 0)
            continue;
        deleted.reset();
        if (deleted.bind(QString::fromUtf8(delta.key.table)).bind(delta.key.id).step())
            arrival.returning.insert(delta.key);
    }
    return arrival;
}

OptionalError Replica::noteRemoved(const VersionVector &removed)
{
    for (const auto &[device, number] : removed.entries()) {
        sqlite::Statement statement =
            database.prepare("UPDATE ObjectStoreReplicas SET removed = MAX(removed, ?) WHERE device = ?");
        if (!statement.bind(number).bind(QString::fromUtf8(device)).run())
            return bookFailure(database);
        if (device == own.device)
            removedAt = std::max(removedAt, number);
    }
    return std::nullopt;
}

Result<StoreChanges> Replica::takeIn(std::deque<ChangeFile> &waiting, int mostChanges)
{
    Attempt attempt = tryToTakeIn(waiting, mostChanges);
    // Fewer and fewer, until the one is alone that cannot be taken in.
    while (!attempt.changes && isOfContent(attempt.changes.error()) && !attempt.saves.empty()) {
        if (attempt.saves.size() == 1) {
            Log::line(attempt.changes.error().message);
            asideSaves.insert(*attempt.saves.begin());
        }
        attempt = tryToTakeIn(waiting, std::max(1, static_cast<int>(attempt.saves.size()) / 2));
    }
    return attempt.changes;
}

Replica::Attempt Replica::tryToTakeIn(std::deque<ChangeFile> &waiting, int mostChanges)
{
    // What other programs wrote before comes before.
    if (auto error = saveForeignWrites())
        return {*error, {}};
    Dots saves;
    const VersionVector before = known;
    const qint64 clockBefore = clock;
    const int untoldBefore = untold;
    const qint64 removedBefore = removedAt;
    std::deque<ChangeFile> rest = waiting;
    const QScopedValueRollback guard(isTakingIn, true);
    auto changes = context.changeRows(
        [&](sqlite::Database &, const RowNumbering &nextRow) -> Result<std::vector<AppliedChange>> {
            if (hasForeignWrites())
                return foreignWritesWait();
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
                    if (!deltas) {
                        asideSaves.insert(file->dot);
                        ++file;
                        continue;
                    }
                    saves.insert(file->dot);
                    if (onlooker)
                        onlooker->comes(arrivalOf(*file, *deltas));
                    for (const RowDelta &delta : *deltas) {
                        if (!merge.merge(delta, file->dot, file->seen))
                            return bookFailure(database);
                    }
                    if (auto error = noteDevice(*file))
                        return *error;
                    if (auto error = noteRemoved(file->removed))
                        return *error;
                    taken += static_cast<int>(deltas->size()) + 1;
                    known.add(file->dot.device, file->dot.number);
                    clock = std::max(clock, believed(file->time));
                    if (!deltas->empty() && untold++ == 0)
                        untoldSince = wallMilliseconds();
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
    if (onlooker)
        onlooker->ended();
    if (!changes) {
        known = before;
        clock = clockBefore;
        untold = untoldBefore;
        removedAt = removedBefore;
        return {changes.error(), saves};
    }
    waiting = std::move(rest);
    return {changes, saves};
}

/// What a snapshot knows of the devices.
OptionalError Replica::joinDevices(const VersionVector &seen)
{
    // Snapshots of former versions do not say who was removed, nor what a device has.
    const auto columnOr = [this](const QByteArray &column, const char *otherwise) {
        const bool isThere = database.queryInteger("SELECT COUNT(*) FROM arriving.pragma_table_info("
                                                   "'ObjectStoreReplicas') WHERE name = '" +
                                                   column + '\'') > 0;
        return isThere ? column : QByteArray(otherwise);
    };
    VersionVector removed;
    sqlite::Statement all =
        database.prepare("SELECT device, name, number, time, seen, wall, heard, " + columnOr("removed", "0") +
                         ", " + columnOr("holdings", "NULL") + " FROM arriving.ObjectStoreReplicas");
    while (all.step()) {
        const DeviceId device = all.text(0).toUtf8();
        removed.add(device, all.integer(7));
        if (device == own.device || all.integer(2) <= known.of(device))
            continue;
        sqlite::Statement statement = database.prepare(
            "INSERT INTO main.ObjectStoreReplicas (device, name, number, time, seen, wall, heard, holdings) "
            "VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8) ON CONFLICT (device) DO UPDATE SET name = ?2, number = "
            "?3, time = MAX(time, ?4), seen = ?5, wall = ?6, heard = MAX(heard, ?7), holdings = "
            "IFNULL(NULLIF(?8, ''), holdings)");
        statement.bind(all.text(0)).bind(all.text(1)).bind(all.integer(2)).bind(all.integer(3));
        // Its own row says it when it is the maker's.
        VersionVector its = VersionVector::fromText(all.text(4).toUtf8());
        its.add(device, all.integer(2));
        statement.bind(QString::fromUtf8(its.text())).bind(all.integer(5));
        const qint64 heard = all.integer(6) > 0 ? all.integer(6) : all.integer(5);
        statement.bind(std::min(heard, wallMilliseconds())).bind(all.text(8));
        if (!statement.run())
            return bookFailure(database);
        clock = std::max(clock, believed(all.integer(3)));
    }
    if (auto error = noteRemoved(removed))
        return error;
    known.add(seen);
    constexpr int many = 1000;
    untold += many;
    untoldSince = untoldSince > 0 ? untoldSince : wallMilliseconds();
    return writeOwn();
}

Result<StoreChanges> Replica::adopt(const QString &databasePath, const VersionVector &seen)
{
    if (!context.isFree())
        return Error{QStringLiteral("store"), 0, QStringLiteral("The store is being changed")};
    if (auto error = saveForeignWrites())
        return *error;
    sqlite::Statement attached = database.prepare("ATTACH ? AS arriving");
    if (!attached.bind(databasePath).run())
        return bookFailure(database);
    attached.reset();
    const VersionVector before = known;
    const qint64 clockBefore = clock;
    const int untoldBefore = untold;
    const qint64 removedBefore = removedAt;
    std::vector<RowKey> ownRows;
    const QScopedValueRollback guard(isTakingIn, true);
    // So many pages change that they would be written several times.
    const QByteArray formerCache = QByteArray::number(database.queryInteger("PRAGMA main.cache_size"));
    OptionalError unenforced = database.execute(
        "PRAGMA arriving.synchronous = OFF; PRAGMA foreign_keys = OFF; PRAGMA main.cache_size = -262144;"
        // What is in the log is safe; it takes its place in the file off the main thread: `moveFromLog`.
        "PRAGMA wal_autocheckpoint = 0");
    auto changes =
        unenforced
            ? Result<StoreChanges>(*unenforced)
            : context.changeManyRows(
                  [&](sqlite::Database &, const RowNumbering &nextRow) -> Result<std::vector<AppliedChange>> {
                      if (hasForeignWrites())
                          return foreignWritesWait();
                      SnapshotMerge merge(database, model, nextRow, own.device);
                      auto applied = merge.run();
                      if (!applied)
                          return applied;
                      if (auto error = joinDevices(seen))
                          return *error;
                      ownRows = merge.ownRows();
                      return applied;
                  });
    if (!changes) {
        known = before;
        clock = clockBefore;
        untold = untoldBefore;
        removedAt = removedBefore;
    }
    if (auto error = database.execute("PRAGMA wal_autocheckpoint = 1000; PRAGMA foreign_keys = ON; PRAGMA "
                                      "main.cache_size = " +
                                      formerCache))
        return *error;
    // Whatever stays attached is detached with the connection.
    database.execute("DETACH arriving").ignore();
    if (!changes)
        return changes;
    for (const RowKey &key : ownRows) {
        if (const ObjectPtr object = context.object(key.table.toStdString(), key.id))
            changes.value().inserted.push_back(object);
    }
    return changes;
}

OptionalError Replica::moveFromLog(const QString &storePath)
{
    auto opened = sqlite::Database::open(storePath, sqlite::Database::Mode::ReadWrite);
    if (!opened)
        return opened.error();
    (*opened)->setCheckpointAtEnd(false);
    return (*opened)->execute("PRAGMA wal_checkpoint(PASSIVE)");
}

Result<StoreChanges> Replica::settle()
{
    if (auto error = saveForeignWrites())
        return *error;
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
