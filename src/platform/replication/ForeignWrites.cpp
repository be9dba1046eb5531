#include "replication/ForeignWrites.h"

#include "objectstore/SqlText.h"
#include "replication/RowDelta.h"

#include <sqlite3.h>

#include <algorithm>

namespace replication::foreignwrites {

namespace {

/// A row has an entry without a column that says whether it was there before, and one for each column that
/// had another value then.
const QByteArray formerTable = "ObjectStoreFormer";

/// A column in which a table names its rows, or two for a pair.
struct TableOfModel
{
    QByteArray table;
    std::vector<QByteArray> columns;
    bool isOfPairs = false;

    QByteArray keyOf(const char *row) const
    {
        const QByteArray name(row);
        return isOfPairs ? name + ".source || '/' || " + name + ".target" : name + ".\"id\"";
    }
};

std::vector<TableOfModel> tablesOfModel(const ManagedObjectModel &model)
{
    std::vector<TableOfModel> tables;
    for (const EntityDescription &entity : model.entities()) {
        if (entity.isDerived())
            continue;
        TableOfModel table{entity.table(), {}, false};
        for (int column = 0; column < entity.columnCount(); ++column) {
            const std::string_view name = entity.columnName(column);
            table.columns.emplace_back(name.data(), static_cast<qsizetype>(name.size()));
        }
        tables.push_back(std::move(table));
        for (const RelationshipDescription &one : entity.relationships()) {
            if (one.cardinality == Cardinality::ToManyOwningJoin)
                tables.push_back({model.joinTable(entity, one).table, {"source", "target"}, true});
        }
    }
    return tables;
}

/// Conflict clauses of the statement that fires a trigger count for nothing where there is an own one.
const QByteArray unlessKnown = " ON CONFLICT (tbl, id, col) DO NOTHING; ";

/// \param wasThere an expression: 1 for a row that was there.
QByteArray noted(const TableOfModel &table, const char *row, const QByteArray &wasThere)
{
    return "INSERT INTO " + formerTable + " SELECT '" + table.table + "', " + table.keyOf(row) + ", '', " +
           wasThere + " WHERE true" + unlessKnown;
}

/// Values that a select gives as `col` and `value`, of a row that is noted as one that was there.
QByteArray notedValuesOf(const TableOfModel &table, const char *row, const QByteArray &values)
{
    return "INSERT INTO " + formerTable + " SELECT '" + table.table + "', " + table.keyOf(row) +
           ", col, value FROM (" + values + ") WHERE EXISTS (SELECT 1 FROM " + formerTable +
           " known WHERE known.tbl = '" + table.table + "' AND known.id = " + table.keyOf(row) +
           " AND known.col = '' AND known.value = 1)" + unlessKnown;
}

/// The former values, of a row that was there.
QByteArray notedValues(const TableOfModel &table, bool isOfUpdate)
{
    QByteArray values;
    for (const QByteArray &column : table.columns) {
        const QByteArray name = quoted(column);
        values += (values.isEmpty() ? "SELECT '" : " UNION ALL SELECT '") + column + "' AS col, old." + name +
                  " AS value";
        if (isOfUpdate)
            values += " WHERE old." + name + " IS NOT new." + name + " OR " + table.keyOf("old") +
                      " IS NOT " + table.keyOf("new");
    }
    return notedValuesOf(table, "old", values);
}

/// A row that replaces another goes without a trigger for the other, which is still there before.
QByteArray notedBeforeInsert(const TableOfModel &table)
{
    const QByteArray present =
        quoted(table.table) + " AS present WHERE " +
        (table.isOfPairs ? "present.source = new.source AND present.target = new.target"
                         : "present.\"id\" = new.\"id\"");
    QByteArray values;
    for (const QByteArray &column : table.columns)
        values += (values.isEmpty() ? "SELECT '" : " UNION ALL SELECT '") + column + "' AS col, present." +
                  quoted(column) + " AS value FROM " + present;
    return noted(table, "new", "EXISTS (SELECT 1 FROM " + present + ")") +
           notedValuesOf(table, "new", values);
}

/// \param creation the words that make one.
std::vector<std::pair<QByteArray, QByteArray>> triggersOf(const TableOfModel &table,
                                                          const QByteArray &creation = "CREATE TRIGGER ")
{
    const auto trigger = [&](const char *moment, const QByteArray &event, const QByteArray &body) {
        const QByteArray name = table.table + "_former_" + event.toLower();
        return std::pair(name, creation + quoted(name) + ' ' + moment + ' ' + event + " ON " +
                                   quoted(table.table) + " BEGIN " + body + "END");
    };
    return {trigger("BEFORE", "INSERT", notedBeforeInsert(table)),
            trigger("AFTER", "UPDATE",
                    noted(table, "old", "1") + notedValues(table, true) + noted(table, "new", "0")),
            trigger("AFTER", "DELETE", noted(table, "old", "1") + notedValues(table, false))};
}

/// One row, as it is and as it was.
class WrittenRow
{
public:
    WrittenRow(sqlite::Database &connection, const TableOfModel &ofModel, QString key)
        : database(&connection)
        , table(&ofModel)
        , id(std::move(key))
    {}

