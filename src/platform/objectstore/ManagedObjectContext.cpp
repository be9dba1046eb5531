#include "objectstore/ManagedObjectContext.h"

#include "foundation/Log.h"
#include "objectstore/ChangeJournal.h"
#include "objectstore/FetchSql.h"
#include "objectstore/SqlText.h"
#include "objectstore/StoreFile.h"

#include <QUrl>
#include <QUuid>

Result<std::unique_ptr<ManagedObjectContext>> ManagedObjectContext::open(const QString &path,
                                                                         const ManagedObjectModel &model)
{
    auto opened = storefile::open(path, model);
    if (!opened)
        return opened.error();
    return std::unique_ptr<ManagedObjectContext>(new ManagedObjectContext(std::move(*opened), model, path));
}

ManagedObjectContext::ManagedObjectContext(std::unique_ptr<sqlite::Database> opened,
                                           const ManagedObjectModel &model, QString path)
    : database(std::move(opened))
    , objectModel(model)
    , filePath(std::move(path))
    , identifier(storefile::storeIdentifier(*database))
    , populations(model.entities().size())
    , self(std::make_shared<ManagedObjectContext *>(this))
    , dataVersion(database->queryInteger("PRAGMA data_version"))
    , journal(std::make_unique<ChangeJournal>(*database, model))
{}

ManagedObjectContext::~ManagedObjectContext()
{
    for (Population &one : populations) {
        for (auto &[id, object] : one.byIdentifier) {
            object->owner = nullptr;
            object->state = ManagedObject::State::Detached;
        }
    }
    journal.reset();
    if (isInTransaction)
        database->rollBack();
}

// Objects.

ManagedObjectContext::Population &ManagedObjectContext::population(const EntityDescription &entity)
{
    return populations[static_cast<size_t>(&entity - objectModel.entities().data())];
}

ObjectPtr ManagedObjectContext::insertObject(std::string_view name)
{
    return insertObject(name, QUuid::createUuid().toString(QUuid::WithoutBraces));
}

ObjectPtr ManagedObjectContext::insertObject(std::string_view name, const QString &newIdentifier)
{
    const EntityDescription &entity = objectModel.requireEntity(name);
    ObjectPtr object = entity.makeObject();
    object->description = &entity;
    object->owner = this;
    object->id = newIdentifier;
    object->state = ManagedObject::State::Inserted;
    object->isLoaded = true;
    object->values.resize(static_cast<size_t>(entity.columnCount()));
    population(entity).byIdentifier.emplace(object->id, object.get());
    noteChange(*object);
    return object;
}

void ManagedObjectContext::deleteObject(const ObjectPtr &object)
{
    if (!object || object->owner != this || object->isDeleted())
        return;
    noteTargetsAsTouched(*object);
    object->wasInserted = object->isInserted();
    object->state = ManagedObject::State::Deleted;
    mustApplyDeleteRules = true;
    noteChange(*object);
}

void ManagedObjectContext::noteTargetsAsTouched(const ManagedObject &object)
{
    for (const RelationshipDescription &relationship : object.entity().relationships()) {
        if (!objectModel.destinationOf(relationship).followsLinks())
            continue;
        if (relationship.cardinality == Cardinality::ToOne) {
            noteTouched(relationship.destination, object.valueForKey(relationship.name));
        } else if (relationship.cardinality == Cardinality::ToManyOwningJoin) {
            for (const ObjectPtr &target : object.relatedObjects(relationship.name))
                noteTouched(relationship.destination, Value(target->identifier()));
        }
    }
}

void ManagedObjectContext::deleteRows(const FetchRequest &request)
{
    const EntityDescription &entity = objectModel.requireEntity(request.entityName);
    Query deletion = query(request, "row.rowid");
    deletion.text = "DELETE FROM " + quoted(entity.name()) + " WHERE rowid IN (" + deletion.text + ')';
    // What was written to such rows before goes with them.
    write().ignore();
    rowDeletions.push_back({std::move(deletion), false, isWritingEffects});
    // A failure stays with the changes and is reported by the next save.
    write().ignore();
    for (auto &[id, object] : population(entity).byIdentifier) {
        if (!object->isInserted())
            object->isLoaded = false;
    }
}

