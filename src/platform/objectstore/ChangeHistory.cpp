#include "objectstore/ChangeHistory.h"

#include "objectstore/ChangesetCheck.h"
#include "objectstore/ManagedObject.h"
#include "objectstore/SqlText.h"
#include "objectstore/Sqlite.h"

#include <sqlite3.h>

#include <algorithm>

namespace {

/// What stands in a changeset, as a column of that type holds it.
Value valueIn(sqlite3_value *value, AttributeType type)
{
    switch (value ? sqlite3_value_type(value) : SQLITE_NULL) {
    case SQLITE_INTEGER:
        return fitted(qint64(sqlite3_value_int64(value)), type);
    case SQLITE_FLOAT:
        return fitted(sqlite3_value_double(value), type);
    case SQLITE_TEXT:
        return fitted(QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_value_text(value)),
                                        sqlite3_value_bytes(value)),
                      type);
    default:
        return {};
    }
}

/// The two values of a column; null for one that the change does not name.
struct Sides
{
    sqlite3_value *before = nullptr;
    sqlite3_value *after = nullptr;

    Sides(sqlite3_changeset_iter *iterator, int column, int kind)
    {
        if (kind != SQLITE_INSERT)
            sqlite3changeset_old(iterator, column, &before);
        if (kind != SQLITE_DELETE)
            sqlite3changeset_new(iterator, column, &after);
    }
    QString identifier() const
    {
        const Value value = valueIn(before ? before : after, AttributeType::String);
        const auto *text = std::get_if<QString>(&value);
        return text ? *text : QString();
    }
};

RowChange::Kind kindOf(int operation)
{
    return operation == SQLITE_INSERT   ? RowChange::Kind::Made
           : operation == SQLITE_DELETE ? RowChange::Kind::Deleted
                                        : RowChange::Kind::Changed;
}

} // namespace

const std::vector<QByteArray> &ChangeHistory::columnsOf(const QByteArray &table)
{
    std::vector<QByteArray> &columns = tableColumns[table];
    if (columns.empty()) {
        sqlite::Statement statement = database.prepare("PRAGMA table_info(" + quoted(table) + ")");
        while (statement.step())
            columns.push_back(statement.text(1).toUtf8());
    }
    return columns;
}

/// What the record takes along when it is deleted.
void ChangeHistory::findParts(const ManagedObject &object)
{
    for (const RelationshipDescription &relationship : recordEntity->relationships()) {
        if (relationship.cardinality != Cardinality::ToMany ||
            relationship.deleteRule != DeleteRule::Cascade || !object.context())
            continue;
        for (const ObjectPtr &part : object.relatedObjects(relationship.name))
            wanted.insert(part->identifier());
    }
}

std::vector<RecordedSave> ChangeHistory::of(const ManagedObject &object)
{
    recordEntity = &object.entity();
    record = object.identifier();
    wanted = {record};
    findParts(object);
    // The newest first: parts that were deleted are known before what was done to them.
    sqlite::Statement saves = database.prepare(
        "SELECT savedAt, author, name, isUndone, changeset FROM ObjectStoreJournal UNION ALL "
        "SELECT savedAt, author, name, isUndone, changeset FROM ObjectStoreHistory ORDER BY savedAt DESC");
    std::vector<RecordedSave> history;
    while (saves.step()) {
        const QByteArray changeset = saves.blob(4);
        if (!mayConcern(changeset))
            continue;
        std::vector<RowChange> rows = rowsOf(changeset);
        if (rows.empty())
            continue;
        history.push_back({.savedAt = Date::fromReferenceSeconds(saves.number(0)),
                           .author = static_cast<ChangeAuthor>(saves.integer(1)),
                           .name = saves.text(2),
                           .isUndone = saves.integer(3) != 0,
                           .rows = std::move(rows)});
    }
    return history;
}

bool ChangeHistory::mayConcern(const QByteArray &changeset) const
{
    return std::ranges::any_of(wanted, [&](const QString &one) { return changeset.contains(one.toUtf8()); });
}

