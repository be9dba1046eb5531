#include "objectstore/ChangeWriter.h"
#include "objectstore/SqlText.h"
#include "objectstore/SubstringIndex.h"

int ChangeWriter::write()
{
    return writeAll() ? sqlite::success : code;
}

/// Keeps the code of a failure, which the connection forgets as soon as another statement is put back.
bool ChangeWriter::run(sqlite::Statement &statement)
{
    if (statement.run())
        return true;
    code = statement.isValid() ? statement.code() : context.database->lastCode();
    return false;
}

bool ChangeWriter::writeAll()
{
    std::vector<ObjectPtr> deletions;
    // A deletion can change or delete further objects, which then wait behind it.
    while (!context.waiting.empty()) {
        const std::vector<ObjectPtr> batch = std::exchange(context.waiting, {});
        const size_t firstDeletion = deletions.size();
        for (const ObjectPtr &object : batch) {
            object->isWaitingForWrite = false;
            if (object->isDeleted())
                deletions.push_back(object);
            else if (!writeObject(*object))
                return false;
        }
        for (size_t place = firstDeletion; place < deletions.size(); ++place)
            applyDeleteRules(*deletions[place]);
    }
    return std::all_of(deletions.begin(), deletions.end(),
                       [this](const ObjectPtr &one) { return deleteRow(*one); });
}

bool ChangeWriter::writeObject(ManagedObject &object)
{
    const bool isNewRow = object.isInserted() && !object.isRowWritten;
    if (!(isNewRow ? insertRow(object) : updateRow(object)))
        return false;
    object.changedSinceWrite.reset();
    return writeJoins(object);
}

RowId ChangeWriter::nextRow(const EntityDescription &entity, RowId wanted)
{
    auto &population = context.population(entity);
    const RowId greatest = context.database->queryInteger("SELECT MAX(rowid) FROM " + quoted(entity.name()));
    if (wanted > greatest)
        return wanted;
    population.lastRow = std::max(population.lastRow, greatest) + 1;
    return population.lastRow;
}

const QByteArray &ChangeWriter::insertSql(const EntityDescription &entity)
{
    QByteArray &sql = context.insertStatements[&entity];
    if (!sql.isEmpty())
        return sql;
    QByteArray names = "rowid, \"id\"";
    QByteArray places = "?, ?";
    for (int column = 0; column < entity.columnCount(); ++column) {
        names += ", " + quoted(entity.columnName(column));
        places += ", ?";
    }
    sql = "INSERT INTO " + quoted(entity.name()) + " (" + names + ") VALUES (" + places + ')';
    return sql;
}

bool ChangeWriter::insertRow(ManagedObject &object)
{
    const EntityDescription &entity = object.entity();
    auto &population = context.population(entity);
    // A row that is written again after a failure keeps its number, by which lists know it.
    const RowId row = nextRow(entity, object.row);
    const auto former = population.byRow.find(object.row);
    if (former != population.byRow.end() && former->second == &object)
        population.byRow.erase(former);
    object.row = row;
    sqlite::Statement statement = context.database->prepare(insertSql(entity));
    statement.bind(object.row).bind(object.id).bind(object.values);
    if (!run(statement))
        return false;
    population.byRow[object.row] = &object;
    object.isRowWritten = true;
    const auto index = SubstringIndex::of(entity);
    if (!index || index->note(*context.database, object.row))
        return true;
    code = context.database->lastCode();
    return false;
}

QByteArray ChangeWriter::updateSql(const EntityDescription &entity, const ManagedObject::ColumnSet &columns)
{
    QByteArray assignments;
    for (int column = 0; column < entity.columnCount(); ++column) {
        if (columns.test(static_cast<size_t>(column)))
            assignments += (assignments.isEmpty() ? "" : ", ") + quoted(entity.columnName(column)) + " = ?";
    }
    return "UPDATE " + quoted(entity.name()) + " SET " + assignments + " WHERE \"id\" = ?";
}

bool ChangeWriter::updateRow(ManagedObject &object)
{
    ManagedObject::ColumnSet columns = object.changedSinceWrite;
    if (columns.none())
        return true;
    const EntityDescription &entity = object.entity();
    if (context.mergePolicy == MergePolicy::Overwrite) {
        for (int column = 0; column < entity.columnCount(); ++column)
            columns.set(static_cast<size_t>(column));
    }
    sqlite::Statement statement = context.database->prepare(updateSql(entity, columns));
    for (size_t column = 0; column < object.values.size(); ++column) {
        if (columns.test(column))
            statement.bind(object.values[column]);
    }
    statement.bind(object.id);
    if (!run(statement))
        return false;
    // Deleted elsewhere while it was changed here: what is in memory wins, and the row comes back.
    if (context.database->changes() == 0)
        return insertRow(object);
    const auto index = SubstringIndex::of(entity);
    const bool isIndexed =
        index && columns.test(static_cast<size_t>(entity.columnOf(entity.substringAttribute())));
    if (!isIndexed || index->note(*context.database, object.id))
        return true;
    code = context.database->lastCode();
    return false;
}

bool ChangeWriter::writeJoins(ManagedObject &object)
{
    for (auto &changes : object.joinChanges) {
        if (changes.isWritten)
            continue;
        const QByteArray table = context.objectModel.joinTable(object.entity(), *changes.relationship).table;
        sqlite::Statement insertion = context.database->prepare("INSERT OR IGNORE INTO \"" + table +
                                                                "\" (source, target) VALUES (?, ?)");
        for (const QString &target : changes.added) {
            insertion.reset();
            insertion.bind(object.id).bind(target);
            if (!run(insertion))
                return false;
        }
        sqlite::Statement removal =
            context.database->prepare("DELETE FROM \"" + table + "\" WHERE source = ? AND target = ?");
        for (const QString &target : changes.removed) {
            removal.reset();
            removal.bind(object.id).bind(target);
            if (!run(removal))
                return false;
        }
        changes.isWritten = true;
    }
    return true;
}

void ChangeWriter::applyDeleteRules(const ManagedObject &object)
{
    for (const RelationshipDescription &relationship : object.entity().relationships()) {
        if (relationship.cardinality == Cardinality::ToMany ||
            relationship.cardinality == Cardinality::ToManyThroughJoin)
            releaseHolders(object, relationship);
    }
}

/// Objects that name the deleted one lose it, or go with it.
void ChangeWriter::releaseHolders(const ManagedObject &object, const RelationshipDescription &relationship)
{
    for (const ObjectPtr &holder : context.relatedObjects(object, relationship)) {
        if (relationship.deleteRule == DeleteRule::Cascade)
            context.deleteObject(holder);
        else if (relationship.cardinality == Cardinality::ToMany)
            holder->setValue(holder->entity().columnOf(relationship.inverse), Value());
        else
            holder->changeJoin(holder->requireRelationship(relationship.inverse), object.id, false);
    }
}

/// Pairs are deleted with the row also in a file whose tables were made without references.
bool ChangeWriter::deleteRow(const ManagedObject &object)
{
    const EntityDescription &entity = object.entity();
    for (const RelationshipDescription &relationship : entity.relationships()) {
        if (relationship.cardinality != Cardinality::ToManyOwningJoin)
            continue;
        sqlite::Statement pairs = context.database->prepare(
            "DELETE FROM \"" + context.objectModel.joinTable(entity, relationship).table +
            "\" WHERE source = ?");
        pairs.bind(object.id);
        if (!run(pairs))
            return false;
    }
    sqlite::Statement statement =
        context.database->prepare("DELETE FROM " + quoted(entity.name()) + " WHERE \"id\" = ?");
    statement.bind(object.id);
    return run(statement);
}
