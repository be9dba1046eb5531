#include "objectstore/ChangeJournal.h"
#include "replication/ForeignWrites.h"
#include "replication/Replica.h"
#include "replication/ReplicaBooks.h"
#include "replication/RowLedger.h"

#include <sqlite3.h>

#include <algorithm>

// What a replica writes down for the others.

namespace replication {

std::vector<Replica::Outgoing> Replica::outgoing(qsizetype mostBytes) const
{
    std::vector<Outgoing> list;
    qsizetype size = 0;
    sqlite::Statement waiting =
        database.prepare("SELECT number, bytes FROM ObjectStoreOutgoing WHERE isSent = 0 ORDER BY number");
    while (size < mostBytes && waiting.step()) {
        list.push_back({waiting.integer(0), waiting.blob(1)});
        size += list.back().bytes.size();
    }
    return list;
}

int Replica::unsentCount() const
{
    return static_cast<int>(
        database.queryInteger("SELECT COUNT(*) FROM ObjectStoreOutgoing WHERE isSent = 0"));
}

std::optional<QByteArray> Replica::sent(qint64 number) const
{
    sqlite::Statement found = database.prepare("SELECT bytes FROM ObjectStoreOutgoing WHERE number = ?");
    return found.bind(number).step() ? std::optional(found.blob(0)) : std::nullopt;
}

OptionalError Replica::clear(qint64 upTo)
{
    const QByteArray limit = QByteArray::number(upTo);
    OptionalError error = database.execute(
        "BEGIN IMMEDIATE; DELETE FROM ObjectStoreOutgoing WHERE number <= " + limit +
        "; UPDATE ObjectStoreReplicas SET cleared = " + limit + " WHERE machine IS NOT NULL; COMMIT");
    if (!error)
        clearedUpTo = upTo;
    else if (!database.isAutocommit())
        database.rollBack();
    return error;
}

OptionalError Replica::markSent(qint64 number)
{
    sqlite::Statement statement =
        database.prepare("UPDATE ObjectStoreOutgoing SET isSent = 1 WHERE number = ?");
    return bookResult(database, statement.bind(number).run());
}

OptionalError Replica::markUnsent(qint64 number)
{
    sqlite::Statement statement =
        database.prepare("UPDATE ObjectStoreOutgoing SET isSent = 0 WHERE number = ?");
    return bookResult(database, statement.bind(number).run());
}

void Replica::startSession()
{
    sqlite3_session *started = nullptr;
    isSessionMissing = sqlite3session_create(database.handle(), "main", &started) != SQLITE_OK;
    if (isSessionMissing)
        return;
    session.reset(started);
    sqlite3session_table_filter(
        started,
        [](void *self, const char *table) {
            const EntityDescription *entity = static_cast<Replica *>(self)->model.entityOfTable(table);
            return entity && !entity->isDerived() ? 1 : 0;
        },
        this);
    sqlite3session_attach(started, nullptr);
}

Result<QByteArray> Replica::changesetOfSession() const
{
    int size = 0;
    void *bytes = nullptr;
    const int code = session ? sqlite3session_changeset(session.get(), &size, &bytes) : SQLITE_NOMEM;
    const QByteArray changeset(static_cast<const char *>(bytes), size);
    sqlite3_free(bytes);
    if (code != SQLITE_OK)
        return sqlite::error(code, QStringLiteral("Cannot tell what was changed"));
    return changeset;
}

/// Of what the context captured, and of what was seen here. Both tell the last state of a row that is in
/// both; the former one stands in what was captured.
Result<QByteArray> Replica::netChange(const Result<QByteArray> &captured) const
{
    if (!session && !isSessionMissing)
        return captured;
    auto seen = changesetOfSession();
    if (!seen || !usesCaptured)
        return seen;
    if (!captured || seen->isEmpty())
        return captured;
    sqlite3_changegroup *created = nullptr;
    int code = sqlite3changegroup_new(&created);
    const std::unique_ptr<sqlite3_changegroup, void (*)(sqlite3_changegroup *)> group(
        created, sqlite3changegroup_delete);
    for (const QByteArray &one : {captured.value(), *seen}) {
        if (code == SQLITE_OK)
            code = sqlite3changegroup_add(created, static_cast<int>(one.size()),
                                          const_cast<char *>(one.constData()));
    }
    int size = 0;
    void *bytes = nullptr;
    if (code == SQLITE_OK)
        code = sqlite3changegroup_output(created, &size, &bytes);
    const QByteArray joined(static_cast<const char *>(bytes), size);
    sqlite3_free(bytes);
    if (code != SQLITE_OK)
        return sqlite::error(code, QStringLiteral("Cannot tell what was changed"));
    return joined;
}

void Replica::transactionBegan(sqlite::Database &, bool isCaptured)
{
    if (isTakingIn)
        return;
    isWatching = true;
    const bool hasMoreToTell = hasForeignWrites();
    usesCaptured = isCaptured && !hasMoreToTell;
    if (!usesCaptured)
        startSession();
    // A part of this commit, before anything else touches those rows.
    if (hasMoreToTell && session)
        foreignwrites::show(database, model, *session);
}

void Replica::captureEnds()
{
    if (isWatching && !session)
        startSession();
}

void Replica::transactionEnded()
{
    session.reset();
    isSessionMissing = false;
    isWatching = false;
    if (database.isAutocommit() && pending) {
        // Whether it was committed is known to the store alone.
        const bool isCommitted = lastOutgoing() == pending->dot.number;
        if (isCommitted) {
            own = pending->dot;
            clock = pending->clock;
            known = std::move(pending->known);
            toldOf = held;
            unsettled.merge(pending->unsettled);
        }
    }
    pending.reset();
    kept.clear();
}

qint64 Replica::nextTime() const
{
    return std::max(wallTime(), clock + 1);
}

/// Whoever writes a value after having seen another one wins against it, however far ahead the clock of that
/// one was.
qint64 Replica::timeBeyond(RowLedger &ledger, const std::vector<RowDelta> &deltas, qint64 time) const
{
    for (const RowDelta &delta : deltas) {
        const RowState &state = ledger.row(delta.key).state;
        if (delta.base.time > 0) {
            time = std::max(time, state.base.time + 1);
            for (const auto &[column, stamp] : state.cells)
                time = std::max(time, stamp.time + 1);
        }
        for (const auto &[column, cell] : delta.cells)
            time = std::max(time, state.stampOf(column).time + 1);
    }
    return time;
}

OptionalError Replica::willCommit(sqlite::Database &, const Result<QByteArray> &captured)
{
    if (!isWatching)
        return std::nullopt;
    const auto change = netChange(captured);
    if (!change)
        return change.error();
    const QByteArray &changeset = change.value();
    if (changeset.isEmpty() && !pending)
        return std::nullopt;
    if (!pending) {
        pending = Pending{{own.device, own.number + 1}, nextTime(), known, {}};
        pending->known.add(own.device, pending->dot.number);
    }
    ChangeFile file = fileOf(changeset, pending->clock, pending->dot);
    std::vector<RowDelta> deltas;
    if (!readChangeset(changeset, file.tables, model, {file.time, own.device}, file.dot, file.seen, deltas))
        return Error{QStringLiteral("replication"), 0, QStringLiteral("Cannot read what was changed")};
    file.touched = touchedBy(deltas);
    file.addTouched(model, deltas);
    file.unseen = items.unseenIn(deltas, own.device);
    RowLedger ledger(database);
    file.time = timeBeyond(ledger, deltas, file.time);
    for (RowDelta &delta : deltas) {
        if (delta.base.time > 0)
            delta.base.time = file.time;
        for (auto &[column, cell] : delta.cells)
            cell.stamp.time = file.time;
    }
    if (auto error = writeBooks(ledger, deltas))
        return error;
    untold = 0;
    return addOutgoing(file);
}

bool Replica::hasForeignWrites() const
{
    return foreignwrites::isAnyThere(database);
}

OptionalError Replica::saveForeignWrites()
{
    if (!hasForeignWrites())
        return std::nullopt;
    // Any commit tells of them, even one of nothing.
    const auto changes = context.changeRows(
        [this](sqlite::Database &, const RowNumbering &) -> Result<std::vector<AppliedChange>> {
            if (hasForeignWrites())
                return bookFailure(database);
            return std::vector<AppliedChange>();
        });
    return changes ? OptionalError() : OptionalError(changes.error());
}

bool Replica::owesAcknowledgement() const
{
    constexpr int most = 50;
    const bool isRemoved = removedAt > 0 && removedAt >= own.number;
    return isRemoved || held != toldOf || untold >= most ||
           (untold > 0 && wallMilliseconds() >= untoldSince + millisecondsADay);
}

OptionalError Replica::acknowledge()
{
    return saveNothing({});
}

OptionalError Replica::remove(const DeviceId &device)
{
    if (device == own.device)
        return Error{QStringLiteral("replication"), 0, QStringLiteral("This computer cannot be removed")};
    // A former device of this computer can have saved nothing.
    VersionVector removed;
    removed.add(device, std::max(qint64(1), known.of(device)));
    if (!isFree())
        return Error{QStringLiteral("replication"), 0,
                     QStringLiteral("Your records are being changed. Please try again")};
    return saveNothing(removed);
}

/// A save that changes no row.
OptionalError Replica::saveNothing(const VersionVector &removed)
{
    const Dot dot{own.device, own.number + 1};
    ChangeFile file = fileOf({}, nextTime(), dot);
    file.removed = removed;
    VersionVector seen = known;
    seen.add(dot.device, dot.number);
    if (auto error = database.execute("BEGIN IMMEDIATE"))
        return error;
    const int formerlyUntold = std::exchange(untold, 0);
    OptionalError error = addOutgoing(file);
    if (!error)
        error = noteRemoved(removed);
    if (!error)
        error = writeOwn(dot.number, file.time, seen);
    if (!error)
        error = database.execute("COMMIT");
    if (error) {
        untold = formerlyUntold;
        if (!database.isAutocommit())
            database.rollBack();
        return error;
    }
    own = dot;
    clock = file.time;
    known = seen;
    toldOf = held;
    return std::nullopt;
}

/// With a save that tells of what this device has.
OptionalError Replica::noteHoldings(const std::optional<QStringList> &holdings)
{
    sqlite::Statement statement =
        database.prepare("UPDATE ObjectStoreReplicas SET holdings = ? WHERE machine IS NOT NULL");
    return bookResult(database, statement.bind(textOfList(holdings)).run());
}

TableColumns Replica::columnsOfTables()
{
    if (!columns.empty())
        return columns;
    const auto add = [this](const QByteArray &table) {
        sqlite::Statement statement = database.prepare("PRAGMA table_info(\"" + table + "\")");
        while (statement.step())
            columns[table].push_back(statement.text(1).toUtf8());
    };
    for (const EntityDescription &entity : model.entities()) {
        if (entity.isDerived())
            continue;
        add(entity.table());
        for (const RelationshipDescription &one : entity.relationships()) {
            if (one.cardinality == Cardinality::ToManyOwningJoin)
                add(model.joinTable(entity, one).table);
        }
    }
    return columns;
}

/// The values stand in their tables already; the books follow.
OptionalError Replica::writeBooks(RowLedger &ledger, const std::vector<RowDelta> &deltas)
{
    for (const RowDelta &delta : deltas) {
        const RowKey &key = delta.key;
        ledger.join(delta);
        if (!delta.deletions.empty()) {
            for (const auto &[column, value] : delta.formerValues) {
                // A name that waited for its row says more than the empty column.
                if (!ledger.row(key).parked.contains(column))
                    ledger.park(key, column, value);
            }
            continue;
        }
        if (delta.base.time > 0) {
            ledger.unparkAll(key);
            pending->unsettled.insert(key);
        }
        for (const auto &[column, cell] : delta.cells)
            ledger.unpark(key, column);
        for (const auto &[column, value] : delta.lostReferences)
            ledger.park(key, column, value);
    }
    if (!ledger.write())
        return bookFailure(database);
    // Only those for which something waits are looked at again.
    std::erase_if(pending->unsettled,
                  [&ledger](const RowKey &key) { return ledger.placesOf(key.id).empty(); });
    return std::nullopt;
}

/// Who changes a detail of a record, or what is linked to it, means the record.
std::vector<RowKey> Replica::touchedBy(const std::vector<RowDelta> &deltas)
{
    std::set<RowKey> touched = kept;
    std::set<RowKey> deleted;
    for (const RowDelta &delta : deltas) {
        if (!delta.deletions.empty())
            deleted.insert(delta.key);
        const EntityDescription *entity = model.entityOfTable(delta.key.table.toStdString());
        if (entity->table() != delta.key.table) {
            touched.insert({entity->table(), delta.key.id.section(u'/', 0, 0)});
            continue;
        }
        if (!delta.deletions.empty() || delta.events.isEmpty())
            continue;
        for (const RelationshipDescription &one : entity->relationships()) {
            const EntityDescription &target = model.destinationOf(one);
            const RelationshipDescription *inverse = target.relationship(one.inverse);
            if (one.cardinality != Cardinality::ToOne || inverse->deleteRule != DeleteRule::Cascade)
                continue;
            const QByteArray column(one.name.data(), static_cast<qsizetype>(one.name.size()));
            sqlite::Statement owner = database.prepare("SELECT \"" + column + "\" FROM \"" + entity->table() +
                                                       "\" WHERE \"id\" = ?");
            if (owner.bind(delta.key.id).step() && !owner.isNull(0))
                touched.insert({target.table(), owner.text(0)});
        }
    }
    std::vector<RowKey> list;
    std::ranges::set_difference(touched, deleted, std::back_inserter(list));
    return list;
}

OptionalError Replica::addOutgoing(const ChangeFile &file)
{
    sqlite::Statement added =
        database.prepare("INSERT OR REPLACE INTO ObjectStoreOutgoing (number, bytes) VALUES (?, ?)");
    if (!added.bind(file.dot.number).bindBlob(file.toBytes()).run())
        return bookFailure(database);
    return file.holdings == toldOf ? OptionalError() : noteHoldings(file.holdings);
}

ChangeFile Replica::fileOf(const QByteArray &changeset, qint64 time, const Dot &dot)
{
    ChangeFile file{model.version(), dot, time, wallMilliseconds(), known, name, {}, changeset};
    file.holdings = held;
    for (const auto &[table, list] : columnsOfTables()) {
        if (changeset.contains(table))
            file.tables[table] = list;
    }
    return file;
}

} // namespace replication