ObjectPtr ManagedObjectContext::object(std::string_view name, const QString &id)
{
    const EntityDescription *entity = objectModel.entity(name);
    if (!entity)
        return nullptr;
    const auto &live = population(*entity).byIdentifier;
    const auto found = live.find(id);
    if (found != live.end())
        return found->second->isDeleted() ? nullptr : found->second->shared_from_this();
    sqlite::Statement statement = database->prepare(selectColumns(*entity) + " WHERE \"id\" = ?");
    statement.bind(id);
    return statement.step() ? adopt(*entity, statement) : nullptr;
}

ObjectPtr ManagedObjectContext::objectForUri(const QString &uri)
{
    const QString prefix = QStringLiteral("x-morvane://%1/").arg(identifier);
    if (!uri.startsWith(prefix))
        return nullptr;
    const QString rest = uri.mid(prefix.size());
    const qsizetype slash = rest.indexOf(u'/');
    const QString id = QUrl::fromPercentEncoding(rest.mid(slash + 1).toUtf8());
    const ObjectPtr found = slash < 0 ? nullptr : object(rest.left(slash).toStdString(), id);
    return found && loadValues(*found) && !found->isGone ? found : nullptr;
}

QString ManagedObjectContext::uriOf(const ManagedObject &object) const
{
    return QStringLiteral("x-morvane://%1/%2/%3")
        .arg(identifier, QString::fromUtf8(object.entity().table()),
             QString::fromUtf8(QUrl::toPercentEncoding(object.identifier())));
}

const QByteArray &ManagedObjectContext::selectColumns(const EntityDescription &entity)
{
    QByteArray &sql = columnLists[&entity];
    if (sql.isEmpty()) {
        sql = "SELECT rowid, \"id\"";
        for (int column = 0; column < entity.columnCount(); ++column)
            sql += ", " + quoted(entity.columnName(column));
        sql += " FROM " + quoted(entity.name());
    }
    return sql;
}

void ManagedObjectContext::readValues(const ManagedObject &object, const sqlite::Statement &row)
{
    const EntityDescription &entity = object.entity();
    object.values.resize(static_cast<size_t>(entity.columnCount()));
    for (int column = 0; column < entity.columnCount(); ++column) {
        if (!object.changedSinceSave.test(static_cast<size_t>(column)))
            object.values[static_cast<size_t>(column)] = row.value(column + 2, entity.columnType(column));
    }
    object.isLoaded = true;
    object.isGone = false;
}

ObjectPtr ManagedObjectContext::adopt(const EntityDescription &entity, const sqlite::Statement &row)
{
    Population &living = population(entity);
    const QString id = row.text(1);
    const auto found = living.byIdentifier.find(id);
    if (found != living.byIdentifier.end()) {
        found->second->row = row.integer(0);
        living.byRow[found->second->row] = found->second;
        return found->second->shared_from_this();
    }
    ObjectPtr object = entity.makeObject();
    object->description = &entity;
    object->owner = this;
    object->id = id;
    object->row = row.integer(0);
    object->state = ManagedObject::State::Persistent;
    readValues(*object, row);
    living.byIdentifier.emplace(id, object.get());
    living.byRow[object->row] = object.get();
    return object;
}

bool ManagedObjectContext::loadValues(const ManagedObject &object)
{
    if (object.isLoaded)
        return true;
    sqlite::Statement statement = database->prepare(selectColumns(object.entity()) + " WHERE \"id\" = ?");
    statement.bind(object.id);
    if (!statement.step())
        return false;
    readValues(object, statement);
    return true;
}

std::vector<ObjectPtr> ManagedObjectContext::objectsOfRows(const EntityDescription &entity,
                                                           std::span<const RowId> rows)
{
    std::vector<ObjectPtr> objects;
    objects.reserve(rows.size());
    const auto &living = population(entity).byRow;
    // While one statement is at a row, the others join its transaction instead of each opening its own.
    sqlite::Statement held = database->prepare("SELECT 1 FROM ObjectStoreMetadata");
    if (rows.size() > 1)
        held.step();
    sqlite::Statement statement = database->prepare(selectColumns(entity) + " WHERE rowid = ?");
    for (const RowId row : rows) {
        const auto found = living.find(row);
        if (found != living.end()) {
            objects.push_back(found->second->shared_from_this());
            continue;
        }
        statement.reset();
        statement.bind(row);
        objects.push_back(statement.step() ? adopt(entity, statement) : nullptr);
    }
    return objects;
}

