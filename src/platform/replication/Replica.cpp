#include "replication/Replica.h"

#include "replication/ForeignWrites.h"
#include "replication/FormerSaves.h"
#include "replication/ReplicaBooks.h"
#include "replication/RowLedger.h"

#include <QRandomGenerator>

#include <sqlite3.h>

#include <algorithm>

// Which device a replica is, and what it knows of the others.

namespace replication {

static DeviceId newDevice()
{
    const auto random = static_cast<qulonglong>(QRandomGenerator::system()->generate64());
    return QByteArray::number(random, 16).rightJustified(16, '0');
}

Replica::Replica(ManagedObjectContext &replicated, QString deviceName)
    : context(replicated)
    , database(replicated.connection())
    , model(replicated.model())
    , name(std::move(deviceName))
    , session(nullptr, sqlite3session_delete)
    , items(replicated.connection())
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

OptionalError Replica::keepForLater(ManagedObjectContext &context)
{
    return foreignwrites::keepOwn(context.connection(), context.model());
}

OptionalError Replica::load(const QByteArray &machine)
{
    if (auto error = RowLedger::createTables(database))
        return error;
    if (auto error = OutsideItems::createTables(database))
        return error;
    if (auto error = database.execute("CREATE TABLE IF NOT EXISTS ObjectStoreReplicas (device TEXT PRIMARY "
                                      "KEY NOT NULL, name TEXT, number "
                                      "INTEGER NOT NULL DEFAULT 0, time INTEGER NOT NULL DEFAULT 0, seen "
                                      "TEXT NOT NULL DEFAULT '', machine "
                                      "TEXT) WITHOUT ROWID;"
                                      "CREATE TABLE IF NOT EXISTS ObjectStoreOutgoing (number INTEGER "
                                      "PRIMARY KEY, bytes BLOB NOT NULL, "
                                      "isSent INTEGER NOT NULL DEFAULT 0);"
                                      // It cost each save a page; there are few saves at a time.
                                      "DROP INDEX IF EXISTS ObjectStoreOutgoing_waiting;"))
        return error;
    for (const char *column : {"wall", "heard", "untold", "untoldSince", "cleared", "removed"}) {
        const QByteArray count =
            "SELECT COUNT(*) FROM pragma_table_info('ObjectStoreReplicas') WHERE name = '";
        if (database.queryInteger(count + column + '\'') > 0)
            continue;
        if (auto error = database.execute(QByteArray("ALTER TABLE ObjectStoreReplicas ADD COLUMN ") + column +
                                          " INTEGER NOT NULL DEFAULT 0"))
            return error;
    }
    if (database.queryInteger(
            "SELECT COUNT(*) FROM pragma_table_info('ObjectStoreReplicas') WHERE name = 'holdings'") == 0) {
        if (auto error = database.execute("ALTER TABLE ObjectStoreReplicas ADD COLUMN holdings TEXT"))
            return error;
    }
    sqlite::Statement all = database.prepare("SELECT device, number, time, machine, untold, untoldSince, "
                                             "cleared, removed, holdings FROM ObjectStoreReplicas");
    while (all.step()) {
        const DeviceId device = all.text(0).toUtf8();
        known.add(device, all.integer(1));
        clock = std::max(clock, believed(all.integer(2)));
        if (all.isNull(3) || all.text(3).toUtf8() != machine)
            continue;
        own = {device, std::max(all.integer(1), lastOutgoing())};
        known.add(device, own.number);
        // A save since has told them.
        untold = own.number > all.integer(1) ? 0 : static_cast<int>(all.integer(4));
        untoldSince = all.integer(5);
        clearedUpTo = all.integer(6);
        removedAt = all.integer(7);
        toldOf = held = listOfText(all.text(8));
    }
    all.reset();
    if (auto error = foreignwrites::prepare(database, model))
        return error;
    // Names that wait for rows that have come since, if the program was ended in between.
    sqlite::Statement waiting =
        database.prepare("SELECT DISTINCT tbl, id FROM ObjectStoreParked LIMIT 10000");
    while (waiting.step())
        unsettled.insert({waiting.text(0).toUtf8(), waiting.text(1)});
    waiting.reset();
    return own.device.isEmpty() ? startAs(machine) : OptionalError();
}

/// The number of a save stands in its own row only; that of the device follows when something else is
/// written there.
qint64 Replica::lastOutgoing() const
{
    return database.queryInteger("SELECT MAX(number) FROM ObjectStoreOutgoing");
}

OptionalError Replica::startAs(const QByteArray &machine, std::optional<qint64> lastOut)
{
    if (auto error = database.execute("ATTACH ':memory:' AS emptyStore"))
        return error;
    const Identity former{own, clock, known, removedAt, clearedUpTo, toldOf};
    OptionalError error = database.execute("BEGIN IMMEDIATE");
    const bool hasBegun = !error;
    if (!error) {
        FormerSaves saves(database, lastOut);
        error = writeStart(machine, saves);
    }
    if (!error)
        error = database.execute("COMMIT");
    if (error) {
        if (hasBegun && !database.isAutocommit())
            database.rollBack();
        own = former.own;
        clock = former.clock;
        known = former.known;
        removedAt = former.removedAt;
        clearedUpTo = former.clearedUpTo;
        toldOf = former.toldOf;
    }
    // Without it nothing is lost but some memory.
    database.execute("DETACH emptyStore").ignore();
    return error;
}

/// Into the open transaction.
OptionalError Replica::writeStart(const QByteArray &machine, FormerSaves &former)
{
    if (auto error = former.take())
        return error;
    former.lower(known);
    own = {newDevice(), 1};
    clearedUpTo = 0;
    removedAt = 0;
    // Under the new number nobody has heard of it.
    toldOf.reset();
    OptionalError error = foreignwrites::forget(database);
    if (!error)
        error = bookResult(database, database.prepare("UPDATE ObjectStoreReplicas SET machine = NULL").run());
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
        error = bookResult(database,
                           added.bind(QString::fromUtf8(own.device)).bind(QString::fromUtf8(machine)).run());
    }
    if (!error)
        error = hasManyRows() ? standFirstSaveInSnapshot() : addPresentRows(stamp);
    known.add(own.device, own.number);
    clock = std::max(clock, stamp.time);
    if (!error)
        error = addFormerSaves(former);
    return error ? error : writeOwn();
}

