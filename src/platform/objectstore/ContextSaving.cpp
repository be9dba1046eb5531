#include "foundation/Clock.h"
#include "foundation/Log.h"
#include "objectstore/ChangeJournal.h"
#include "objectstore/ChangeWriter.h"
#include "objectstore/ManagedObjectContext.h"

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

bool ManagedObjectContext::hasChanges() const
{
    return !changed.empty();
}

OptionalError ManagedObjectContext::begin()
{
    if (!database->isAutocommit())
        return std::nullopt;
    if (auto error = database->execute("BEGIN IMMEDIATE"))
        return error;
    takeInChangesFromElsewhere();
    if (currentAuthor == ChangeAuthor::User)
        journal->startCapture();
    return std::nullopt;
}

OptionalError ManagedObjectContext::write()
{
    if (waiting.empty() || isWriting)
        return std::nullopt;
    if (auto error = begin())
        return error;
    isWriting = true;
    const bool isWritten = ChangeWriter(*this).write();
    isWriting = false;
    if (isWritten)
        return std::nullopt;
    const Error error = database->lastError(QStringLiteral("Cannot write to %1").arg(filePath));
    rollBack();
    return error;
}

void ManagedObjectContext::rollBack()
{
    journal->stopCapture();
    if (!database->isAutocommit())
        database->execute("ROLLBACK");
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
    if (changed.empty())
        return std::nullopt;
    if (auto error = write())
        return error;
    if (auto error = commit()) {
        rollBack();
        return error;
    }
    const ChangeList changes = finishSave();
    if (saveHandler && !changes.isEmpty())
        saveHandler(changes);
    return std::nullopt;
}

OptionalError ManagedObjectContext::commit()
{
    if (auto error = begin())
        return error;
    if (auto error = writeFollowUps())
        return error;
    if (auto error = journal->record())
        return error;
    if (auto error = database->execute("COMMIT"))
        return error;
    journal->stopCapture();
    mustClearFollowUps = false;
    skipsNextFollowUp = false;
    return std::nullopt;
}

OptionalError ManagedObjectContext::writeFollowUps()
{
    if (mustClearFollowUps) {
        if (auto error = database->execute("DELETE FROM ObjectStoreFollowUp"))
            return error;
    }
    for (const ObjectPtr &object : changed) {
        if (skipsNextFollowUp || !object->entity().isFollowedUp())
            continue;
        sqlite::Statement statement = database->prepare("INSERT OR IGNORE INTO ObjectStoreFollowUp VALUES (?, ?)");
        if (!statement.bind(QString::fromUtf8(object->entity().table())).bind(object->id).run())
            return database->lastError(QStringLiteral("Cannot write to %1").arg(filePath));
    }
    return std::nullopt;
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
    }
    return changes;
}

void ManagedObjectContext::reset()
{
    journal->stopCapture();
    if (!database->isAutocommit())
        database->execute("ROLLBACK");
    waiting.clear();
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
    for (Population &one : populations) {
        for (auto &[id, object] : one.byIdentifier) {
            if (!object->isInserted())
                object->isLoaded = false;
        }
    }
}

void ManagedObjectContext::takeInChangesFromElsewhere()
{
    const qint64 version = database->queryInteger("PRAGMA data_version");
    if (version == dataVersion)
        return;
    dataVersion = version;
    // Changed objects keep what was changed in memory; everything else is read anew.
    refreshAllObjects();
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
    if (auto error = save())
        return error;
    if (auto error = database->execute("BEGIN IMMEDIATE"))
        return error;
    takeInChangesFromElsewhere();
    auto applied = journal->apply(direction);
    OptionalError error = applied ? database->execute("COMMIT") : OptionalError(applied.error());
    if (error) {
        if (!database->isAutocommit())
            database->execute("ROLLBACK");
        return error;
    }
    refreshAllObjects();
    const ChangeList changes = changesOf(*applied);
    if (saveHandler && !changes.isEmpty())
        saveHandler(changes);
    return std::nullopt;
}

ChangeList ManagedObjectContext::changesOf(const std::vector<AppliedChange> &applied)
{
    ChangeList changes;
    for (const AppliedChange &one : applied) {
        if (one.kind == AppliedChange::Kind::Deleted)
            changes.deleted.push_back(goneObject(*one.entity, one.identifier));
        else if (const ObjectPtr found = object(one.entity->name(), one.identifier))
            (one.kind == AppliedChange::Kind::Inserted ? changes.inserted : changes.updated).push_back(found);
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