std::vector<RowChange> ChangeHistory::rowsOf(const QByteArray &changeset)
{
    found.clear();
    sqlite3_changeset_iter *iterator = nullptr;
    if (!isWellFormedChangeset(changeset) ||
        sqlite3changeset_start(&iterator, static_cast<int>(changeset.size()),
                               const_cast<char *>(changeset.constData())) != SQLITE_OK)
        return {};
    while (sqlite3changeset_next(iterator) == SQLITE_ROW) {
        const char *table = nullptr;
        int columnCount = 0;
        int kind = 0;
        int isIndirect = 0;
        sqlite3changeset_op(iterator, &table, &columnCount, &kind, &isIndirect);
        const EntityDescription *entity = objectModel.entityOfTable(table);
        if (!entity)
            continue;
        if (entity->table() == table)
            readRow(*entity, iterator, columnCount, kind);
        else
            readPair(*entity, iterator, table, kind);
    }
    sqlite3changeset_finalize(iterator);
    return std::exchange(found, {});
}

/// Whether a row names the record as what it belongs to.
bool ChangeHistory::isPart(const RowChange &row) const
{
    return std::ranges::any_of(row.fields, [&](const RowChange::Field &field) {
        const RelationshipDescription *owner = row.entity->relationship(field.key);
        const RelationshipDescription *owned = owner ? recordEntity->relationship(owner->inverse) : nullptr;
        return owned && owned->deleteRule == DeleteRule::Cascade &&
               owner->destination == recordEntity->name() &&
               (field.before == Value(record) || field.after == Value(record));
    });
}

void ChangeHistory::readRow(const EntityDescription &entity, sqlite3_changeset_iter *iterator,
                            int columnCount, int kind)
{
    const std::vector<QByteArray> &columns = columnsOf(entity.table());
    RowChange row{.entity = &entity, .kind = kindOf(kind)};
    for (int place = 0; place < std::min(columnCount, static_cast<int>(columns.size())); ++place) {
        const QByteArray &name = columns[static_cast<size_t>(place)];
        const Sides sides(iterator, place, kind);
        if (name == "id") {
            row.identifier = sides.identifier();
            continue;
        }
        const int column =
            entity.columnOf(std::string_view(name.constData(), static_cast<size_t>(name.size())));
        if (column < 0 || (!sides.before && !sides.after))
            continue;
        const AttributeType type = entity.columnType(column);
        RowChange::Field field{entity.columnName(column), valueIn(sides.before, type),
                               valueIn(sides.after, type)};
        if (field.before != field.after)
            row.fields.push_back(std::move(field));
    }
    findLinks(row);
    if (!wanted.contains(row.identifier) && !isPart(row))
        return;
    wanted.insert(row.identifier);
    found.push_back(std::move(row));
}

void ChangeHistory::addLink(std::string_view key, const QString &other, bool isBefore, bool isAfter)
{
    RowChange::Field field{key, {}, {}};
    if (isBefore)
        field.before = other;
    if (isAfter)
        field.after = other;
    found.push_back({.entity = recordEntity, .identifier = record, .fields = {std::move(field)}});
}

/// A row that names the record, or named it, and does not belong to it.
void ChangeHistory::findLinks(const RowChange &row)
{
    for (const RowChange::Field &field : row.fields) {
        const RelationshipDescription *held = row.entity->relationship(field.key);
        const RelationshipDescription *inverse = held && held->destination == recordEntity->name()
                                                     ? recordEntity->relationship(held->inverse)
                                                     : nullptr;
        const bool isBefore = field.before == Value(record);
        const bool isAfter = field.after == Value(record);
        if (inverse && inverse->deleteRule != DeleteRule::Cascade && (isBefore || isAfter))
            addLink(inverse->name, row.identifier, isBefore, isAfter);
    }
}

/// A pair is told of whichever of its two is the record.
void ChangeHistory::readPair(const EntityDescription &entity, sqlite3_changeset_iter *iterator,
                             QByteArrayView table, int kind)
{
    const std::vector<QByteArray> &columns = columnsOf(table.toByteArray());
    QString source;
    QString target;
    for (int place = 0; place < static_cast<int>(columns.size()); ++place) {
        const QByteArray &name = columns[static_cast<size_t>(place)];
        if (name == "source")
            source = Sides(iterator, place, kind).identifier();
        else if (name == "target")
            target = Sides(iterator, place, kind).identifier();
    }
    if (source != record && target != record)
        return;
    const auto relationship =
        std::ranges::find_if(entity.relationships(), [&](const RelationshipDescription &one) {
            return one.cardinality == Cardinality::ToManyOwningJoin &&
                   objectModel.joinTable(entity, one).table == table;
        });
    if (relationship == entity.relationships().end())
        return;
    const bool isGone = kind == SQLITE_DELETE;
    if (source == record && &entity == recordEntity)
        addLink(relationship->name, target, isGone, !isGone);
    if (target == record && relationship->destination == recordEntity->name())
        addLink(relationship->inverse, source, isGone, !isGone);
}
