#include "foundation/Clock.h"
#include "foundation/Log.h"
#include "objectstore/ChangeJournal.h"
#include "objectstore/ChangeWriter.h"
#include "objectstore/ManagedObjectContext.h"
#include "objectstore/SqlText.h"
#include "objectstore/SubstringIndex.h"

#include <map>

// The unit of work of a context: from the first change to the commit, and what follows it.

void ManagedObjectContext::noteChange(ManagedObject &object)
{
    if (!object.isNotedAsChanged) {
        object.isNotedAsChanged = true;
        changed.push_back(object.shared_from_this());
    }
    if (!object.isWaitingForWrite) {
        object.isWaitingForWrite = true;
        waiting.push_back(object.shared_from_this());
    }
}

void ManagedObjectContext::noteTouched(std::string_view entityName, const Value &id)
{
    const EntityDescription &entity = objectModel.requireEntity(entityName);
    const auto *identifierText = std::get_if<QString>(&id);
    if (identifierText && entity.isFollowedUp())
        touched.emplace(&entity, *identifierText);
}

bool ManagedObjectContext::hasChanges() const
{
    return !changed.empty() || !rowDeletions.empty();
}

void ManagedObjectContext::processPendingChanges()
{
    // A failure stays with the changes and is reported by the next save.
    if (std::exchange(mustApplyDeleteRules, false))
        write();
}

void ManagedObjectContext::setAuthor(ChangeAuthor author)
{
    if (author == currentAuthor)
        return;
    // A failure stays with the changes and is reported by the next save.
    write();
    currentAuthor = author;
    if (!isInTransaction)
        return;
    if (author == ChangeAuthor::User)
        journal->startCapture();
    else
        journal->pauseCapture();
}

Error ManagedObjectContext::failure(const char *attempt) const
{
    return database->lastError(
        QStringLiteral("Cannot %1 the store %2").arg(QLatin1String(attempt), filePath));
}

OptionalError ManagedObjectContext::begin()
{
    if (isInTransaction)
        return std::nullopt;
    if (database->execute("BEGIN IMMEDIATE"))
        return failure("write to");
    isInTransaction = true;
    takeInChangesFromElsewhere();
    if (currentAuthor == ChangeAuthor::User)
        journal->startCapture();
    return std::nullopt;
}

OptionalError ManagedObjectContext::write()
{
    if (isWriting)
        return std::nullopt;
    // What was written before a transaction that ended by itself must be written again.
    if (isInTransaction && database->isAutocommit())
        rollBack();
    // What is written stands before what waits; there can be very many of them.
    const bool hasRowDeletions = !rowDeletions.empty() && !rowDeletions.back().isWritten;
    if (waiting.empty() && !hasRowDeletions)
        return std::nullopt;
    if (auto error = begin())
        return error;
    // After a failure all of them come again, and before what was written behind them.
    if (auto error = deleteWaitingRows()) {
        rollBack();
        return error;
    }
    isWriting = true;
    const int code = ChangeWriter(*this).write();
    isWriting = false;
    if (code == sqlite::success) {
        mustApplyDeleteRules = false;
        return std::nullopt;
    }
    const Error error = sqlite::error(code, QStringLiteral("Cannot write to the store %1").arg(filePath));
    rollBack();
    return error;
}

OptionalError ManagedObjectContext::deleteWaitingRows()
{
    const auto isWritten = [](const RowDeletion &one) { return one.isWritten; };
    auto one = std::find_if(rowDeletions.rbegin(), rowDeletions.rend(), isWritten).base();
    for (; one != rowDeletions.end(); ++one) {
        sqlite::Statement statement = database->prepare(one->query.text);
        if (!statement.bind(one->query.bindings).run())
            return failure("write to");
        one->isWritten = true;
    }
    return std::nullopt;
}

void ManagedObjectContext::rollBack()
{
    for (RowDeletion &one : rowDeletions)
        one.isWritten = false;
    journal->stopCapture();
    if (!database->isAutocommit())
        database->execute("ROLLBACK");
    isInTransaction = false;
    waiting.clear();
    for (const ObjectPtr &object : changed) {
        object->isRowWritten = false;
        object->changedSinceWrite = object->changedSinceSave;
        for (auto &changes : object->joinChanges)
            changes.isWritten = false;
        object->isWaitingForWrite = true;
        waiting.push_back(object);
    }
}

OptionalError ManagedObjectContext::save()
{
    if (!hasChanges() || saveGroups > 0)
        return std::nullopt;
    if (auto error = write())
        return error;
    if (auto error = commit()) {
        rollBack();
        return error;
    }
    const ChangeList changes = finishSave();
    tell(changes);
    return std::nullopt;
}

void ManagedObjectContext::tell(const ChangeList &changes) const
{
    // The handler may set another one.
    const SaveHandler handler = saveHandler;
    if (handler && !changes.isEmpty())
        handler(changes);
}

