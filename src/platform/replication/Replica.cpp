#include "replication/Replica.h"

#include "foundation/Clock.h"
#include "replication/RowMerge.h"

#include <QRandomGenerator>
#include <QScopedValueRollback>

#include <sqlite3.h>

#include <algorithm>
#include <array>

namespace replication {

namespace {

DeviceId newDevice()
{
    const auto random = static_cast<qulonglong>(QRandomGenerator::system()->generate64());
    return QByteArray::number(random, 16).rightJustified(16, '0');
}

Error failureIn(const sqlite::Database &database)
{
    return database.lastError(QStringLiteral("Cannot keep the books for other devices"));
}

OptionalError ran(const sqlite::Database &database, bool isDone)
{
    return isDone ? std::nullopt : OptionalError(failureIn(database));
}

const EntityDescription *entityOf(const ManagedObjectModel &model, const RowKey &key)
{
    return model.entityOfTable({key.table.constData(), static_cast<size_t>(key.table.size())});
}

/// Milliseconds of the wall clock, with room for a count below them.
constexpr int countBits = 16;

qint64 wallTime()
{
    return static_cast<qint64>(Clock::now().unixSeconds() * 1000.0) << countBits;
}

Date dateOfTime(qint64 time)
{
    return Date::fromUnixSeconds(double(time >> countBits) / 1000.0);
}

} // namespace

Replica::Replica(ManagedObjectContext &replicated, QString deviceName)
    : context(replicated)
    , database(replicated.connection())
    , model(replicated.model())
    , name(std::move(deviceName))
    , session(nullptr, sqlite3session_delete)
{}

Replica::~Replica()
{
    context.setCommitLog(nullptr);
}

Result<std::unique_ptr<Replica>> Replica::open(ManagedObjectContext &context, const QString &deviceName,
                                               const QByteArray &machine)
{
    std::unique_ptr<Replica> replica(new Replica(context, deviceName));
    if (auto error = replica->load(machine))
        return *error;
    context.setCommitLog(replica.get());
    return replica;
}

OptionalError Replica::load(const QByteArray &machine)
{
    if (auto error = RowLedger::createTables(database))
        return error;
    if (auto error = database.execute(
            "CREATE TABLE IF NOT EXISTS ObjectStoreReplicas (device TEXT PRIMARY "
            "KEY NOT NULL, name TEXT, number "
            "INTEGER NOT NULL DEFAULT 0, time INTEGER NOT NULL DEFAULT 0, seen "
            "TEXT NOT NULL DEFAULT '', machine "
            "TEXT) WITHOUT ROWID;"
            "CREATE TABLE IF NOT EXISTS ObjectStoreOutgoing (number INTEGER "
            "PRIMARY KEY, bytes BLOB NOT NULL, "
            "isSent INTEGER NOT NULL DEFAULT 0);"
            "CREATE TABLE IF NOT EXISTS ObjectStoreWitnessed (item TEXT PRIMARY KEY NOT NULL) WITHOUT ROWID;"
            "CREATE INDEX IF NOT EXISTS ObjectStoreOutgoing_waiting ON "
            "ObjectStoreOutgoing (number) WHERE isSent "
            "= 0;"))
        return error;
    sqlite::Statement all = database.prepare("SELECT device, number, time, machine FROM ObjectStoreReplicas");
    while (all.step()) {
        const DeviceId device = all.text(0).toUtf8();
        known.add(device, all.integer(1));
        clock = std::max(clock, all.integer(2));
        if (!all.isNull(3) && all.text(3).toUtf8() == machine)
            own = {device, all.integer(1)};
    }
    all.reset();
    // Names that wait for rows that have come since, if the program was ended in between.
    sqlite::Statement waiting =
        database.prepare("SELECT DISTINCT tbl, id FROM ObjectStoreParked LIMIT 10000");
    while (waiting.step())
        unsettled.insert({waiting.text(0).toUtf8(), waiting.text(1)});
    waiting.reset();
    return own.device.isEmpty() ? startAs(machine) : OptionalError();
}

OptionalError Replica::startAs(const QByteArray &machine)
{
    if (auto error = database.execute("ATTACH ':memory:' AS emptyStore; BEGIN IMMEDIATE"))
        return error;
    own = {newDevice(), 1};
    OptionalError error =
        ran(database, database.prepare("UPDATE ObjectStoreReplicas SET machine = NULL").run() &&
                          // What a former device did not send yet is in the rows, and goes with them.
                          database.prepare("DELETE FROM ObjectStoreOutgoing").run());
    // A stamp before all others: whoever has changed a row since wins against a mere copy.
    const Stamp stamp{1, own.device};
    for (const EntityDescription &entity : model.entities()) {
        if (entity.isDerived() || error)
            continue;
        error = RowLedger::addMissing(database, entity.table(), "\"id\"", stamp, own);
        for (const RelationshipDescription &one : entity.relationships()) {
            if (!error && one.cardinality == Cardinality::ToManyOwningJoin)
                error = RowLedger::addMissing(database, model.joinTable(entity, one).table,
                                              "source || '/' || target", stamp, own);
        }
    }
    if (!error) {
        sqlite::Statement added =
            database.prepare("INSERT INTO ObjectStoreReplicas (device, machine) VALUES (?, ?)");
        error =
            ran(database, added.bind(QString::fromUtf8(own.device)).bind(QString::fromUtf8(machine)).run());
    }
    if (!error)
        error = addPresentRows(stamp);
    known.add(own.device, own.number);
    clock = std::max(clock, stamp.time);
    if (!error)
        error = writeOwn();
    if (!error)
        error = database.execute("COMMIT");
    if (error && !database.isAutocommit())
        database.rollBack();
    // Without it nothing is lost but some memory.
    database.execute("DETACH emptyStore").ignore();
    return error;
}

/// The rows that are there count as the first save; without any there is none.
OptionalError Replica::addPresentRows(const Stamp &stamp)
{
    // What another database of the same tables lacks is what this one has.
    QByteArray sql;
    for (const auto &[table, names] : columnsOfTables()) {
        sqlite::Statement definition =
            database.prepare("SELECT sql FROM main.sqlite_master WHERE type = 'table' AND name = ?");
        if (definition.bind(QString::fromUtf8(table)).step())
            sql += definition.text(0).toUtf8().replace(0, int(qstrlen("CREATE TABLE")),
                                                       "CREATE TABLE emptyStore.") +
                   ';';
    }
    if (auto error = database.execute(sql))
        return error;
    transactionBegan(database);
    for (const auto &[table, names] : columnsOfTables())
        sqlite3session_diff(session.get(), "emptyStore", table.constData(), nullptr);
    auto changeset = capturedChangeset();
    session.reset();
    if (!changeset)
        return changeset.error();
    if (changeset->isEmpty())
        own.number = 0;
    else if (auto error = addOutgoing(fileOf(*changeset, stamp.time, own)))
        return error;
    return std::nullopt;
}

Result<QByteArray> Replica::capturedChangeset() const
{
    int size = 0;
    void *bytes = nullptr;
    const int code = sqlite3session_changeset(session.get(), &size, &bytes);
    const QByteArray changeset(static_cast<const char *>(bytes), size);
    sqlite3_free(bytes);
    if (code != SQLITE_OK)
        return sqlite::error(code, QStringLiteral("Cannot tell what was changed"));
    return changeset;
}

OptionalError Replica::writeOwn(qint64 number, qint64 time, const VersionVector &seen) const
{
    sqlite::Statement statement = database.prepare(
        "UPDATE ObjectStoreReplicas SET name = ?, number = ?, time = ?, seen = ? WHERE device = ?");
    statement.bind(name).bind(number).bind(time).bind(QString::fromUtf8(seen.text()));
    return ran(database, statement.bind(QString::fromUtf8(own.device)).run());
}

OptionalError Replica::becomeAnother()
{
    sqlite::Statement machineOfOwn =
        database.prepare("SELECT machine FROM ObjectStoreReplicas WHERE device = ?");
    const bool isThere = machineOfOwn.bind(QString::fromUtf8(own.device)).step();
    const QByteArray machine = isThere ? machineOfOwn.text(0).toUtf8() : QByteArray();
    machineOfOwn.reset();
    return startAs(machine);
}

std::vector<Device> Replica::devices() const
{
    std::vector<Device> list;
    sqlite::Statement all =
        database.prepare("SELECT device, name, number, time, seen FROM ObjectStoreReplicas ORDER BY device");
    while (all.step()) {
        Device device{.id = all.text(0).toUtf8(), .name = all.text(1), .lastSave = {}, .seen = {}};
        device.isOwn = device.id == own.device;
        device.number = all.integer(2);
        if (all.integer(3) > 0)
            device.lastSave = dateOfTime(all.integer(3));
        device.seen = device.isOwn ? known : VersionVector::fromText(all.text(4).toUtf8());
        list.push_back(std::move(device));
    }
    return list;
}

std::vector<Replica::Orphan> Replica::orphansOf(const QByteArray &table, const QByteArray &column) const
{
    std::vector<Orphan> orphans;
    sqlite::Statement found = database.prepare(
        "SELECT holder.tbl, holder.id, holder.col, gone.value FROM ObjectStoreParked gone JOIN "
        "ObjectStoreParked "
        "holder ON holder.value = gone.id WHERE gone.tbl = ? AND gone.col = ? AND holder.tbl <> gone.tbl");
    found.bind(QString::fromUtf8(table)).bind(QString::fromUtf8(column));
    while (found.step())
        orphans.push_back({{found.text(0).toUtf8(), found.text(1)}, found.text(2).toUtf8(), found.text(3)});
    return orphans;
}

bool Replica::isMadeElsewhere(const RowKey &key) const
{
    sqlite::Statement state =
        database.prepare("SELECT device FROM ObjectStoreRowStates WHERE tbl = ? AND id = ?");
    state.bind(QString::fromUtf8(key.table)).bind(key.id);
    return state.step() && state.text(0).toUtf8() != own.device;
}

const QSet<QString> &Replica::witnessed()
{
    if (!seenItems) {
        seenItems.emplace();
        sqlite::Statement all = database.prepare("SELECT item FROM ObjectStoreWitnessed");
        while (all.step())
            seenItems->insert(all.text(0));
    }
    return *seenItems;
}

void Replica::witness(const QSet<QString> &items)
{
    const QSet<QString> fresh = QSet<QString>(items).subtract(witnessed());
    if (fresh.isEmpty())
        return;
    // A part of what is under way, if something is.
    const bool isOwn = database.isAutocommit();
    if (isOwn && database.execute("BEGIN IMMEDIATE"))
        return;
    sqlite::Statement added = database.prepare("INSERT OR IGNORE INTO ObjectStoreWitnessed VALUES (?)");
    for (const QString &item : fresh) {
        added.reset();
        added.bind(item).run();
    }
    added.reset();
    if (isOwn && database.execute("COMMIT"))
        database.rollBack();
    seenItems->unite(fresh);
}

// What goes out.

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

OptionalError Replica::markSent(qint64 number)
{
    sqlite::Statement statement =
        database.prepare("UPDATE ObjectStoreOutgoing SET isSent = 1 WHERE number = ?");
    return ran(database, statement.bind(number).run());
}

OptionalError Replica::markUnsent(qint64 number)
{
    sqlite::Statement statement =
        database.prepare("UPDATE ObjectStoreOutgoing SET isSent = 0 WHERE number = ?");
    return ran(database, statement.bind(number).run());
}

void Replica::transactionBegan(sqlite::Database &)
{
    if (isTakingIn)
        return;
    sqlite3_session *started = nullptr;
    if (sqlite3session_create(database.handle(), "main", &started) != SQLITE_OK)
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

void Replica::transactionEnded()
{
    session.reset();
    if (database.isAutocommit() && pending) {
        // Whether it was committed is known to the store alone.
        sqlite::Statement stored =
            database.prepare("SELECT number FROM ObjectStoreReplicas WHERE device = ?");
        const bool isCommitted =
            stored.bind(QString::fromUtf8(own.device)).step() && (stored.integer(0) == pending->dot.number);
        if (isCommitted) {
            own = pending->dot;
            clock = pending->clock;
            known = std::move(pending->known);
            unsettled.merge(pending->unsettled);
        }
    }
    pending.reset();
}

qint64 Replica::nextTime() const
{
    return std::max(wallTime(), clock + 1);
}

OptionalError Replica::willCommit(sqlite::Database &)
{
    if (!session)
        return std::nullopt;
    auto captured = capturedChangeset();
    if (!captured)
        return captured.error();
    const QByteArray &changeset = captured.value();
    if (changeset.isEmpty() && !pending)
        return std::nullopt;
    if (!pending) {
        pending = Pending{{own.device, own.number + 1}, nextTime(), known, {}};
        pending->known.add(own.device, pending->dot.number);
    }
    ChangeFile file = fileOf(changeset, pending->clock, pending->dot);
    auto deltas = file.deltas(model);
    if (!deltas)
        return Error{QStringLiteral("replication"), 0, QStringLiteral("Cannot read what was changed")};
    file.touched = touchedBy(*deltas);
    deltas = file.deltas(model);
    if (auto error = writeBooks(*deltas))
        return error;
    if (auto error = addOutgoing(file))
        return error;
    return writeOwn(pending->dot.number, pending->clock, pending->known);
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
OptionalError Replica::writeBooks(const std::vector<RowDelta> &deltas)
{
    RowLedger ledger(database);
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
        return failureIn(database);
    // Only those for which something waits are looked at again.
    std::erase_if(pending->unsettled,
                  [&ledger](const RowKey &key) { return ledger.placesOf(key.id).empty(); });
    return std::nullopt;
}

/// Who changes a detail of a record, or what is linked to it, means the record.
std::vector<RowKey> Replica::touchedBy(const std::vector<RowDelta> &deltas)
{
    std::set<RowKey> touched;
    std::set<RowKey> deleted;
    for (const RowDelta &delta : deltas) {
        if (!delta.deletions.empty())
            deleted.insert(delta.key);
        const EntityDescription *entity = entityOf(model, delta.key);
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
    return ran(database, added.bind(file.dot.number).bindBlob(file.toBytes()).run());
}

ChangeFile Replica::fileOf(const QByteArray &changeset, qint64 time, const Dot &dot)
{
    ChangeFile file{model.version(), dot, time, known, name, {}, changeset};
    for (const auto &[table, list] : columnsOfTables()) {
        if (changeset.contains(table))
            file.tables[table] = list;
    }
    return file;
}

// What comes in.

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
    return ran(database, statement.bind(file.time).bind(QString::fromUtf8(its.text())).run());
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
                            return failureIn(database);
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