std::vector<ObjectPtr> ManagedObjectContext::relatedObjects(const ManagedObject &object,
                                                            const RelationshipDescription &relationship)
{
    const EntityDescription &destination = objectModel.destinationOf(relationship);
    QByteArray sql = "SELECT rowid FROM " + quoted(destination.name()) + " WHERE ";
    if (relationship.cardinality == Cardinality::ToMany) {
        sql += quoted(relationship.inverse) + " = ?";
    } else {
        const ManagedObjectModel::JoinTable join = objectModel.joinTable(object.entity(), relationship);
        sql += "\"id\" IN (SELECT " + join.farColumn + " FROM \"" + join.table + "\" WHERE " +
               join.nearColumn + " = ?)";
    }
    if (const std::string_view order = destination.orderAttribute(); !order.empty())
        sql += " ORDER BY " + quoted(order) + ", rowid";
    write().ignore();
    std::vector<RowId> rows;
    sqlite::Statement statement = database->prepare(sql);
    statement.bind(object.identifier());
    while (statement.step())
        rows.push_back(statement.integer(0));
    std::vector<ObjectPtr> objects = objectsOfRows(destination, rows);
    std::erase_if(objects, [](const ObjectPtr &one) { return !one || one->isDeleted(); });
    return objects;
}

std::unordered_map<const ManagedObject *, std::vector<ObjectPtr>>
ManagedObjectContext::relatedObjects(const std::vector<ObjectPtr> &holders, std::string_view relationship)
{
    std::unordered_map<const ManagedObject *, std::vector<ObjectPtr>> related;
    if (holders.empty())
        return related;
    write().ignore();
    const EntityDescription &entity = holders.front()->entity();
    const RelationshipDescription &pairs = *entity.relationship(relationship);
    const EntityDescription &destination = objectModel.destinationOf(pairs);
    std::unordered_map<RowId, const ManagedObject *> holderOfRow;
    QByteArrayList numbers;
    for (const ObjectPtr &holder : holders) {
        if (holderOfRow.emplace(holder->rowId(), holder.get()).second)
            numbers.append(QByteArray::number(holder->rowId()));
    }
    // In this order at any rate: from what is asked for, over its pairs, to what they name.
    sqlite::Statement statement = database->prepare(
        "SELECT holder.rowid, target.rowid FROM json_each(?) asked CROSS JOIN " + quoted(entity.name()) +
        " holder ON holder.rowid = asked.value CROSS JOIN \"" + objectModel.joinTable(entity, pairs).table +
        "\" pair ON pair.source = holder.\"id\" CROSS JOIN " + quoted(destination.name()) +
        " target ON target.\"id\" = pair.target ORDER BY target.rowid");
    statement.bind(QString::fromUtf8('[' + numbers.join(',') + ']'));
    std::vector<const ManagedObject *> named;
    std::vector<RowId> rows;
    while (statement.step()) {
        named.push_back(holderOfRow.at(statement.integer(0)));
        rows.push_back(statement.integer(1));
    }
    const std::vector<ObjectPtr> targets = objectsOfRows(destination, rows);
    for (size_t place = 0; place < targets.size(); ++place) {
        if (targets[place] && !targets[place]->isDeleted())
            related[named[place]].push_back(targets[place]);
    }
    return related;
}

bool ManagedObjectContext::hasJoinRow(const ManagedObject &object,
                                      const RelationshipDescription &relationship, const QString &target)
{
    for (const auto &changes : object.joinChanges) {
        if (changes.relationship != &relationship)
            continue;
        if (std::find(changes.added.begin(), changes.added.end(), target) != changes.added.end())
            return true;
        if (std::find(changes.removed.begin(), changes.removed.end(), target) != changes.removed.end())
            return false;
    }
    if (object.isInserted())
        return false;
    const ManagedObjectModel::JoinTable join = objectModel.joinTable(object.entity(), relationship);
    sqlite::Statement statement =
        database->prepare("SELECT 1 FROM \"" + join.table + "\" WHERE source = ? AND target = ?");
    statement.bind(object.identifier()).bind(target);
    return statement.step();
}