/// With their own stamps: what was changed in a row that the others have is newer there, too.
OptionalError Replica::addFormerSaves(FormerSaves &former)
{
    auto saves = former.renamed(own.device, own.number);
    if (!saves)
        return saves.error();
    for (const ChangeFile &file : *saves) {
        if (auto error = addOutgoing(file))
            return error;
        own = file.dot;
        clock = std::max(clock, file.time);
    }
    known.add(own.device, own.number);
    return std::nullopt;
}

/// More than that go into a snapshot rather than into a save.
bool Replica::hasManyRows() const
{
    constexpr int most = 5000;
    return database.prepare("SELECT 1 FROM ObjectStoreRowStates LIMIT 1 OFFSET " + QByteArray::number(most))
        .step();
}

/// The first save counts as cleared, so that a snapshot is made which stands for it.
OptionalError Replica::standFirstSaveInSnapshot()
{
    sqlite::Statement statement =
        database.prepare("UPDATE ObjectStoreReplicas SET cleared = ? WHERE device = ?");
    clearedUpTo = own.number;
    return bookResult(database, statement.bind(clearedUpTo).bind(QString::fromUtf8(own.device)).run());
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
    startSession();
    for (const auto &[table, names] : columnsOfTables())
        sqlite3session_diff(session.get(), "emptyStore", table.constData(), nullptr);
    auto changeset = changesetOfSession();
    session.reset();
    if (!changeset)
        return changeset.error();
    if (changeset->isEmpty())
        own.number = 0;
    else if (auto error = addOutgoing(fileOf(*changeset, stamp.time, own)))
        return error;
    return std::nullopt;
}

OptionalError Replica::writeOwn(qint64 number, qint64 time, const VersionVector &seen) const
{
    sqlite::Statement statement = database.prepare(
        "UPDATE ObjectStoreReplicas SET name = ?, number = ?, time = ?, seen = ?, wall = ?, untold = ?, "
        "untoldSince = ? WHERE device = ?");
    statement.bind(name).bind(number).bind(time).bind(QString::fromUtf8(seen.text()));
    statement.bind(wallMilliseconds()).bind(qint64(untold)).bind(untoldSince);
    return bookResult(database, statement.bind(QString::fromUtf8(own.device)).run());
}

OptionalError Replica::becomeAnother(std::optional<qint64> lastOut)
{
    sqlite::Statement machineOfOwn =
        database.prepare("SELECT machine FROM ObjectStoreReplicas WHERE device = ?");
    const bool isThere = machineOfOwn.bind(QString::fromUtf8(own.device)).step();
    const QByteArray machine = isThere ? machineOfOwn.text(0).toUtf8() : QByteArray();
    machineOfOwn.reset();
    return startAs(machine, lastOut);
}

std::vector<Device> Replica::devices() const
{
    std::vector<Device> list;
    sqlite::Statement all = database.prepare("SELECT device, name, number, time, seen, wall, heard, removed, "
                                             "holdings FROM ObjectStoreReplicas ORDER BY device");
    while (all.step()) {
        Device device{
            .id = all.text(0).toUtf8(), .name = all.text(1), .lastSave = {}, .heard = {}, .seen = {}};
        device.isOwn = device.id == own.device;
        device.number = all.integer(2);
        const qint64 wall = all.integer(5) > 0 ? all.integer(5) : all.integer(3) >> countBits;
        if (wall > 0 && device.number > 0)
            device.lastSave = dateOfMilliseconds(wall);
        if (all.integer(6) > 0)
            device.heard = dateOfMilliseconds(all.integer(6));
        device.isClockAhead = !device.isOwn && wall > wallMilliseconds() + millisecondsADay;
        device.seen = device.isOwn ? known : VersionVector::fromText(all.text(4).toUtf8());
        device.isRemoved = !device.isOwn && all.integer(7) > 0 && all.integer(7) >= device.number;
        device.holdings = listOfText(all.text(8));
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

void Replica::hold(const QStringList &holdings)
{
    held = holdings;
}

} // namespace replication
