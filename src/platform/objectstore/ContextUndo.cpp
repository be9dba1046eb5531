#include "objectstore/ChangeHistory.h"
#include "objectstore/ChangeJournal.h"
#include "objectstore/ChangeWriter.h"
#include "objectstore/ManagedObjectContext.h"

#include <map>

// Undo and redo: commits that take back a former one.

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

QString ManagedObjectContext::undoName()
{
    return journal->nameOf(ChangeJournal::Direction::Undo);
}

QString ManagedObjectContext::redoName()
{
    return journal->nameOf(ChangeJournal::Direction::Redo);
}

std::vector<RecordedSave> ManagedObjectContext::historyOf(const ManagedObject &object)
{
    return ChangeHistory(*database, objectModel).of(object);
}

OptionalError ManagedObjectContext::revert(ChangeJournalDirection direction)
{
    // The effects can leave changes of their own, but not for ever.
    for (int round = 0; round < 2 && hasWork(); ++round) {
        if (auto error = save())
            return error;
    }
    if (isInTransaction)
        return failure("write to");
    Transaction step(*this, ChangeAuthor::Undo);
    if (auto error = begin())
        return error;
    StoreChanges changes;
    if (auto error = applyEntry(direction, changes)) {
        giveUpEffects();
        rollBack();
        refreshAllObjects();
        return error;
    }
    finishCommit();
    tell(changes);
    return std::nullopt;
}

OptionalError ManagedObjectContext::applyEntry(ChangeJournalDirection direction, StoreChanges &changes)
{
    const auto nextRow = [this](const EntityDescription &entity) {
        return ChangeWriter(*this).nextRow(entity);
    };
    auto applied = journal->apply(direction, nextRow);
    if (!applied)
        return applied.error();
    refreshAllObjects();
    changes = changesOf(applied->rows);
    if (auto error = writeOutbox(applied->outside))
        return error;
    return commitRows(changes);
}

OptionalError ManagedObjectContext::commitRows(const StoreChanges &changes)
{
    if (auto error = writeEffects(changes))
        return error;
    if (auto error = writeOutbox(posted))
        return error;
    if (auto error = journal->recordInHistory(author()))
        return error;
    if (auto error = commitTransaction())
        return error;
    endCapture();
    posted.clear();
    return std::nullopt;
}

StoreChanges ManagedObjectContext::changesOf(const std::vector<AppliedChange> &applied)
{
    // A row comes once for itself and once for each of its pairs; what happened to itself counts.
    struct Known
    {
        AppliedChange::Kind kind;
        ManagedObject::ColumnSet columns;
        RowId row;
    };
    std::map<std::pair<const EntityDescription *, QString>, Known> rows;
    for (const AppliedChange &one : applied) {
        const auto [place, isNew] = rows.try_emplace({one.entity, one.identifier}, Known{one.kind, {}, 0});
        place->second.columns |= one.columns;
        place->second.row = std::max(place->second.row, one.row);
        if (!isNew && one.kind != AppliedChange::Kind::Updated)
            place->second.kind = one.kind;
    }
    StoreChanges changes;
    changes.author = author();
    for (const AppliedChange &one : applied) {
        const auto known = rows.extract({one.entity, one.identifier});
        if (known.empty())
            continue;
        const Known &row = known.mapped();
        if (row.kind == AppliedChange::Kind::Deleted)
            changes.deleted.push_back(goneObject(*one.entity, one.identifier, row.row));
        else if (const ObjectPtr found = object(one.entity->name(), one.identifier); !found)
            continue;
        else if (row.kind == AppliedChange::Kind::Inserted)
            changes.inserted.push_back(found);
        else
            changes.updated.push_back({found, row.columns});
    }
    return changes;
}

ObjectPtr ManagedObjectContext::goneObject(const EntityDescription &entity, const QString &id, RowId row)
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
    object->row = row;
    return object;
}
