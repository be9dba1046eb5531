#include "objectstore/ChangesetApplier.h"
#include "objectstore/ChangesetCheck.h"
#include "objectstore/SqlText.h"
#include "objectstore/SubstringIndex.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <sqlite3.h>

#include <map>
#include <memory>

namespace {

struct IteratorEnd
{
    void operator()(sqlite3_changeset_iter *iterator) const { sqlite3changeset_finalize(iterator); }
};

struct SqliteFree
{
    void operator()(void *memory) const { sqlite3_free(memory); }
};

sqlite3_value *newValue(sqlite3_changeset_iter *iterator, int column)
{
    sqlite3_value *value = nullptr;
    sqlite3changeset_new(iterator, column, &value);
    return value;
}

sqlite3_value *oldValue(sqlite3_changeset_iter *iterator, int column)
{
    sqlite3_value *value = nullptr;
    sqlite3changeset_old(iterator, column, &value);
    return value;
}

QString textOf(sqlite3_value *value)
{
    return QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_value_text(value)),
                             sqlite3_value_bytes(value));
}

} // namespace

const std::vector<QByteArray> &ChangesetApplier::columnsOf(const QByteArray &table)
{
    std::vector<QByteArray> &columns = tableColumns[table.toStdString()];
    if (columns.empty()) {
        sqlite::Statement statement = database.prepare("PRAGMA table_info(" + quoted(table) + ")");
        while (statement.step())
            columns.push_back(statement.text(1).toUtf8());
    }
    return columns;
}

Result<std::vector<AppliedChange>> ChangesetApplier::apply(const QByteArray &changeset, bool isInverted)
{
    if (changeset.isEmpty())
        return applied;
    const Error failure{QStringLiteral("journal"), 0, QStringLiteral("The undo journal cannot be read")};
    if (!isWellFormedChangeset(changeset))
        return failure;
    int size = static_cast<int>(changeset.size());
    void *bytes = nullptr;
    if (isInverted && sqlite3changeset_invert(size, changeset.constData(), &size, &bytes) != SQLITE_OK)
        return failure;
    const std::unique_ptr<void, SqliteFree> inverted(bytes);
    sqlite3_changeset_iter *opened = nullptr;
    void *source = isInverted ? bytes : const_cast<char *>(changeset.constData());
    if (sqlite3changeset_start(&opened, size, source) != SQLITE_OK)
        return failure;
    const std::unique_ptr<sqlite3_changeset_iter, IteratorEnd> iterator(opened);
    int code = sqlite3changeset_next(opened);
    for (; code == SQLITE_ROW; code = sqlite3changeset_next(opened)) {
        Operation operation;
        operation.iterator = opened;
        const char *table = nullptr;
        int isIndirect = 0;
        sqlite3changeset_op(opened, &table, &operation.columnCount, &operation.kind, &isIndirect);
        operation.table = table;
        operation.entity = objectModel.entityOfTable(table);
        if (!operation.entity)
            continue; // Of an entity that the model no longer has.
        operation.isPair = operation.table != operation.entity->table();
        if (!isSound(operation))
            return failure;
        touchedTables.insert(table);
        if (!applyOperation(operation) || !noteForSubstrings(operation))
            return database.lastError(
                QStringLiteral("Cannot change %1").arg(QString::fromUtf8(operation.table)));
    }
    if (code != SQLITE_DONE)
        return failure;
    if (!deleteMarked() || !clearDanglingReferences())
        return database.lastError(QStringLiteral("Cannot finish the change"));
    return applied;
}

bool ChangesetApplier::isSound(const Operation &operation)
{
    const auto &columns = columnsOf(operation.table);
    if (operation.columnCount > static_cast<int>(columns.size()) ||
        (operation.isPair && operation.kind == SQLITE_UPDATE))
        return false;
    for (int column = 0; column < operation.columnCount; ++column) {
        const QByteArray &name = columns[static_cast<size_t>(column)];
        if (name != "id" && !(operation.isPair && (name == "source" || name == "target")))
            continue;
        sqlite3_value *value = operation.kind == SQLITE_INSERT ? newValue(operation.iterator, column)
                                                               : oldValue(operation.iterator, column);
        if (!value || sqlite3_value_type(value) != SQLITE_TEXT)
            return false;
    }
    return keyColumn(operation) < operation.columnCount;
}

bool ChangesetApplier::applyOperation(const Operation &operation)
{
    switch (operation.kind) {
    case SQLITE_INSERT:
        return applyInsert(operation);
    case SQLITE_DELETE:
        return applyDelete(operation);
    default:
        return applyUpdate(operation);
    }
}

