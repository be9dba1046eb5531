#include "objectstore/RowsFromElsewhere.h"

#include "objectstore/SqlText.h"

namespace rowsfromelsewhere {

namespace {

const QByteArray table = "ObjectStoreElsewhere";

/// The clause of a statement within a trigger counts for nothing if the outer statement has one, which an
/// "ON CONFLICT" of its own does not suffer.
QByteArray listing(const QByteArray &entity, const QByteArray &identifier, const QByteArray &row = "0")
{
    return "INSERT INTO " + table + " (entity, id, row) SELECT '" + entity + "', " + identifier + ", " + row +
           " WHERE " + identifier +
           " IS NOT NULL ON CONFLICT (entity, id) DO UPDATE SET row = excluded.row; ";
}

/// One trigger for each way of writing to a table: what it lists of the former and of the new row.
struct Triggers
{
    QByteArray ofInsert;
    QByteArray ofUpdate;
    QByteArray ofDelete;
    QByteArrayList columns;

    QByteArray statements(const QByteArray &written) const
    {
        const auto one = [&written](const QByteArray &name, const QByteArray &event, const QByteArray &body) {
            return body.isEmpty()
                       ? QByteArray()
                       : "CREATE TRIGGER IF NOT EXISTS " + quoted(written + "_elsewhere_" + name) +
                             " AFTER " + event + " ON " + quoted(written) + " BEGIN " + body + "END;";
        };
        return one("insert", "INSERT", ofInsert) +
               one("update", "UPDATE OF " + columns.join(", "), ofUpdate) + one("delete", "DELETE", ofDelete);
    }
    /// A column that names a row of a listed entity.
    void addReference(const QByteArray &entity, const QByteArray &column)
    {
        ofInsert += listing(entity, "new." + column);
        ofUpdate += listing(entity, "old." + column) + listing(entity, "new." + column);
        ofDelete += listing(entity, "old." + column);
    }
};

QByteArray triggersOf(const ManagedObjectModel &model, const EntityDescription &entity)
{
    Triggers triggers;
    for (int column = 0; column < entity.columnCount(); ++column) {
        if (entity.columnType(column) == AttributeType::String)
            triggers.columns.append(quoted(entity.columnName(column)));
        const RelationshipDescription *relationship = entity.relationshipOfColumn(column);
        if (relationship && model.destinationOf(*relationship).followsLinks())
            triggers.addReference(model.destinationOf(*relationship).table(),
                                  quoted(entity.columnName(column)));
    }
    if (entity.followsLinks()) {
        triggers.ofInsert += listing(entity.table(), "new.\"id\"");
        triggers.ofUpdate += listing(entity.table(), "new.\"id\"");
        triggers.ofDelete += listing(entity.table(), "old.\"id\"", "old.rowid");
    }
    if (triggers.columns.isEmpty())
        triggers.ofUpdate.clear();
    return triggers.statements(entity.table());
}

QByteArray triggersOfPairs(const ManagedObjectModel &model, const EntityDescription &entity,
                           const RelationshipDescription &relationship)
{
    Triggers triggers;
    triggers.columns = {"source", "target"};
    if (entity.followsLinks())
        triggers.addReference(entity.table(), "source");
    if (model.destinationOf(relationship).followsLinks())
        triggers.addReference(model.destinationOf(relationship).table(), "target");
    return triggers.statements(model.joinTable(entity, relationship).table);
}

} // namespace

QByteArray create(sqlite::Database &database, const ManagedObjectModel &model)
{
    const bool isNew =
        database.queryInteger("SELECT COUNT(*) FROM sqlite_master WHERE name = '" + table + '\'') == 0;
    QByteArray sql = "CREATE TABLE IF NOT EXISTS " + table +
                     " (entity TEXT NOT NULL, id TEXT NOT NULL, row INTEGER NOT NULL DEFAULT 0,"
                     " PRIMARY KEY (entity, id)) WITHOUT ROWID;";
    for (const EntityDescription &entity : model.entities()) {
        if (entity.isDerived())
            continue;
        sql += triggersOf(model, entity);
        for (const RelationshipDescription &relationship : entity.relationships()) {
            if (relationship.cardinality == Cardinality::ToManyOwningJoin)
                sql += triggersOfPairs(model, entity, relationship);
        }
        if (isNew && entity.followsLinks())
            sql += "INSERT OR IGNORE INTO " + table + " SELECT '" + entity.table() + "', id, 0 FROM " +
                   quoted(entity.name()) + ';';
    }
    return sql;
}

Result<std::vector<RowFromElsewhere>> take(sqlite::Database &database, int limit)
{
    std::vector<RowFromElsewhere> rows;
    sqlite::Statement list = database.prepare("SELECT entity, id, row FROM " + table + " LIMIT ?");
    list.bind(qint64(limit));
    while (list.step())
        rows.push_back({list.text(0).toUtf8(), list.text(1), list.integer(2)});
    list.reset();
    sqlite::Statement removal = database.prepare("DELETE FROM " + table + " WHERE entity = ? AND id = ?");
    for (const RowFromElsewhere &one : rows) {
        removal.reset();
        if (!removal.bind(QString::fromUtf8(one.table)).bind(one.identifier).run())
            return database.lastError(QStringLiteral("Cannot take in what was written elsewhere"));
    }
    return rows;
}

bool isAnyThere(sqlite::Database &database)
{
    return database.prepare("SELECT 1 FROM " + table + " LIMIT 1").step();
}

} // namespace rowsfromelsewhere
