#include "foundation/MainLoop.h"
#include "objectstore/ChangeJournal.h"
#include "objectstore/ChangeWriter.h"
#include "objectstore/ManagedObjectContext.h"
#include "objectstore/SqlText.h"
#include "objectstore/SubstringIndex.h"

#include <QScopedValueRollback>

static bool canBeUndone(ChangeAuthor author)
{
    return author == ChangeAuthor::User || author == ChangeAuthor::Import;
}

/// What the program does on its own is of no interest to anybody.
static bool isInHistory(ChangeAuthor author)
{
    return author != ChangeAuthor::Program;
}

// The unit of work of a context: from the first change to the commit, and what follows it.

void ManagedObjectContext::noteChange(ManagedObject &object)
{
    population(object.entity()).changed.note(object);
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
    if (identifierText && entity.followsLinks())
        touched.emplace(&entity, *identifierText);
}

bool ManagedObjectContext::hasChanges() const
{
    return !changed.empty() || !rowDeletions.empty();
}

bool ManagedObjectContext::hasWork() const
{
    return hasChanges() || !finishing.empty() || (effects && effects->hasWork());
}

void ManagedObjectContext::processPendingChanges()
{
    // A failure stays with the changes and is reported by the next save.
    if (std::exchange(mustApplyDeleteRules, false))
        write().ignore();
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
    if (isInHistory(author()))
        journal->startCapture();
    if (canBeUndone(author()))
        journal->setCapturing(!isJournalPaused);
    if (commitLog)
        commitLog->transactionBegan(*database, journal->isCapturing());
    return std::nullopt;
}

void ManagedObjectContext::pauseCapture()
{
    journal->setCapturing(false);
    if (commitLog && isInTransaction)
        commitLog->captureEnds();
}