OptionalError ManagedObjectContext::commit()
{
    if (auto error = begin())
        return error;
    if (auto error = writeFollowUps())
        return error;
    if (auto error = journal->record())
        return error;
    if (auto error = commitTransaction())
        return error;
    journal->stopCapture();
    mustClearFollowUps = false;
    skipsNextFollowUp = false;
    return std::nullopt;
}

OptionalError ManagedObjectContext::commitTransaction()
{
    bool isDone = !database->execute("COMMIT");
    if (!isDone && database->lastCode() == sqlite::missingReference) {
        // An object that is named here was deleted elsewhere. The name goes, and everything else is saved.
        if (auto error = clearReferencesToMissing())
            return error;
        isDone = !database->execute("COMMIT");
    }
    if (!isDone)
        return failure("save");
    isInTransaction = false;
    return std::nullopt;
}

OptionalError ManagedObjectContext::clearReferencesToMissing()
{
    for (const ObjectPtr &object : changed) {
        if (object->isDeleted())
            continue;
        const EntityDescription &entity = object->entity();
        for (const RelationshipDescription &relationship : entity.relationships()) {
            const QByteArray missing =
                " NOT IN (SELECT \"id\" FROM " + quoted(objectModel.destinationOf(relationship).name()) + ')';
            QByteArray sql;
            if (relationship.cardinality == Cardinality::ToOne) {
                const QByteArray column = quoted(relationship.name);
                sql = "UPDATE " + quoted(entity.name()) + " SET " + column + " = NULL WHERE \"id\" = ? AND " +
                      column + missing;
            } else if (relationship.cardinality == Cardinality::ToManyOwningJoin) {
                sql = "DELETE FROM \"" + objectModel.joinTable(entity, relationship).table +
                      "\" WHERE source = ? AND target" + missing;
            } else {
                continue;
            }
            sqlite::Statement statement = database->prepare(sql);
            if (!statement.bind(object->id).run())
                return failure("save");
        }
        object->isLoaded = false;
    }
    return std::nullopt;
}

OptionalError ManagedObjectContext::writeFollowUps()
{
    if (mustClearFollowUps && database->execute("DELETE FROM ObjectStoreFollowUp"))
        return failure("write to");
    if (skipsNextFollowUp)
        return std::nullopt;
    sqlite::Statement statement =
        database->prepare("INSERT OR IGNORE INTO ObjectStoreFollowUp VALUES (?, ?)");
    const auto remember = [&statement](const EntityDescription &entity, const QString &id) {
        statement.reset();
        return statement.bind(QString::fromUtf8(entity.table())).bind(id).run();
    };
    for (const ObjectPtr &object : changed) {
        if (object->entity().isFollowedUp() && !remember(object->entity(), object->id))
            return failure("write to");
    }
    for (const auto &[entity, id] : touched) {
        if (!remember(*entity, id))
            return failure("write to");
    }
    return std::nullopt;
}

/// So many rows at a time are not felt.
static constexpr int substringRowsAtOnce = 1000;

bool ManagedObjectContext::tendSubstringIndexes()
{
    if (isWriting)
        return false;
    bool isMoreLeft = false;
    for (const EntityDescription &entity : objectModel.entities()) {
        const auto index = SubstringIndex::of(entity);
        if (!index || !index->hasWaitingRows(*database))
            continue;
        // Within an open unit of work it becomes a part of that.
        const bool isOwn = database->isAutocommit();
        if (isOwn && database->execute("BEGIN IMMEDIATE"))
            continue;
        auto taken = index->takeIn(*database, substringRowsAtOnce);
        const bool isDone = taken && (!isOwn || !database->execute("COMMIT"));
        if (!isDone && isOwn && !database->isAutocommit())
            database->execute("ROLLBACK");
        isMoreLeft = isMoreLeft || (isDone && *taken == substringRowsAtOnce);
    }
    return isMoreLeft;
}

std::vector<ObjectPtr> ManagedObjectContext::unfinishedFollowUps()
{
    std::vector<ObjectPtr> objects;
    sqlite::Statement statement = database->prepare("SELECT entity, id FROM ObjectStoreFollowUp");
    while (statement.step()) {
        if (const ObjectPtr found = object(statement.text(0).toStdString(), statement.text(1)))
            objects.push_back(found);
    }
    return objects;
}

ChangeList ManagedObjectContext::finishSave()
{
    ChangeList changes;
    rowDeletions.clear();
    for (const ObjectPtr &object : std::exchange(changed, {})) {
        const bool wasInserted = object->isInserted();
        if (object->isDeleted()) {
            if (!object->wasInserted)
                changes.deleted.push_back(object);
            detach(*object);
        } else {
            (wasInserted ? changes.inserted : changes.updated).push_back(object);
            object->state = ManagedObject::State::Persistent;
        }
        object->changedSinceSave.reset();
        object->joinChanges.clear();
        object->isRowWritten = false;
        object->isNotedAsChanged = false;
        touched.erase({&object->entity(), object->id});
    }
    for (const auto &[entity, id] : std::exchange(touched, {})) {
        if (const ObjectPtr found = object(entity->name(), id))
            changes.updated.push_back(found);
    }
    return changes;
}

