#pragma once

#include "foundation/Error.h"
#include "objectstore/ChangedObjects.h"
#include "objectstore/CommitLog.h"
#include "objectstore/FetchRequest.h"
#include "objectstore/ManagedObject.h"
#include "objectstore/ManagedObjectModel.h"
#include "objectstore/ObjectList.h"
#include "objectstore/Outbox.h"
#include "objectstore/Sqlite.h"
#include "objectstore/StoreChanges.h"
#include "objectstore/Transaction.h"

#include <functional>
#include <memory>
#include <set>
#include <unordered_map>
#include <vector>

class ChangeJournal;
enum class ChangeJournalDirection;
struct RecordedSave;
struct AppliedChange;
/// Gives a number for a row that comes into an entity's table.
using RowNumbering = std::function<RowId(const EntityDescription &)>;

/// What has to happen with each commit, whoever makes it. The context calls it; exceptions to an order are
/// not possible.
class CommitEffects
{
public:
    virtual ~CommitEffects() = default;

    /// Whether something waits to be posted to the outbox although no object has changed.
    virtual bool hasWork() const = 0;
    /// Inside of the transaction: may change rows of derived entities, and post to the outbox. Called once
    /// more after a commit that failed; what it did then is given up.
    virtual void willCommit(ManagedObjectContext &context, const StoreChanges &changes) = 0;
    /// After the commit. It may change objects; they belong to the next one.
    virtual void didCommit(ManagedObjectContext &context, const StoreChanges &changes) = 0;
};

/// What to do when a row was changed elsewhere since it was read. The numbers are those of the merge types.
enum class MergePolicy {
    /// The properties changed in memory win, one by one; all others are taken from the store.
    PropertyObjectTrump = 2,
    /// The whole object in memory overwrites the row.
    Overwrite = 3,
};

/// One row's columns as a query passes them on, without an object.
class RowReader
{
public:
    explicit RowReader(const sqlite::Statement &source)
        : statement(source)
    {}
    RowId rowId() const { return statement.integer(0); }
    bool isNull(int column) const { return statement.isNull(column + 1); }
    double number(int column) const { return statement.number(column + 1); }
    qint64 integer(int column) const { return statement.integer(column + 1); }
    QString text(int column) const { return statement.text(column + 1); }
    /// The bytes of a text, empty for an absent one; good until the next row.
    std::string_view utf8(int column) const { return statement.utf8(column + 1); }
    OptionalDate date(int column) const
    {
        return isNull(column) ? std::nullopt : OptionalDate(Date::fromReferenceSeconds(number(column)));
    }

private:
    const sqlite::Statement &statement;
};

/// A store and the objects that live in it: the unit of work between two saves.
///
/// Objects are changed in memory and written when a query needs to see them, inside one SQLite transaction
/// that `save` commits. A crash at any moment leaves the last save, whole. One object stands for a row at any
/// time. Main thread only.
class ManagedObjectContext
{
public:
    /// Opens the store at a path, making it if it is missing. A file that cannot be used is left as it is;
    /// the error says why. The model must outlive the context.
    static Result<std::unique_ptr<ManagedObjectContext>> open(const QString &path,
                                                              const ManagedObjectModel &model);
    /// What was not saved is given up.
    ~ManagedObjectContext();
    ManagedObjectContext(const ManagedObjectContext &) = delete;
    ManagedObjectContext &operator=(const ManagedObjectContext &) = delete;

    const ManagedObjectModel &model() const { return objectModel; }
    const QString &storeIdentifier() const { return identifier; }
    const QString &path() const { return filePath; }