void ManagedObjectContext::forget(ManagedObject &object)
{
    Population &living = population(object.entity());
    living.byIdentifier.erase(object.id);
    const auto found = living.byRow.find(object.row);
    if (found != living.byRow.end() && found->second == &object)
        living.byRow.erase(found);
}

void ManagedObjectContext::detach(ManagedObject &object)
{
    forget(object);
    object.owner = nullptr;
    object.state = ManagedObject::State::Detached;
}

// Queries.

QByteArray ManagedObjectContext::orderOf(const EntityDescription &entity,
                                         const SortDescriptors &descriptors) const
{
    return fetchsql::order(entity, descriptors);
}

ManagedObjectContext::Query ManagedObjectContext::query(const FetchRequest &request, const QByteArray &result)
{
    // What fails to be written stays in memory and is reported by the next save; the query still runs.
    write().ignore();
    const EntityDescription &entity = objectModel.requireEntity(request.entityName);
    SqlFragment made = fetchsql::select(objectModel, request, result, keptRows(entity));
    return {std::move(made.text), std::move(made.bindings)};
}

QByteArray ManagedObjectContext::keptRows(const EntityDescription &entity) const
{
    QByteArrayList rows;
    for (const ObjectPtr &object : waiting) {
        if (object->isDeleted() && &object->entity() == &entity)
            rows.append(QByteArray::number(object->rowId()));
    }
    return rows.isEmpty() ? QByteArray() : "row.rowid NOT IN (" + rows.join(',') + ')';
}

sqlite::Statement ManagedObjectContext::run(const Query &query)
{
    if (database->isAutocommit())
        takeInChangesFromElsewhere();
    sqlite::Statement statement = database->prepare(query.text);
    statement.bind(query.bindings);
    return statement;
}

void ManagedObjectContext::logFailure(const sqlite::Statement &statement, const FetchRequest &request) const
{
    constexpr int done = 101; // SQLITE_DONE
    constexpr int row = 100;  // SQLITE_ROW
    if (statement.isValid() && (statement.code() == done || statement.code() == row))
        return;
    const Error error = database->lastError(QString::fromStdString(request.entityName));
    Log::line(QStringLiteral("%1 %2 %3").arg(request.failureText, error.message, error.domain));
}

ObjectListBase ManagedObjectContext::fetchObjects(const FetchRequest &request)
{
    const EntityDescription &entity = objectModel.requireEntity(request.entityName);
    Query fetch = query(request, "row.rowid");
    fetch.text += orderOf(entity, request.sortDescriptors);
    if (request.limit >= 0)
        fetch.text += " LIMIT " + QByteArray::number(request.limit);
    std::vector<RowId> rows;
    sqlite::Statement statement = run(fetch);
    while (statement.step())
        rows.push_back(statement.integer(0));
    logFailure(statement, request);
    return ObjectListBase(*this, entity, std::move(rows));
}

int ManagedObjectContext::count(const FetchRequest &request)
{
    const Query counting = query(request, "COUNT(*)");
    sqlite::Statement statement = run(counting);
    const bool hasRow = statement.step();
    logFailure(statement, request);
    return hasRow ? static_cast<int>(statement.integer(0)) : 0;
}

void ManagedObjectContext::visit(const FetchRequest &request, const std::vector<std::string> &columns,
                                 const std::function<void(const RowReader &)> &visitor)
{
    const EntityDescription &entity = objectModel.requireEntity(request.entityName);
    Query visited = query(request, fetchsql::rowResult(columns));
    if (!request.sortDescriptors.empty())
        visited.text += orderOf(entity, request.sortDescriptors);
    if (request.limit >= 0)
        visited.text += " LIMIT " + QByteArray::number(request.limit);
    sqlite::Statement statement = run(visited);
    const RowReader reader(statement);
    while (statement.step())
        visitor(reader);
    logFailure(statement, request);
}

std::optional<double> ManagedObjectContext::maximum(const FetchRequest &request, const std::string &column)
{
    const Query asked = query(request, "MAX(row." + quoted(column) + ")");
    sqlite::Statement statement = run(asked);
    const bool hasRow = statement.step();
    logFailure(statement, request);
    return hasRow && !statement.isNull(0) ? std::optional(statement.number(0)) : std::nullopt;
}