    bool turnBack()
    {
        return readNow() && readFormer() &&
               (wasThere ? (isThere ? update(former) : insert(former)) : remove());
    }
    bool isGone() const { return !isThere; }
    const QByteArray &tableName() const { return table->table; }
    const QString &key() const { return id; }
    bool turnForth() { return isThere ? (wasThere ? update(now) : insert(now)) : remove(); }

private:
    using Values = std::map<QByteArray, RawValue>;

    QByteArray condition() const
    {
        return table->isOfPairs ? " WHERE source = ? AND target = ?" : QByteArray(" WHERE \"id\" = ?");
    }
    void bindKey(sqlite::Statement &statement) const
    {
        if (table->isOfPairs)
            statement.bind(id.section(u'/', 0, 0)).bind(id.section(u'/', 1));
        else
            statement.bind(id);
    }
    bool readNow()
    {
        sqlite::Statement row =
            database->prepare(QByteArray(table->isOfPairs ? "SELECT 0, * FROM " : "SELECT rowid, * FROM ") +
                              quoted(table->table) + condition());
        bindKey(row);
        isThere = row.step();
        if (!isThere || table->isOfPairs)
            return row.isValid();
        rowNumber = row.integer(0);
        for (const QByteArray &column : table->columns) {
            sqlite::Statement value =
                database->prepare("SELECT " + quoted(column) + " FROM " + quoted(table->table) + condition());
            bindKey(value);
            if (!value.step())
                return false;
            now[column] = copied(value.raw(0));
        }
        return true;
    }
    bool readFormer()
    {
        sqlite::Statement all =
            database->prepare("SELECT col, value FROM " + formerTable + " WHERE tbl = ? AND id = ?");
        all.bind(QString::fromUtf8(table->table)).bind(id);
        while (all.step()) {
            if (all.text(0).isEmpty())
                wasThere = all.integer(1) != 0;
            else
                former[all.text(0).toUtf8()] = copied(all.raw(1));
        }
        return true;
    }
    bool update(const Values &values)
    {
        return std::ranges::all_of(former, [&](const auto &one) {
            const auto wanted = values.find(one.first);
            if (table->isOfPairs || wanted == values.end())
                return true;
            sqlite::Statement statement = database->prepare("UPDATE " + quoted(table->table) + " SET " +
                                                            quoted(one.first) + " = ? WHERE \"id\" = ?");
            return statement.bindRaw(wanted->second.get()).bind(id).run();
        });
    }
    bool insert(const Values &values)
    {
        if (table->isOfPairs) {
            sqlite::Statement pair = database->prepare("INSERT OR IGNORE INTO " + quoted(table->table) +
                                                       " (source, target) VALUES (?, ?)");
            bindKey(pair);
            return pair.run();
        }
        QByteArray names = "\"id\"";
        QByteArray places = "?";
        if (isThere) {
            names += ", rowid";
            places += ", ?";
        }
        for (const auto &[column, value] : values) {
            names += ", " + quoted(column);
            places += ", ?";
        }
        sqlite::Statement statement = database->prepare("INSERT INTO " + quoted(table->table) + " (" + names +
                                                        ") VALUES (" + places + ')');
        statement.bind(id);
        if (isThere)
            statement.bind(rowNumber);
        for (const auto &[column, value] : values)
            statement.bindRaw(value.get());
        return statement.run();
    }
    bool remove()
    {
        sqlite::Statement statement = database->prepare("DELETE FROM " + quoted(table->table) + condition());
        bindKey(statement);
        return statement.run();
    }