    // Objects.
    /// A new object with a random identifier, in the store from the next save on.
    ObjectPtr insertObject(std::string_view entity);
    /// The same with an identifier of which the caller has seen that no object has it.
    ObjectPtr insertObject(std::string_view entity, const QString &identifier);
    template <typename T>
    std::shared_ptr<T> insert()
    {
        return std::static_pointer_cast<T>(insertObject(T::entityName));
    }
    /// Marks an object as deleted; what its relationships ask for happens with it. Null and a second call do
    /// nothing.
    void deleteObject(const ObjectPtr &object);
    /// Deletes the rows of a derived entity that pass, without making objects of them; a part of the unit of
    /// work like any other change. Its sort order and limit do not count.
    void deleteRows(const FetchRequest &request);
    /// The object of that identifier, or null if there is none.
    ObjectPtr object(std::string_view entity, const QString &identifier);
    /// The object of a URI of this store, or null.
    ObjectPtr objectForUri(const QString &uri);
    /// `x-morvane://<store uuid>/<Entity>/<id>`, also of an object that was deleted from this store.
    QString uriOf(const ManagedObject &object) const;

    // Queries. They see unsaved changes. One that fails gives nothing, with a line in the log.
    ObjectListBase fetchObjects(const FetchRequest &request);
    template <typename T>
    ObjectList<T> fetch(const FetchRequest &request)
    {
        return ObjectList<T>(fetchObjects(request));
    }
    template <typename T>
    std::shared_ptr<T> fetchFirst(FetchRequest request)
    {
        return fetch<T>(request.limitedTo(1)).first();
    }
    /// What a many-to-many relationship holds for each of some objects of one entity, read at once. One that
    /// has nothing there has no entry. The relationship must be one that the entity's own table of pairs
    /// keeps.
    std::unordered_map<const ManagedObject *, std::vector<ObjectPtr>>
    relatedObjects(const std::vector<ObjectPtr> &holders, std::string_view relationship);
    int count(const FetchRequest &request);
    /// Passes the wanted columns of each row to a visitor, without making objects; in any order if none is
    /// asked for.
    void visit(const FetchRequest &request, const std::vector<std::string> &columns,
               const std::function<void(const RowReader &)> &visitor);
    /// The greatest number in a column over the rows that pass, or absent without any.
    std::optional<double> maximum(const FetchRequest &request, const std::string &column);

    // The unit of work.
    bool hasChanges() const;
    /// Does what the relationships of deleted objects ask for, which otherwise waits for the next query or
    /// save.
    void processPendingChanges();
    /// Commits everything, or nothing: on an error the changes stay for the next save. Inside of an open
    /// `Transaction` it does nothing, since that one commits.
    [[nodiscard]] OptionalError save();
    /// Gives up all changes since the last save.
    void reset();
    /// Which objects of an entity were changed, by whomever, as far as this context knows by now.
    const ChangedObjects &changedObjects(std::string_view entity);
    /// Lets every unchanged object read its row anew at the next look.
    void refreshAllObjects();
    /// What every commit brings with it; null for nothing. It must live until it is replaced.
    void setCommitEffects(CommitEffects *wanted) { effects = wanted; }
    /// What writes each commit down for other replicas of the store; null for nothing. It must live until it
    /// is replaced. While a transaction is open, it cannot be replaced.
    void setCommitLog(CommitLog *wanted) { commitLog = wanted; }
    void setMergePolicy(MergePolicy policy) { mergePolicy = policy; }
    /// Who makes the changes at present.
    ChangeAuthor author() const { return openTransaction ? openTransaction->author() : ChangeAuthor::User; }
    /// The transaction that is open, or null.
    Transaction *transaction() const { return openTransaction; }
    /// Runs a block when no transaction is open: at once if there is none, else when the main loop comes
    /// round after its end. For what would meddle with a command that asks the user something.
    void afterTransaction(std::function<void()> block);
    /// Looks whether another process has written to the store. This is told when the main loop comes round;
    /// a query or a save that finds it has the same effect.
    void lookForChangesFromElsewhere();
    /// Tells of rows that other programs wrote to, also while no context was open: a commit of its own, of
    /// the author `Replication`, with at most so many of them as updated without columns, or deleted. Only
    /// entities that follow their links are told of, and only if a text or a link was written. While a
    /// transaction is open or something is to be saved, it does nothing. True if there are more.
    bool takeInRowsFromElsewhere(int limit);