bool ChangesetApplier::noteForSubstrings(const Operation &operation)
{
    const auto index = operation.isPair ? std::nullopt : SubstringIndex::of(*operation.entity);
    if (!index || operation.kind == SQLITE_DELETE)
        return true;
    const int column = keyColumn(operation);
    return index->note(database,
                       textOf(operation.kind == SQLITE_INSERT ? newValue(operation.iterator, column)
                                                              : oldValue(operation.iterator, column)));
}

/// Where the identifier stands, or the source of a pair. A table that was made by hand can have it in any
/// place.
int ChangesetApplier::keyColumn(const Operation &operation)
{
    const auto &columns = columnsOf(operation.table);
    const auto found = std::find(columns.begin(), columns.end(), operation.isPair ? "source" : "id");
    return found == columns.end() ? 0 : static_cast<int>(found - columns.begin());
}

void ChangesetApplier::note(const Operation &operation, AppliedChange::Kind kind,
                            ManagedObject::ColumnSet columns, RowId row)
{
    const int column = keyColumn(operation);
    const QString id = textOf(operation.kind == SQLITE_INSERT ? newValue(operation.iterator, column)
                                                              : oldValue(operation.iterator, column));
    // A pair of a many-to-many relationship is a change of the object that owns it.
    applied.push_back(
        {operation.entity, id, operation.isPair ? AppliedChange::Kind::Updated : kind, columns, row});
    noteTargets(operation);
}

/// What was or is named by a changed reference counts as updated, if something follows from that.
void ChangesetApplier::noteTargets(const Operation &operation)
{
    const auto &columns = columnsOf(operation.table);
    for (int column = 0; column < operation.columnCount; ++column) {
        const QByteArray &name = columns[static_cast<size_t>(column)];
        const RelationshipDescription *relationship =
            operation.isPair ? pairOf(operation, name)
                             : operation.entity->relationshipOfColumn(operation.entity->columnOf(
                                   std::string_view(name.constData(), static_cast<size_t>(name.size()))));
        if (!relationship || !objectModel.destinationOf(*relationship).followsLinks())
            continue;
        for (sqlite3_value *value :
             {operation.kind == SQLITE_INSERT ? nullptr : oldValue(operation.iterator, column),
              operation.kind == SQLITE_DELETE ? nullptr : newValue(operation.iterator, column)}) {
            if (value && sqlite3_value_type(value) == SQLITE_TEXT)
                applied.push_back(
                    {&objectModel.destinationOf(*relationship), textOf(value), AppliedChange::Kind::Updated});
        }
    }
}

/// The relationship whose far ends stand in that column of a table of pairs, or null.
const RelationshipDescription *ChangesetApplier::pairOf(const Operation &operation,
                                                        const QByteArray &column) const
{
    for (const RelationshipDescription &relationship : operation.entity->relationships()) {
        if (relationship.cardinality == Cardinality::ToManyOwningJoin && column == "target" &&
            objectModel.joinTable(*operation.entity, relationship).table == operation.table)
            return &relationship;
    }
    return nullptr;
}

bool ChangesetApplier::applyInsert(const Operation &operation)
{
    const auto &columns = columnsOf(operation.table);
    QByteArray names = operation.isPair ? "" : "rowid";
    QByteArray places = operation.isPair ? "" : "?";
    for (int column = 0; column < operation.columnCount; ++column) {
        names += (names.isEmpty() ? "" : ", ") + quoted(columns[static_cast<size_t>(column)]);
        places += places.isEmpty() ? "?" : ", ?";
    }
    sqlite::Statement statement = database.prepare("INSERT OR IGNORE INTO " + quoted(operation.table) + " (" +
                                                   names + ") VALUES (" + places + ')');
    if (!operation.isPair)
        statement.bind(nextRow(*operation.entity));
    for (int column = 0; column < operation.columnCount; ++column)
        statement.bindRaw(newValue(operation.iterator, column));
    if (!statement.run())
        return false;
    if (database.changes() > 0)
        note(operation, AppliedChange::Kind::Inserted);
    return true;
}