    sqlite::Database *database;
    const TableOfModel *table;
    QString id;
    bool isThere = false;
    bool wasThere = false;
    qint64 rowNumber = 0;
    Values now;
    Values former;
};

/// Rows go for a moment, and nothing may go with them. Unlike the pragma it works within a transaction.
class EnforcementPause
{
public:
    explicit EnforcementPause(sqlite::Database &connection)
        : handle(connection.handle())
    {
        sqlite3_db_config(handle, SQLITE_DBCONFIG_ENABLE_FKEY, -1, &wasOn);
        sqlite3_db_config(handle, SQLITE_DBCONFIG_ENABLE_FKEY, 0, nullptr);
    }
    ~EnforcementPause() { sqlite3_db_config(handle, SQLITE_DBCONFIG_ENABLE_FKEY, wasOn, nullptr); }
    EnforcementPause(const EnforcementPause &) = delete;
    EnforcementPause &operator=(const EnforcementPause &) = delete;

private:
    sqlite3 *handle;
    int wasOn = 0;
};

/// What a connection that enforces foreign keys would have done: names of rows that are not there go, here as
/// on the other devices.
class References
{
public:
    References(sqlite::Database &connection, const ManagedObjectModel &ofModel)
        : database(connection)
        , model(ofModel)
    {}

    bool settle(const std::vector<WrittenRow> &rows)
    {
        return std::ranges::all_of(rows, [this](const WrittenRow &row) {
            const EntityDescription *entity = model.entityOfTable(row.tableName().toStdString());
            if (entity->table() != row.tableName())
                return row.isGone() || settlePair(row);
            return row.isGone() ? forgetNamesOf(*entity, row.key()) : settleNamesIn(*entity, row.key());
        });
    }

private:
    bool run(const QByteArray &sql, const QString &key) { return database.prepare(sql).bind(key).run(); }
    static QByteArray isMissing(const QByteArray &column, const QByteArray &table)
    {
        return column + " NOT IN (SELECT \"id\" FROM " + quoted(table) + ')';
    }
    bool forgetNamesOf(const EntityDescription &gone, const QString &id)
    {
        for (const EntityDescription &holder : model.entities()) {
            for (const RelationshipDescription &one : holder.relationships()) {
                const bool isTarget = &model.destinationOf(one) == &gone;
                const QByteArray name = quoted(one.name);
                if (one.cardinality == Cardinality::ToOne && isTarget &&
                    !run("UPDATE " + quoted(holder.table()) + " SET " + name + " = NULL WHERE " + name +
                             " = ?",
                         id))
                    return false;
                if (one.cardinality != Cardinality::ToManyOwningJoin)
                    continue;
                const QByteArray pairs = "DELETE FROM " + quoted(model.joinTable(holder, one).table);
                if ((isTarget && !run(pairs + " WHERE target = ?", id)) ||
                    (&holder == &gone && !run(pairs + " WHERE source = ?", id)))
                    return false;
            }
        }
        return true;
    }
    bool settleNamesIn(const EntityDescription &entity, const QString &id)
    {
        return std::ranges::all_of(entity.relationships(), [&](const RelationshipDescription &one) {
            const QByteArray name = quoted(one.name);
            return one.cardinality != Cardinality::ToOne ||
                   run("UPDATE " + quoted(entity.table()) + " SET " + name + " = NULL WHERE \"id\" = ? AND " +
                           name + " IS NOT NULL AND " + isMissing(name, model.destinationOf(one).table()),
                       id);
        });
    }
    bool settlePair(const WrittenRow &row)
    {
        for (const EntityDescription &holder : model.entities()) {
            for (const RelationshipDescription &one : holder.relationships()) {
                if (one.cardinality == Cardinality::ToManyOwningJoin &&
                    model.joinTable(holder, one).table == row.tableName())
                    return run("DELETE FROM " + quoted(row.tableName()) +
                                   " WHERE source || '/' || target = ? AND (" +
                                   isMissing("source", holder.table()) + " OR " +
                                   isMissing("target", model.destinationOf(one).table()) + ')',
                               row.key());
            }
        }
        return true;
    }