    /// What changes rows without objects, and which it changed. It gets the open transaction.
    using RowChanges =
        std::function<Result<std::vector<AppliedChange>>(sqlite::Database &, const RowNumbering &)>;
    /// Changes rows without objects as a commit of its own of the author `Replication`, and gives what it
    /// changed. While a transaction is open or something is to be saved, it does nothing: see `isFree`.
    Result<StoreChanges> changeRows(const RowChanges &change);
    /// The same for so many rows that nobody is told of them one by one: the outcome says that everything may
    /// be different. The history keeps nothing of it.
    Result<StoreChanges> changeManyRows(const RowChanges &change);
    /// Whether nothing is under way that another commit would come between.
    bool isFree() const { return !openTransaction && !isInTransaction && !isWriting && !hasWork(); }
    /// The connection, for the store's own books. Rows of entities are not changed through it but by
    /// `changeRows`.
    sqlite::Database &connection() { return *database; }

    // The outbox: changes of things outside of the store that belong to a commit.
    /// Adds one to the commit that is under way. For `CommitEffects::willCommit`.
    void post(OutboxEntry entry) { posted.push_back(std::move(entry)); }
    /// What was committed and not yet carried out, in order.
    std::vector<OutboxEntry> pendingOutbox();
    /// Forgets entries that were carried out, or cannot be.
    [[nodiscard]] OptionalError finishOutbox(const std::vector<qint64> &sequences);
    /// The same as a part of the next commit, which does what they ask for.
    void finishOutboxWithCommit(const std::vector<qint64> &sequences);

    // Indexes of substrings follow the saves when there is time for it.
    /// Brings some of what was written since into them; true if there is more. Queries are right at any time;
    /// they are only slower the more waits.
    bool tendSubstringIndexes();

    // Undo of the user's saves, also those of former runs.
    bool canUndo();
    bool canRedo();
    /// Takes back the last save of the user. Fields that were changed by another hand since stay as they are.
    [[nodiscard]] OptionalError undo();
    [[nodiscard]] OptionalError redo();
    /// What the user did in the step that `undo` or `redo` would take; empty if it has no name.
    QString undoName();
    QString redoName();
    /// The saves that changed an object and what it takes along when it is deleted, the newest first: as far
    /// back as the journal goes.
    std::vector<RecordedSave> historyOf(const ManagedObject &object);

private:
    friend class ManagedObject;
    friend class Transaction;
    friend class JournalPause;
    friend class ObjectListBase;
    friend class ChangeWriter;
    friend class ChangeJournal;

    /// The live objects of one entity.
    struct Population
    {
        std::unordered_map<QString, ManagedObject *> byIdentifier;
        std::unordered_map<RowId, ManagedObject *> byRow;
        RowId lastRow = 0;
        ChangedObjects changed;
    };

    ManagedObjectContext(std::unique_ptr<sqlite::Database> opened, const ManagedObjectModel &model,
                         QString path);

    Population &population(const EntityDescription &entity);
    ObjectPtr adopt(const EntityDescription &entity, const sqlite::Statement &row);
    std::vector<ObjectPtr> objectsOfRows(const EntityDescription &entity, std::span<const RowId> rows);
    const QByteArray &selectColumns(const EntityDescription &entity);
    bool loadValues(const ManagedObject &object);
    static void readValues(const ManagedObject &object, const sqlite::Statement &row);
    std::vector<ObjectPtr> relatedObjects(const ManagedObject &object,
                                          const RelationshipDescription &relationship);
    bool hasJoinRow(const ManagedObject &object, const RelationshipDescription &relationship,
                    const QString &target);
    void forget(ManagedObject &object);
    void detach(ManagedObject &object);

    struct Query
    {
        QByteArray text;
        std::vector<Value> bindings;
    };
    /// Writes what waits, so that the query sees it.
    Query query(const FetchRequest &request, const QByteArray &result);
    /// The condition that leaves out what is deleted but still stands in a store that takes no changes; empty
    /// if there is nothing of the kind.
    QByteArray keptRows(const EntityDescription &entity) const;
    QByteArray orderOf(const EntityDescription &entity, const SortDescriptors &descriptors) const;
    sqlite::Statement run(const Query &query);
    OptionalError deleteWaitingRows();
    void logFailure(const sqlite::Statement &statement, const FetchRequest &request) const;