void ManagedObjectContext::endCapture()
{
    journal->stopCapture();
    if (commitLog)
        commitLog->transactionEnded();
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
    endCapture();
    if (!database->isAutocommit())
        database->rollBack();
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

void ManagedObjectContext::afterTransaction(std::function<void()> block)
{
    if (!openTransaction)
        return block();
    afterTransactions.push_back(std::move(block));
}

void ManagedObjectContext::transactionEnded()
{
    if (afterTransactions.empty())
        return;
    MainLoop::performDelayed(Seconds(0), [living = std::weak_ptr(self)] {
        // A block may open a transaction, or end the context.
        const auto context = [&living] {
            const auto alive = living.lock();
            return alive ? *alive : nullptr;
        };
        if (!context())
            return;
        for (auto &block : std::exchange(context()->afterTransactions, {})) {
            if (!context())
                return;
            context()->afterTransaction(std::move(block));
        }
    });
}

OptionalError ManagedObjectContext::save()
{
    return openTransaction ? std::nullopt : commitAll();
}

OptionalError ManagedObjectContext::commitAll()
{
    if (!hasWork())
        return std::nullopt;
    if (auto error = write())
        return error;
    const StoreChanges changes = pendingChanges();
    OptionalError error = writeEffects(changes);
    if (!error)
        error = commit();
    if (error) {
        giveUpEffects();
        rollBack();
        return error;
    }
    finishCommit();
    tell(changes);
    return std::nullopt;
}

OptionalError ManagedObjectContext::writeEffects(const StoreChanges &changes)
{
    if (auto error = begin())
        return error;
    if (!effects)
        return std::nullopt;
    const QScopedValueRollback guard(isWritingEffects, true);
    effects->willCommit(*this, changes);
    return write();
}

/// The effects come anew with the next commit.
void ManagedObjectContext::giveUpEffects()
{
    posted.clear();
    const auto isDerived = [](const ObjectPtr &object) { return object->entity().isDerived(); };
    std::erase_if(waiting, isDerived);
    std::erase_if(rowDeletions, [](const RowDeletion &one) { return one.isEffect; });
    for (const ObjectPtr &object : changed) {
        if (!isDerived(object))
            continue;
        object->changedSinceSave.reset();
        object->changedSinceWrite.reset();
        object->isNotedAsChanged = false;
        object->isWaitingForWrite = false;
        object->isLoaded = false;
        if (object->isInserted() || object->wasInserted)
            detach(*object);
        else
            object->state = ManagedObject::State::Persistent;
    }
    std::erase_if(changed, isDerived);
}

void ManagedObjectContext::tell(const StoreChanges &changes)
{
    if (effects)
        effects->didCommit(*this, changes);
}

OptionalError ManagedObjectContext::commit()
{
    if (auto error = begin())
        return error;
    if (auto error = writeOutbox(posted))
        return error;
    if (auto error = deleteFromOutbox(finishing))
        return error;
    if (canBeUndone(author())) {
        const QString name = openTransaction ? openTransaction->name() : QString();
        const auto step = openTransaction ? openTransaction->step() : std::nullopt;
        if (auto error = journal->record(author(), name, posted, step))
            return error;
    } else if (auto error = journal->recordInHistory(author())) {
        return error;
    }
    if (auto error = commitTransaction())
        return error;
    endCapture();
    posted.clear();
    finishing.clear();
    return std::nullopt;
}

OptionalError ManagedObjectContext::commitTransaction()
{
    const auto writeLog = [this] {
        return commitLog ? commitLog->willCommit(*database, journal->captured()) : OptionalError();
    };
    if (auto error = writeLog())
        return error;
    bool isDone = !database->execute("COMMIT");
    if (!isDone && database->lastCode() == sqlite::missingReference) {
        // An object that is named here was deleted elsewhere. The name goes, and everything else is saved.
        if (auto error = clearReferencesToMissing())
            return error;
        journal->captureWentOn();
        if (auto error = writeLog())
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

OptionalError ManagedObjectContext::writeOutbox(const std::vector<OutboxEntry> &entries)
{
    if (entries.empty())
        return std::nullopt;
    sqlite::Statement statement = database->prepare(
        "INSERT INTO ObjectStoreOutbox (grouping, place, key, before, after, yields) VALUES "
        "(?, ?, ?, ?, ?, ?)");
    for (const OutboxEntry &entry : entries) {
        statement.reset();
        statement.bind(qint64(entry.group)).bind(entry.place).bind(entry.key);
        statement.bindBlob(entry.before).bindBlob(entry.after).bind(Value(entry.yields));
        if (!statement.run())
            return failure("write to");
    }
    return std::nullopt;
}

std::vector<OutboxEntry> ManagedObjectContext::pendingOutbox()
{
    std::vector<OutboxEntry> entries;
    sqlite::Statement statement = database->prepare("SELECT sequence, grouping, place, key, before, after, "
                                                    "yields FROM ObjectStoreOutbox ORDER BY sequence");
    const auto text = [&statement](int column) {
        return statement.isNull(column) ? std::nullopt : std::optional(statement.blob(column));
    };
    while (statement.step())
        entries.push_back({statement.integer(0), static_cast<int>(statement.integer(1)), statement.text(2),
                           statement.text(3), text(4), text(5), statement.integer(6) != 0});
    return entries;
}

void ManagedObjectContext::finishOutboxWithCommit(const std::vector<qint64> &sequences)
{
    finishing.insert(finishing.end(), sequences.begin(), sequences.end());
}

OptionalError ManagedObjectContext::deleteFromOutbox(const std::vector<qint64> &sequences)
{
    if (sequences.empty())
        return std::nullopt;
    sqlite::Statement statement = database->prepare("DELETE FROM ObjectStoreOutbox WHERE sequence = ?");
    const bool isDone = std::ranges::all_of(sequences, [&statement](qint64 sequence) {
        statement.reset();
        return statement.bind(sequence).run();
    });
    return isDone ? std::nullopt : OptionalError(failure("write to"));
}

OptionalError ManagedObjectContext::finishOutbox(const std::vector<qint64> &sequences)
{
    if (sequences.empty())
        return std::nullopt;
    // A power cut may bring them back, and carrying them out again changes nothing; so the disk is not
    // waited for.
    if (!database->isAutocommit())
        return deleteFromOutbox(sequences);
    OptionalError error;
    if (database->execute("PRAGMA synchronous = NORMAL; BEGIN IMMEDIATE"))
        error = failure("write to");
    if (!error)
        error = deleteFromOutbox(sequences);
    if (!error && database->execute("COMMIT"))
        error = failure("write to");
    if (!database->isAutocommit())
        database->rollBack();
    // Commits of the user are waited for, whatever became of this one.
    if (const auto unsafe = database->execute("PRAGMA synchronous = FULL"))
        error = error ? error : unsafe;
    return error;
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
            database->rollBack();
        isMoreLeft = isMoreLeft || (isDone && *taken == substringRowsAtOnce);
    }
    return isMoreLeft;
}

StoreChanges ManagedObjectContext::pendingChanges()
{
    StoreChanges changes;
    changes.author = author();
    auto links = touched;
    for (const ObjectPtr &object : changed) {
        if (object->entity().isDerived())
            continue;
        if (object->isDeleted()) {
            if (!object->wasInserted)
                changes.deleted.push_back(object);
        } else if (object->isInserted()) {
            changes.inserted.push_back(object);
        } else {
            changes.updated.push_back({object, object->changedSinceSave});
        }
        links.erase({&object->entity(), object->id});
    }
    for (const auto &[entity, id] : links) {
        if (const ObjectPtr found = object(entity->name(), id))
            changes.updated.push_back({found, {}});
    }
    return changes;
}

void ManagedObjectContext::finishCommit()
{
    rowDeletions.clear();
    touched.clear();
    for (const ObjectPtr &object : std::exchange(changed, {})) {
        if (object->isDeleted())
            detach(*object);
        else
            object->state = ManagedObject::State::Persistent;
        object->changedSinceSave.reset();
        object->joinChanges.clear();
        object->isRowWritten = false;
        object->isNotedAsChanged = false;
    }
}

void ManagedObjectContext::reset()
{
    endCapture();
    if (!database->isAutocommit())
        database->rollBack();
    isInTransaction = false;
    mustApplyDeleteRules = false;
    waiting.clear();
    rowDeletions.clear();
    touched.clear();
    posted.clear();
    finishing.clear();
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

const ChangedObjects &ManagedObjectContext::changedObjects(std::string_view entity)
{
    return population(objectModel.requireEntity(entity)).changed;
}

void ManagedObjectContext::refreshAllObjects()
{
    for (Population &one : populations)
        one.changed.noteAll();
    forEachObject([](ManagedObject &object) {
        if (!object.isInserted())
            object.isLoaded = false;
    });
}