    sqlite::Database &database;
    const ManagedObjectModel &model;
};

/// With the session seeing the second half only.
bool turnBackAndForth(sqlite::Database &database, const ManagedObjectModel &model, sqlite3_session &session)
{
    const std::vector<TableOfModel> tables = tablesOfModel(model);
    std::vector<WrittenRow> rows;
    sqlite::Statement list = database.prepare("SELECT tbl, id FROM " + formerTable + " WHERE col = ''");
    while (list.step()) {
        const auto table = std::ranges::find(tables, list.text(0).toUtf8(), &TableOfModel::table);
        if (table != tables.end())
            rows.emplace_back(database, *table, list.text(1));
    }
    list.reset();
    if (!std::ranges::all_of(rows, &WrittenRow::turnBack))
        return false;
    // A row that goes may have the number of one that comes.
    const auto coming =
        std::partition(rows.begin(), rows.end(), [](const WrittenRow &one) { return one.isGone(); });
    sqlite3session_enable(&session, 1);
    return std::ranges::all_of(rows.begin(), coming, &WrittenRow::turnForth) &&
           std::ranges::all_of(coming, rows.end(), &WrittenRow::turnForth) &&
           References(database, model).settle(rows);
}

} // namespace

OptionalError prepare(sqlite::Database &database, const ManagedObjectModel &model)
{
    std::map<QByteArray, QByteArray> present;
    sqlite::Statement all = database.prepare("SELECT name, sql FROM sqlite_master WHERE type = 'trigger'");
    while (all.step())
        present[all.text(0).toUtf8()] = all.text(1).toUtf8();
    all.reset();
    QByteArray own;
    QByteArray sql;
    for (const TableOfModel &table : tablesOfModel(model)) {
        for (const auto &[name, definition] : triggersOf(table)) {
            own += "DROP TRIGGER IF EXISTS temp." + quoted(name) + ';';
            const auto found = present.find(name);
            if (found == present.end() || found->second != definition)
                sql += "DROP TRIGGER IF EXISTS " + quoted(name) + ';' + definition + ';';
        }
    }
    // What this connection writes is told as it is written from here on.
    if (auto error = database.execute(own))
        return error;
    return sql.isEmpty() ? OptionalError()
                         : database.execute("BEGIN IMMEDIATE; CREATE TABLE IF NOT EXISTS " + formerTable +
                                            " (tbl TEXT NOT NULL, id TEXT NOT NULL, col TEXT NOT NULL, value,"
                                            " PRIMARY KEY (tbl, id, col)) WITHOUT ROWID;" +
                                            sql + "COMMIT");
}

/// Those of the store are switched off on this connection; temporary ones are not.
OptionalError keepOwn(sqlite::Database &database, const ManagedObjectModel &model)
{
    if (database.queryInteger("SELECT COUNT(*) FROM sqlite_master WHERE name = '" + formerTable + '\'') == 0)
        return std::nullopt;
    QByteArray sql;
    for (const TableOfModel &table : tablesOfModel(model)) {
        for (const auto &[name, definition] : triggersOf(table, "CREATE TEMP TRIGGER IF NOT EXISTS "))
            sql += definition + ';';
    }
    return database.execute(sql);
}

bool isAnyThere(sqlite::Database &database)
{
    return database.prepare("SELECT 1 FROM " + formerTable + " LIMIT 1").step();
}

bool show(sqlite::Database &database, const ManagedObjectModel &model, sqlite3_session &session)
{
    const EnforcementPause pause(database);
    if (database.execute("SAVEPOINT foreignWrites"))
        return false;
    sqlite3session_enable(&session, 0);
    const bool isShown = turnBackAndForth(database, model, session) && !forget(database);
    sqlite3session_enable(&session, 1);
    if (!isShown)
        database.execute("ROLLBACK TO foreignWrites")
            .ignore(); // It is forgotten with the transaction at the latest.
    return !database.execute("RELEASE foreignWrites") && isShown;
}

OptionalError forget(sqlite::Database &database)
{
    return database.execute("DELETE FROM " + formerTable);
}

} // namespace replication::foreignwrites