void ManagedObjectContext::reset()
{
    journal->stopCapture();
    if (!database->isAutocommit())
        database->execute("ROLLBACK");
    isInTransaction = false;
    mustApplyDeleteRules = false;
    waiting.clear();
    rowDeletions.clear();
    touched.clear();
    for (const ObjectPtr &object : std::exchange(changed, {})) {
        const bool isNew = object->isInserted() || object->wasInserted;
        object->changedSinceSave.reset();
        object->changedSinceWrite.reset();
        object->joinChanges.clear();
        object->isNotedAsChanged = false;
        object->isWaitingForWrite = false;
        object->isLoaded = false;
        if (isNew)
            detach(*object);
        else
            object->state = ManagedObject::State::Persistent;
    }
    refreshAllObjects();
}

void ManagedObjectContext::refreshAllObjects()
{
    forEachObject([](ManagedObject &object) {
        if (!object.isInserted())
            object.isLoaded = false;
    });
}

void ManagedObjectContext::takeInChangesFromElsewhere()
{
    const qint64 version = database->queryInteger("PRAGMA data_version");
    if (version == dataVersion)
        return;
    dataVersion = version;
    // Another process may have given a row's number to another row.
    for (Population &one : populations)
        one.byRow.clear();
    // Changed objects keep what was changed in memory, or all of it if the whole object is to win; everything
    // else is read anew.
    const bool keepsChangedObjects = mergePolicy == MergePolicy::Overwrite;
    forEachObject([keepsChangedObjects](ManagedObject &object) {
        if (!object.isInserted() && !(keepsChangedObjects && object.hasChanges()))
            object.isLoaded = false;
    });
}

// Undo.

bool ManagedObjectContext::canUndo()
{
    return journal->hasEntry(ChangeJournal::Direction::Undo);
}

bool ManagedObjectContext::canRedo()
{
    return journal->hasEntry(ChangeJournal::Direction::Redo);
}

OptionalError ManagedObjectContext::undo()
{
    return revert(ChangeJournal::Direction::Undo);
}

OptionalError ManagedObjectContext::redo()
{
    return revert(ChangeJournal::Direction::Redo);
}

OptionalError ManagedObjectContext::revert(ChangeJournalDirection direction)
{
    // The save handler can leave changes of its own, but not for ever.
    for (int round = 0; round < 2 && hasChanges(); ++round) {
        if (auto error = save())
            return error;
    }
    if (isInTransaction || database->execute("BEGIN IMMEDIATE"))
        return failure("write to");
    takeInChangesFromElsewhere();
    OptionalError error;
    if (mustClearFollowUps)
        error = database->execute("DELETE FROM ObjectStoreFollowUp");
    const auto nextRow = [this](const EntityDescription &entity) {
        return ChangeWriter(*this).nextRow(entity);
    };
    auto applied = error ? Result<std::vector<AppliedChange>>(*error) : journal->apply(direction, nextRow);
    error = applied ? database->execute("COMMIT") : OptionalError(applied.error());
    if (error) {
        if (!database->isAutocommit())
            database->execute("ROLLBACK");
        return error;
    }
    mustClearFollowUps = false;
    refreshAllObjects();
    tell(changesOf(*applied));
    return std::nullopt;
}

ChangeList ManagedObjectContext::changesOf(const std::vector<AppliedChange> &applied)
{
    // A row comes once for itself and once for each of its pairs; what happened to itself counts.
    std::map<std::pair<const EntityDescription *, QString>, AppliedChange::Kind> kinds;
    for (const AppliedChange &one : applied) {
        const auto [place, isNew] = kinds.try_emplace({one.entity, one.identifier}, one.kind);
        if (!isNew && one.kind != AppliedChange::Kind::Updated)
            place->second = one.kind;
    }
    ChangeList changes;
    for (const AppliedChange &one : applied) {
        const auto kind = kinds.extract({one.entity, one.identifier});
        if (kind.empty())
            continue;
        if (kind.mapped() == AppliedChange::Kind::Deleted)
            changes.deleted.push_back(goneObject(*one.entity, one.identifier));
        else if (const ObjectPtr found = object(one.entity->name(), one.identifier))
            (kind.mapped() == AppliedChange::Kind::Inserted ? changes.inserted : changes.updated)
                .push_back(found);
    }
    return changes;
}

ObjectPtr ManagedObjectContext::goneObject(const EntityDescription &entity, const QString &id)
{
    auto &living = population(entity).byIdentifier;
    const auto found = living.find(id);
    if (found != living.end()) {
        ObjectPtr object = found->second->shared_from_this();
        detach(*object);
        return object;
    }
    ObjectPtr object = entity.makeObject();
    object->description = &entity;
    object->id = id;
    return object;
}
