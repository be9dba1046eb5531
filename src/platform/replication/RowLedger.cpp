#include "replication/RowLedger.h"

#include <sqlite3.h>

#include <algorithm>

namespace replication {

namespace {

/// An empty text, too, is one.
QString boundText(const QByteArray &text)
{
    return text.isEmpty() ? QStringLiteral("") : QString::fromUtf8(text);
}

} // namespace

OptionalError RowLedger::createTables(sqlite::Database &database)
{
    return database.execute(
        "CREATE TABLE IF NOT EXISTS ObjectStoreRowStates (tbl TEXT NOT NULL, id TEXT NOT NULL, stamp INTEGER "
        "NOT "
        "NULL, device TEXT NOT NULL, events TEXT NOT NULL, buried TEXT, deletions TEXT, PRIMARY KEY (tbl, "
        "id)) "
        "WITHOUT ROWID;"
        "CREATE TABLE IF NOT EXISTS ObjectStoreCellStamps (tbl TEXT NOT NULL, id TEXT NOT NULL, col TEXT NOT "
        "NULL, stamp INTEGER NOT NULL, device TEXT NOT NULL, PRIMARY KEY (tbl, id, col)) WITHOUT ROWID;"
        "CREATE TABLE IF NOT EXISTS ObjectStoreParked (tbl TEXT NOT NULL, id TEXT NOT NULL, col TEXT NOT "
        "NULL, "
        "value, PRIMARY KEY (tbl, id, col)) WITHOUT ROWID;"
        "CREATE INDEX IF NOT EXISTS ObjectStoreParked_value ON ObjectStoreParked (value);");
}

OptionalError RowLedger::addMissing(sqlite::Database &database, const QByteArray &table, const QByteArray &id,
                                    const Stamp &stamp, const Dot &dot)
{
    VersionVector events;
    events.add(dot.device, dot.number);
    sqlite::Statement statement = database.prepare(
        "INSERT OR IGNORE INTO ObjectStoreRowStates (tbl, id, stamp, device, events) SELECT ?, " + id +
        ", ?, ?, ? FROM \"" + table + "\"");
    statement.bind(QString::fromUtf8(table)).bind(stamp.time);
    statement.bind(QString::fromUtf8(stamp.device)).bind(QString::fromUtf8(events.text()));
    return statement.run() ? std::nullopt
                           : OptionalError(database.lastError(QStringLiteral("Cannot list the rows")));
}

RowLedger::Row &RowLedger::row(const RowKey &key)
{
    const auto [place, isUnknown] = rows.try_emplace(key);
    Row &row = place->second;
    if (!isUnknown)
        return row;
    const QString table = QString::fromUtf8(key.table);
    sqlite::Statement state = database.prepare("SELECT stamp, device, events, buried, deletions FROM "
                                               "ObjectStoreRowStates WHERE tbl = ? AND id = ?");
    state.bind(table).bind(key.id);
    row.isNew = !state.step();
    if (!row.isNew) {
        row.state.base = {state.integer(0), state.text(1).toUtf8()};
        row.state.events = VersionVector::fromText(state.text(2).toUtf8());
        row.state.buried = VersionVector::fromText(state.text(3).toUtf8());
        row.state.deletions = dotsOfText(state.text(4).toUtf8());
        sqlite::Statement cells =
            database.prepare("SELECT col, stamp, device FROM ObjectStoreCellStamps WHERE tbl = ? AND id = ?");
        cells.bind(table).bind(key.id);
        while (cells.step())
            row.state.cells[cells.text(0).toUtf8()] = {cells.integer(1), cells.text(2).toUtf8()};
    }
    sqlite::Statement values =
        database.prepare("SELECT col, value FROM ObjectStoreParked WHERE tbl = ? AND id = ?");
    values.bind(table).bind(key.id);
    while (values.step())
        row.parked[values.text(0).toUtf8()] = copied(values.raw(1));
    return row;
}

std::vector<QByteArray> RowLedger::join(const RowDelta &delta)
{
    Row &known = row(delta.key);
    known.isStateChanged = true;
    RowState &state = known.state;
    state.events.add(delta.events);
    state.buried.add(delta.buried);
    state.deletions.insert(delta.deletions.begin(), delta.deletions.end());
    std::vector<QByteArray> winners;
    for (const auto &[column, cell] : delta.cells) {
        if (cell.stamp > state.stampOf(column))
            winners.push_back(column);
    }
    if (delta.base > state.base) {
        state.base = delta.base;
        std::erase_if(state.cells, [&](const auto &cell) { return cell.second < delta.base; });
    }
    for (const QByteArray &column : winners) {
        const Stamp &stamp = delta.cells.at(column).stamp;
        if (stamp != state.base)
            state.cells[column] = stamp;
    }
    return winners;
}

void RowLedger::park(const RowKey &key, const QByteArray &column, const RawValue &value)
{
    Row &known = row(key);
    known.parked[column] = value;
    known.isParkedChanged = true;
}

void RowLedger::unpark(const RowKey &key, const QByteArray &column)
{
    Row &known = row(key);
    if (known.parked.erase(column) > 0)
        known.isParkedChanged = true;
}

void RowLedger::unparkAll(const RowKey &key)
{
    Row &known = row(key);
    known.isParkedChanged = known.isParkedChanged || !known.parked.empty();
    known.parked.clear();
}

bool RowLedger::writeParked(const RowKey &key)
{
    Row &known = row(key);
    if (!std::exchange(known.isParkedChanged, false))
        return true;
    const QString table = QString::fromUtf8(key.table);
    sqlite::Statement removal = database.prepare("DELETE FROM ObjectStoreParked WHERE tbl = ? AND id = ?");
    if (!removal.bind(table).bind(key.id).run())
        return false;
    sqlite::Statement added = database.prepare("INSERT INTO ObjectStoreParked VALUES (?, ?, ?, ?)");
    return std::ranges::all_of(known.parked, [&](const auto &one) {
        added.reset();
        return added.bind(table)
            .bind(key.id)
            .bind(QString::fromUtf8(one.first))
            .bindRaw(one.second.get())
            .run();
    });
}

bool RowLedger::writeState(const RowKey &key, const Row &row)
{
    const RowState &state = row.state;
    const QString table = QString::fromUtf8(key.table);
    const auto textOrNothing = [](const QByteArray &text) {
        return text.isEmpty() ? Value() : Value(QString::fromUtf8(text));
    };
    sqlite::Statement statement =
        database.prepare("INSERT OR REPLACE INTO ObjectStoreRowStates VALUES (?, ?, ?, ?, ?, ?, ?)");
    statement.bind(table).bind(key.id).bind(state.base.time);
    statement.bind(boundText(state.base.device)).bind(boundText(state.events.text()));
    statement.bind(textOrNothing(state.buried.text())).bind(textOrNothing(textOf(state.deletions)));
    if (!statement.run())
        return false;
    if (!row.isNew) {
        // Those that a save of the whole row has made pointless.
        sqlite::Statement removal = database.prepare(
            "DELETE FROM ObjectStoreCellStamps WHERE tbl = ? AND id = ? AND (stamp, device) <= (?, ?)");
        removal.bind(table).bind(key.id).bind(state.base.time);
        if (!removal.bind(boundText(state.base.device)).run())
            return false;
    }
    sqlite::Statement added =
        database.prepare("INSERT OR REPLACE INTO ObjectStoreCellStamps VALUES (?, ?, ?, ?, ?)");
    return std::ranges::all_of(state.cells, [&](const auto &cell) {
        added.reset();
        added.bind(table).bind(key.id).bind(QString::fromUtf8(cell.first)).bind(cell.second.time);
        return added.bind(boundText(cell.second.device)).run();
    });
}

bool RowLedger::write()
{
    return std::ranges::all_of(rows, [this](auto &one) {
        auto &[key, row] = one;
        if (row.isStateChanged && !writeState(key, row))
            return false;
        row.isNew = row.isNew && !row.isStateChanged;
        row.isStateChanged = false;
        return writeParked(key);
    });
}

std::vector<std::pair<RowKey, QByteArray>> RowLedger::placesOf(const QString &id)
{
    std::vector<std::pair<RowKey, QByteArray>> places;
    sqlite::Statement found = database.prepare("SELECT tbl, id, col FROM ObjectStoreParked WHERE value = ?");
    found.bind(id);
    while (found.step())
        places.push_back({{found.text(0).toUtf8(), found.text(1)}, found.text(2).toUtf8()});
    return places;
}

} // namespace replication