    void noteChange(ManagedObject &object);
    /// An object is told as updated although only its relationships changed at their other end.
    void noteTouched(std::string_view entity, const Value &id);
    /// What a deleted object named loses it.
    void noteTargetsAsTouched(const ManagedObject &object);
    /// Whether a save has something to do.
    bool hasWork() const;
    void transactionEnded();
    OptionalError begin();
    OptionalError write();
    OptionalError commit();
    /// Ends the open transaction without a trace; what is changed in memory waits to be written again.
    void rollBack();
    OptionalError writeOutbox(const std::vector<OutboxEntry> &entries);
    OptionalError deleteFromOutbox(const std::vector<qint64> &sequences);
    void takeInChangesFromElsewhere();
    Error failure(const char *attempt) const;
    OptionalError commitTransaction();
    OptionalError clearReferencesToMissing();
    template <typename Visitor>
    void forEachObject(Visitor visitor)
    {
        for (Population &one : populations) {
            for (auto &[id, object] : one.byIdentifier)
                visitor(*object);
        }
    }
    OptionalError commitAll();
    StoreChanges pendingChanges();
    void finishCommit();
    /// Lets the effects have their part in the open transaction, and writes it.
    OptionalError writeEffects(const StoreChanges &changes);
    void giveUpEffects();
    void tell(const StoreChanges &changes);
    OptionalError revert(ChangeJournalDirection direction);
    OptionalError applyEntry(ChangeJournalDirection direction, StoreChanges &changes);
    OptionalError applyRowsFromElsewhere(int limit, StoreChanges &changes, bool &isMoreLeft);
    /// Commits rows that were changed without objects, with what follows from it.
    OptionalError commitRows(const StoreChanges &changes);
    Result<StoreChanges> changeRows(const RowChanges &change, bool isTold);
    void tellOfChangesFromElsewhere();
    StoreChanges changesOf(const std::vector<AppliedChange> &applied);
    /// What is changed from here on is no part of the entry in the journal.
    void pauseCapture();
    void endCapture();
    /// Stands for a row that is no longer there.
    ObjectPtr goneObject(const EntityDescription &entity, const QString &id, RowId row);

    std::unique_ptr<sqlite::Database> database;
    const ManagedObjectModel &objectModel;
    QString filePath;
    QString identifier;
    std::vector<Population> populations;
    std::unordered_map<const EntityDescription *, QByteArray> columnLists;
    std::unordered_map<const EntityDescription *, QByteArray> insertStatements;
    /// For lists that may outlive the context.
    std::shared_ptr<ManagedObjectContext *> self;

    // Objects changed since the last save, in the order of their first change, and those still to be written.
    std::vector<ObjectPtr> changed;
    std::vector<ObjectPtr> waiting;
    /// Deletions of rows without objects since the last save.
    struct RowDeletion
    {
        Query query;
        bool isWritten = false;
        /// Made by the effects of a commit, which make it anew if that fails.
        bool isEffect = false;
    };
    std::vector<RowDeletion> rowDeletions;
    /// Objects that gained or lost something at the other end of a relationship, of entities that follow
    /// their links.
    std::set<std::pair<const EntityDescription *, QString>> touched;
    bool isWriting = false;
    bool isWritingEffects = false;
    bool mustApplyDeleteRules = false;
    /// Whether `begin` opened a transaction that nobody ended yet. SQLite ends one by itself when the disk is
    /// full.
    bool isInTransaction = false;
    qint64 dataVersion = 0;
    /// Another process has written, and nobody was told of it yet.
    bool isElsewhereUntold = false;

    std::unique_ptr<ChangeJournal> journal;
    CommitEffects *effects = nullptr;
    CommitLog *commitLog = nullptr;
    Transaction *openTransaction = nullptr;
    std::vector<std::function<void()>> afterTransactions;
    bool isJournalPaused = false;
    std::vector<OutboxEntry> posted;
    /// Entries of the outbox that the next commit finishes.
    std::vector<qint64> finishing;
    MergePolicy mergePolicy = MergePolicy::PropertyObjectTrump;
};
