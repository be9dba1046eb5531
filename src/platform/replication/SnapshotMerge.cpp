#include "replication/SnapshotMerge.h"

#include "objectstore/SqlText.h"
#include "objectstore/SubstringIndex.h"

#include <algorithm>

namespace replication {

namespace {

/// From so many rows on it is quicker to make an index at once than row by row, or to take it over.
constexpr qint64 manyRows = 5000;

/// Of an answer, as a condition on the table and identifier of another.
const QByteArray isNotKnown = "NOT EXISTS (SELECT 1 FROM temp.KnownToBoth known WHERE known.tbl = ";

std::vector<QByteArray> columnsOf(sqlite::Database &database, const char *schema, const QByteArray &table)
{
    std::vector<QByteArray> columns;
    sqlite::Statement statement =
        database.prepare("PRAGMA " + QByteArray(schema) + ".table_info(" + quoted(table) + ")");
    while (statement.step())
        columns.push_back(statement.text(1).toUtf8());
    return columns;
}

QByteArray listed(const std::vector<QByteArray> &names)
{
    QByteArray list;
    for (const QByteArray &name : names)
        list += (list.isEmpty() ? "" : ", ") + quoted(name);
    return list;
}

} // namespace

SnapshotMerge::SnapshotMerge(sqlite::Database &connection, const ManagedObjectModel &objectModel,
                             RowNumbering numbering, const DeviceId &own)
    : database(connection)
    , model(objectModel)
    , merge(connection, objectModel, std::move(numbering))
{
    merge.keepValuesOf(own);
}

Result<std::vector<AppliedChange>> SnapshotMerge::run()
{
    const bool isBrought = findKnown() && takeOffIndexes() && bringNewRows() && putOnIndexes() &&
                           bringBooks() && setAsideDangling() && mergeKnown();
    if (!isBrought)
        return database.lastError(QStringLiteral("Cannot take in a snapshot"));
    for (const RowKey &key : open)
        merge.settleLater(key);
    auto applied = merge.finish();
    // The books of a damaged one can name rows that it does not have.
    const bool isOfBooks = !open.empty() || !differing.empty();
    if (applied && isOfBooks && database.prepare("PRAGMA main.foreign_key_check").step())
        return Error{QStringLiteral("snapshot"), 0, QStringLiteral("It is damaged")};
    return applied;
}

bool SnapshotMerge::collect(const QByteArray &sql, std::vector<RowKey> &into)
{
    sqlite::Statement rows = database.prepare(sql);
    while (rows.step())
        into.push_back({rows.text(0).toUtf8(), rows.text(1)});
    return rows.isValid();
}

bool SnapshotMerge::findKnown()
{
    if (database.execute(
            "DROP TABLE IF EXISTS temp.KnownToBoth;"
            "CREATE TEMP TABLE KnownToBoth (tbl TEXT NOT NULL, id TEXT NOT NULL, PRIMARY KEY (tbl, id)) "
            "WITHOUT"
            " ROWID;"
            "INSERT INTO temp.KnownToBoth SELECT mine.tbl, mine.id FROM main.ObjectStoreRowStates mine WHERE"
            " EXISTS (SELECT 1 FROM arriving.ObjectStoreRowStates its WHERE its.tbl = mine.tbl AND its.id ="
            " mine.id)"))
        return false;
    // What waits here for rows that come now.
    QByteArray tables;
    for (const EntityDescription &entity : model.entities()) {
        if (!entity.isDerived())
            tables += (tables.isEmpty() ? "'" : ", '") + entity.table() + '\'';
    }
    return collect(
               "SELECT mine.tbl, mine.id FROM temp.KnownToBoth known CROSS JOIN main.ObjectStoreRowStates "
               "mine ON mine.tbl = known.tbl AND mine.id = known.id CROSS JOIN "
               "arriving.ObjectStoreRowStates its ON its.tbl = known.tbl AND its.id = known.id WHERE "
               "(mine.stamp, mine.device, mine.events, mine.buried, mine.deletions) IS NOT (its.stamp, "
               "its.device, its.events, its.buried, its.deletions)",
               differing) &&
           collect("SELECT mine.tbl, mine.id FROM main.ObjectStoreRowStates mine WHERE " + isNotKnown +
                       "mine.tbl AND known.id = mine.id)",
                   onlyHere) &&
           collect("SELECT DISTINCT waiting.tbl, waiting.id FROM main.ObjectStoreParked waiting WHERE EXISTS "
                   "(SELECT 1 FROM arriving.ObjectStoreRowStates its WHERE its.tbl IN (" +
                       tables + ") AND its.id = waiting.value)",
                   open);
}

/// Whether a table with many rows comes of which nothing is known here, not even a row that has gone, and the
/// columns are the same.
bool SnapshotMerge::comesWhole(const QByteArray &table)
{
    const auto [place, isNew] = whole.try_emplace(table, false);
    if (!isNew)
        return place->second;
    sqlite::Statement known = database.prepare("SELECT 1 FROM temp.KnownToBoth WHERE tbl = ? LIMIT 1");
    place->second = database.queryInteger("SELECT COUNT(*) FROM arriving." + quoted(table)) >= manyRows &&
                    columnsOf(database, "main", table) == columnsOf(database, "arriving", table) &&
                    !database.prepare("SELECT 1 FROM main." + quoted(table) + " LIMIT 1").step() &&
                    !known.bind(QString::fromUtf8(table)).step();
    return place->second;
}

/// Where very many rows come, an index is made faster at once than row by row; but one that comes with a
/// whole table stays on it.
bool SnapshotMerge::takeOffIndexes()
{
    QByteArray removal;
    for (const EntityDescription &entity : model.entities()) {
        const QByteArray table = entity.table();
        const auto rowsIn = [&](const char *schema) {
            return database.queryInteger("SELECT COUNT(*) FROM " + QByteArray(schema) + '.' + quoted(table));
        };
        if (entity.isDerived() || rowsIn("arriving") < manyRows + 2 * rowsIn("main"))
            continue;
        sqlite::Statement own = database.prepare(
            "SELECT mine.name, mine.sql FROM main.sqlite_master mine WHERE mine.type = 'index' AND "
            "mine.tbl_name = ?1 AND mine.sql IS NOT NULL AND NOT (?2 AND EXISTS (SELECT 1 FROM "
            "arriving.sqlite_master its WHERE its.type = 'index' AND its.name = mine.name AND its.sql = "
            "mine.sql))");
        own.bind(QString::fromUtf8(table)).bind(Value(comesWhole(table)));
        while (own.step()) {
            removal += "DROP INDEX main." + quoted(own.text(0).toUtf8()) + ';';
            indexes += own.text(1).toUtf8() + ';';
        }
    }
    return !database.execute(removal);
}

bool SnapshotMerge::putOnIndexes()
{
    return !database.execute(std::exchange(indexes, {}));
}

bool SnapshotMerge::bringNewRows()
{
    for (const EntityDescription &entity : model.entities()) {
        if (entity.isDerived())
            continue;
        if (!bringTable(entity.table(), "its.\"id\""))
            return false;
        const auto index = SubstringIndex::of(entity);
        if (index && database.execute(index->startAnew()))
            return false;
        // The search, and what else follows a record, comes to them a little at a time.
        if (entity.followsLinks() &&
            database.execute("INSERT OR IGNORE INTO ObjectStoreElsewhere (entity, id) SELECT '" +
                             entity.table() + "', its.id FROM arriving." + quoted(entity.table()) +
                             " its WHERE " + isNotKnown + '\'' + entity.table() +
                             "' AND known.id = its.id) ORDER BY its.id"))
            return false;
        for (const RelationshipDescription &one : entity.relationships()) {
            if (one.cardinality == Cardinality::ToManyOwningJoin &&
                !bringTable(model.joinTable(entity, one).table, "its.source || '/' || its.target"))
                return false;
        }
    }
    return true;
}

bool SnapshotMerge::bringTable(const QByteArray &table, const QByteArray &key)
{
    if (comesWhole(table))
        return !database.execute("INSERT OR IGNORE INTO main." + quoted(table) + " SELECT * FROM arriving." +
                                 quoted(table));
    std::vector<QByteArray> columns = columnsOf(database, "main", table);
    const std::vector<QByteArray> its = columnsOf(database, "arriving", table);
    std::erase_if(columns,
                  [&its](const QByteArray &name) { return std::ranges::find(its, name) == its.end(); });
    if (columns.empty())
        return true;
    return !database.execute("INSERT OR IGNORE INTO main." + quoted(table) + " (" + listed(columns) +
                             ") SELECT " + listed(columns) + " FROM arriving." + quoted(table) +
                             " its WHERE " + isNotKnown + '\'' + table + "' AND known.id = " + key + ')');
}

bool SnapshotMerge::bringBooks()
{
    const QByteArray ofNew = " its WHERE " + isNotKnown + "its.tbl AND known.id = its.id)";
    // Those that are not alive, or are only with their owner, depend on what was known here of the owner.
    return collect("SELECT its.tbl, its.id FROM arriving.ObjectStoreRowStates" + ofNew +
                       " AND (its.deletions IS NOT NULL OR EXISTS (SELECT 1 FROM arriving.ObjectStoreParked "
                       "parked WHERE parked.tbl = its.tbl AND parked.id = its.id))",
                   open) &&
           bringBook("ObjectStoreRowStates", "tbl, id, stamp, device, events, buried, deletions") &&
           bringBook("ObjectStoreCellStamps", "tbl, id, col, stamp, device") &&
           bringBook("ObjectStoreParked", "tbl, id, col, value");
}

/// What one of the books says of rows that are not known here.
bool SnapshotMerge::bringBook(const QByteArray &book, const QByteArray &columns)
{
    constexpr int few = 1000;
    const bool areFewHere =
        !database.prepare("SELECT 1 FROM main." + book + " LIMIT 1 OFFSET " + QByteArray::number(few)).step();
    if (areFewHere && columnsOf(database, "main", book) == columnsOf(database, "arriving", book))
        return bringWholeBook(book);
    return !database.execute("INSERT INTO main." + book + " (" + columns + ") SELECT " + columns +
                             " FROM arriving." + book + " its WHERE " + isNotKnown +
                             "its.tbl AND known.id = its.id)");
}

/// The few entries that are here step aside, since only an empty table takes over another one as it is.
bool SnapshotMerge::bringWholeBook(const QByteArray &book)
{
    return !database.execute("CREATE TEMP TABLE Aside AS SELECT * FROM main." + book + "; DELETE FROM main." +
                             book + "; INSERT INTO main." + book + " SELECT * FROM arriving." + book +
                             "; DELETE FROM main." + book +
                             " WHERE (tbl, id) IN (SELECT tbl, id FROM temp.KnownToBoth); INSERT INTO main." +
                             book + " SELECT * FROM temp.Aside; DROP TABLE temp.Aside");
}

/// Names of rows that are there, but not here, wait; pairs with them go.
bool SnapshotMerge::setAsideDangling()
{
    for (const EntityDescription &entity : model.entities()) {
        if (entity.isDerived())
            continue;
        for (const RelationshipDescription &one : entity.relationships()) {
            const QByteArray target = quoted(model.destinationOf(one).table());
            if (one.cardinality == Cardinality::ToOne) {
                const QByteArray column = quoted(one.name);
                const QByteArray name(one.name.data(), static_cast<qsizetype>(one.name.size()));
                const QByteArray dangling = " FROM main." + quoted(entity.table()) + " row WHERE row." +
                                            column + " IS NOT NULL AND NOT EXISTS (SELECT 1 FROM main." +
                                            target + " named WHERE named.id = row." + column + ')';
                const size_t before = open.size();
                if (!collect("SELECT '" + entity.table() + "', row.id" + dangling, open))
                    return false;
                if (open.size() > before &&
                    database.execute("INSERT OR IGNORE INTO main.ObjectStoreParked SELECT '" +
                                     entity.table() + "', row.id, '" + name + "', row." + column + dangling +
                                     "; UPDATE main." + quoted(entity.table()) + " SET " + column +
                                     " = NULL WHERE rowid IN (SELECT row.rowid" + dangling + ')'))
                    return false;
            } else if (one.cardinality == Cardinality::ToManyOwningJoin) {
                const QByteArray table = model.joinTable(entity, one).table;
                if (!collect("SELECT '" + table + "', source || '/' || target FROM main." + quoted(table) +
                                 " WHERE source NOT IN (SELECT id FROM main." + quoted(entity.table()) +
                                 ") OR target NOT IN (SELECT id FROM main." + target + ')',
                             open))
                    return false;
            }
        }
    }
    return true;
}

bool SnapshotMerge::mergeKnown()
{
    std::set<QByteArray> indexed;
    for (const RowKey &key : differing) {
        const EntityDescription *entity = model.entityOfTable(key.table.toStdString());
        if (!entity)
            continue;
        const bool isEntity = entity->table() == key.table;
        if (isEntity && indexed.insert(key.table).second &&
            database.execute("CREATE INDEX IF NOT EXISTS arriving." + quoted(key.table + "_arrived") +
                             " ON " + quoted(key.table) + " (id)"))
            return false;
        if (!mergeRow(key))
            return false;
    }
    return true;
}

bool SnapshotMerge::mergeRow(const RowKey &key)
{
    const QString table = QString::fromUtf8(key.table);
    sqlite::Statement state = database.prepare("SELECT stamp, device, events, buried, deletions FROM "
                                               "arriving.ObjectStoreRowStates WHERE tbl = ? AND id = ?");
    if (!state.bind(table).bind(key.id).step())
        return false;
    RowState its;
    its.base = {state.integer(0), state.text(1).toUtf8()};
    RowDelta delta{.key = key};
    delta.base = its.base;
    delta.events = VersionVector::fromText(state.text(2).toUtf8());
    delta.buried = VersionVector::fromText(state.text(3).toUtf8());
    delta.deletions = dotsOfText(state.text(4).toUtf8());
    const EntityDescription &entity = *model.entityOfTable(key.table.toStdString());
    if (entity.table() != key.table)
        return merge.merge(delta);
    sqlite::Statement cells =
        database.prepare("SELECT col, stamp, device FROM arriving.ObjectStoreCellStamps "
                         "WHERE tbl = ? AND id = ?");
    cells.bind(table).bind(key.id);
    while (cells.step())
        its.cells[cells.text(0).toUtf8()] = {cells.integer(1), cells.text(2).toUtf8()};
    const auto take = [&](const QByteArray &column, const sqlite3_value *value) {
        const Stamp stamp = its.stampOf(column);
        const int place =
            entity.columnOf(std::string_view(column.constData(), static_cast<size_t>(column.size())));
        if (stamp.time > 0 && place >= 0)
            delta.cells.insert_or_assign(column, RowDelta::Cell{stamp, copied(value)});
    };
    const std::vector<QByteArray> columns = columnsOf(database, "arriving", key.table);
    sqlite::Statement row = database.prepare("SELECT " + listed(columns) + " FROM arriving." +
                                             quoted(key.table) + " WHERE \"id\" = ?");
    if (row.bind(key.id).step()) {
        for (size_t place = 0; place < columns.size(); ++place)
            take(columns[place], row.raw(static_cast<int>(place)));
    }
    sqlite::Statement parked =
        database.prepare("SELECT col, value FROM arriving.ObjectStoreParked WHERE tbl = ? AND id = ?");
    parked.bind(table).bind(key.id);
    while (parked.step())
        take(parked.text(0).toUtf8(), parked.raw(1));
    return merge.merge(delta);
}

} // namespace replication