bool ChangesetApplier::applyUpdate(const Operation &operation)
{
    const auto &columns = columnsOf(operation.table);
    const int key = keyColumn(operation);
    ManagedObject::ColumnSet changed;
    bool hasChanged = false;
    for (int column = 0; column < operation.columnCount; ++column) {
        sqlite3_value *value = newValue(operation.iterator, column);
        if (!value || column == key)
            continue;
        const QByteArray name = quoted(columns[static_cast<size_t>(column)]);
        sqlite::Statement statement = database.prepare("UPDATE " + quoted(operation.table) + " SET " + name +
                                                       " = ? WHERE \"id\" = ? AND " + name + " IS ?");
        statement.bindRaw(value);
        statement.bindRaw(oldValue(operation.iterator, key));
        statement.bindRaw(oldValue(operation.iterator, column));
        if (!statement.run())
            return false;
        if (database.changes() == 0)
            continue;
        hasChanged = true;
        const QByteArray &plain = columns[static_cast<size_t>(column)];
        const int known = operation.entity->columnOf(
            std::string_view(plain.constData(), static_cast<size_t>(plain.size())));
        if (known >= 0)
            changed.set(static_cast<size_t>(known));
    }
    if (hasChanged)
        note(operation, AppliedChange::Kind::Updated, changed);
    return true;
}

/// Only marks the row: deleting it now would empty the references to it in rows that are still to be compared
/// with what the changeset expects.
bool ChangesetApplier::applyDelete(const Operation &operation)
{
    const auto &columns = columnsOf(operation.table);
    QByteArray condition;
    for (int column = 0; column < operation.columnCount; ++column)
        condition += (column ? " AND " : "") + quoted(columns[static_cast<size_t>(column)]) + " IS ?";
    sqlite::Statement statement =
        database.prepare(QByteArray("SELECT ") + (operation.isPair ? "source, target" : "\"id\", rowid") +
                         " FROM " + quoted(operation.table) + " WHERE " + condition);
    for (int column = 0; column < operation.columnCount; ++column)
        statement.bindRaw(oldValue(operation.iterator, column));
    if (!statement.step())
        return statement.code() == SQLITE_DONE;
    const RowId row = operation.isPair ? 0 : statement.integer(1);
    deletions.push_back({operation.table, operation.isPair, statement.text(0), statement.text(1)});
    note(operation, AppliedChange::Kind::Deleted, {}, row);
    return true;
}

bool ChangesetApplier::deleteMarked()
{
    return std::all_of(deletions.begin(), deletions.end(), [this](const Deletion &one) {
        sqlite::Statement statement =
            database.prepare("DELETE FROM " + quoted(one.table) +
                             (one.isPair ? " WHERE source = ? AND target = ?" : " WHERE \"id\" = ?"));
        statement.bind(one.key);
        if (one.isPair)
            statement.bind(one.target);
        return statement.run();
    });
}

/// A row that came back may name one that has gone since. Thousands of rows are asked in one go.
bool ChangesetApplier::clearDanglingReferences()
{
    std::map<const EntityDescription *, QJsonArray> rows;
    for (const AppliedChange &change : applied) {
        if (change.kind != AppliedChange::Kind::Deleted)
            rows[change.entity].append(change.identifier);
    }
    for (const auto &[entity, identifiers] : rows) {
        const QString asked = QString::fromUtf8(QJsonDocument(identifiers).toJson(QJsonDocument::Compact));
        for (const RelationshipDescription &relationship : entity->relationships()) {
            if (relationship.cardinality != Cardinality::ToOne)
                continue;
            const QByteArray name = quoted(relationship.name);
            sqlite::Statement statement =
                database.prepare("UPDATE " + quoted(entity->table()) + " SET " + name +
                                 " = NULL WHERE \"id\" IN (SELECT value FROM json_each(?)) AND " + name +
                                 " IS NOT NULL AND " + name + " NOT IN (SELECT \"id\" FROM " +
                                 quoted(objectModel.destinationOf(relationship).table()) + ')');
            if (!statement.bind(asked).run())
                return false;
        }
    }
    return clearDanglingPairs();
}

bool ChangesetApplier::clearDanglingPairs()
{
    for (const EntityDescription &entity : objectModel.entities()) {
        for (const RelationshipDescription &relationship : entity.relationships()) {
            if (relationship.cardinality != Cardinality::ToManyOwningJoin)
                continue;
            const QByteArray table = objectModel.joinTable(entity, relationship).table;
            if (touchedTables.find(table.toStdString()) == touchedTables.end())
                continue;
            const auto error = database.execute(
                "DELETE FROM " + quoted(table) + " WHERE source NOT IN (SELECT \"id\" FROM " +
                quoted(entity.table()) + ") OR target NOT IN (SELECT \"id\" FROM " +
                quoted(objectModel.destinationOf(relationship).table()) + ')');
            if (error)
                return false;
        }
    }
    return true;
}
