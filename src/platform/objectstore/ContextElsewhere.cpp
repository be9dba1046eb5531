#include "foundation/Log.h"
#include "foundation/MainLoop.h"
#include "objectstore/ChangeJournal.h"
#include "objectstore/ChangeWriter.h"
#include "objectstore/ManagedObjectContext.h"
#include "objectstore/RowsFromElsewhere.h"

// What other connections have written to the store.

void ManagedObjectContext::lookForChangesFromElsewhere()
{
    if (!isInTransaction)
        takeInChangesFromElsewhere();
}

void ManagedObjectContext::tellOfChangesFromElsewhere()
{
    if (std::exchange(isElsewhereUntold, false))
        tell({ChangeAuthor::Replication, {}, {}, {}, true});
}

/// Who hears of it asks the store in turn, so that it is told later.
void ManagedObjectContext::takeInChangesFromElsewhere()
{
    const qint64 version = database->queryInteger("PRAGMA data_version");
    if (version == dataVersion)
        return;
    dataVersion = version;
    if (!std::exchange(isElsewhereUntold, true)) {
        MainLoop::performDelayed(Seconds(0), [living = std::weak_ptr(self)] {
            if (const auto context = living.lock())
                (*context)->tellOfChangesFromElsewhere();
        });
    }
    // Another process may have given a row's number to another row.
    for (Population &one : populations) {
        one.byRow.clear();
        one.changed.noteAll();
    }
    // Changed objects keep what was changed in memory, or all of it if the whole object is to win; everything
    // else is read anew.
    const bool keepsChangedObjects = mergePolicy == MergePolicy::Overwrite;
    forEachObject([keepsChangedObjects](ManagedObject &object) {
        if (!object.isInserted() && !(keepsChangedObjects && object.hasChanges()))
            object.isLoaded = false;
    });
}

bool ManagedObjectContext::takeInRowsFromElsewhere(int limit)
{
    if (!isFree() || !rowsfromelsewhere::isAnyThere(*database))
        return false;
    const Transaction taking(*this, ChangeAuthor::Replication);
    StoreChanges changes;
    bool isMoreLeft = false;
    OptionalError error = begin();
    if (!error)
        error = applyRowsFromElsewhere(limit, changes, isMoreLeft);
    if (error) {
        Log::line(error->message);
        giveUpEffects();
        rollBack();
        return false;
    }
    finishCommit();
    tell(changes);
    return isMoreLeft;
}

OptionalError ManagedObjectContext::applyRowsFromElsewhere(int limit, StoreChanges &changes, bool &isMoreLeft)
{
    auto rows = rowsfromelsewhere::take(*database, limit);
    if (!rows)
        return rows.error();
    isMoreLeft = rows->size() == static_cast<size_t>(limit);
    changes.author = author();
    for (const RowFromElsewhere &row : *rows) {
        const EntityDescription *entity = objectModel.entityOfTable(row.table.toStdString());
        if (!entity)
            continue;
        if (const ObjectPtr found = object(entity->name(), row.identifier); found && loadValues(*found))
            changes.updated.push_back({found, {}});
        else
            changes.deleted.push_back(goneObject(*entity, row.identifier, row.row));
    }
    return commitRows(changes);
}

Result<StoreChanges> ManagedObjectContext::changeRows(const RowChanges &change)
{
    return changeRows(change, true);
}

Result<StoreChanges> ManagedObjectContext::changeManyRows(const RowChanges &change)
{
    return changeRows(change, false);
}

Result<StoreChanges> ManagedObjectContext::changeRows(const RowChanges &change, bool isTold)
{
    if (!isFree())
        return Error{QStringLiteral("store"), 0, QStringLiteral("The store is being changed")};
    const Transaction changing(*this, ChangeAuthor::Replication);
    StoreChanges changes;
    OptionalError error = begin();
    if (!isTold) {
        pauseCapture();
        journal->stopCapture();
    }
    if (!error) {
        auto applied = change(*database, [this](const EntityDescription &entity) {
            return ChangeWriter(*this).nextRow(entity);
        });
        if (applied) {
            refreshAllObjects();
            changes = changesOf(*applied);
            changes.isUnknown = !isTold;
            error = commitRows(changes);
        } else {
            error = applied.error();
        }
    }
    if (error) {
        giveUpEffects();
        rollBack();
        refreshAllObjects();
        return *error;
    }
    finishCommit();
    tell(changes);
    return changes;
}
