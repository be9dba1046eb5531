#pragma once

#include "objectstore/ManagedObject.h"
#include "objectstore/ManagedObjectContext.h"
#include "objectstore/ManagedObjectModel.h"
#include "objectstore/Outbox.h"
#include "objectstore/Sqlite.h"
#include "objectstore/StoreChanges.h"

#include <memory>
#include <optional>
#include <vector>

struct sqlite3_session;
struct sqlite3_changeset_iter;

/// Which way along the saves of the user.
enum class ChangeJournalDirection { Undo, Redo };

/// One row that an undo or a redo changed.
struct AppliedChange
{
    enum class Kind { Inserted, Updated, Deleted };
    const EntityDescription *entity;
    QString identifier;
    Kind kind;
    /// Of an updated row.
    ManagedObject::ColumnSet columns = {};
    /// Of a deleted row, by which lists know it.
    RowId row = 0;
};

/// What a step did: to the store, and what it asks for outside of it.
struct AppliedEntry
{
    std::vector<AppliedChange> rows;
    std::vector<OutboxEntry> outside;
};

/// The changesets of the saves, kept in the store: what undo and redo work from, and what tells the history
/// of a record.
///
/// An SQLite session captures the net change of each transaction. At most `maximumEntries` saves of the last
/// `maximumAge` are kept that can be undone, and as many others. Entries that were undone leave the former
/// for the latter with the next save of the user, but for very large ones.
class ChangeJournal
{
public:
    using Direction = ChangeJournalDirection;
    static constexpr qint64 maximumEntries = 1000;
    static constexpr Seconds maximumAge = std::chrono::days(90);
    /// In bytes. What brings in more, such as a whole calendar at once, tells little of any record.
    static constexpr qsizetype largestInHistory = 2'000'000;
    /// What all of them may take together.
    static constexpr qsizetype heaviestHistory = 30'000'000;

    ChangeJournal(sqlite::Database &connection, const ManagedObjectModel &model);
    ~ChangeJournal();
    ChangeJournal(const ChangeJournal &) = delete;
    ChangeJournal &operator=(const ChangeJournal &) = delete;

    /// Watches the open transaction from here on.
    void startCapture();
    /// Whether what happens from here on is a part of it. Of a row that was captured before, the last state
    /// is.
    void setCapturing(bool isOn);
    bool isCapturing() const { return session && isSessionOn; }
    /// Forgets what was captured, and captures no more.
    void stopCapture();
    /// The net change of what was captured, empty without any. It is told once and known from then on, until
    /// `captureWentOn`.
    const Result<QByteArray> &captured();
    void captureWentOn() { net.reset(); }
    /// Adds what was captured as an entry, inside the transaction, with what goes with it outside of the
    /// store. Without a net change of either it adds none.
    /// \param step the number of the step that the entry is a part of; absent if it is all of it.
    OptionalError record(ChangeAuthor author, const QString &name, const std::vector<OutboxEntry> &outside,
                         std::optional<qint64> step = {});
    /// The same for a save that no undo takes back.
    OptionalError recordInHistory(ChangeAuthor author);
    /// Adds a changeset that was captured by others; false on a failure.
    static bool addToHistory(sqlite::Database &database, ChangeAuthor author, const QByteArray &changeset);

    bool hasEntry(Direction direction);
    /// What the user did in the step that would be applied; empty if it has no name.
    QString nameOf(Direction direction);
    /// Applies the newest entry backwards, or the oldest undone one forwards, inside the open transaction,
    /// and marks it; all parts of one step, as far as they lie beside each other. A field whose value is no
    /// longer the one that the entry left is not touched.
    Result<AppliedEntry> apply(Direction direction, const RowNumbering &nextRow);

private:
    struct SessionDeleter
    {
        void operator()(sqlite3_session *session) const;
    };
    int isCaptured(std::string_view table) const;
    sqlite::Statement nextEntry(Direction direction);
    Result<AppliedEntry> applyOne(qint64 sequence, Direction direction, const RowNumbering &nextRow);
    bool dropUndone();
    bool trim();
    static bool trimHistory(sqlite::Database &database);

    sqlite::Database &database;
    const ManagedObjectModel &objectModel;
    std::unique_ptr<sqlite3_session, SessionDeleter> session;
    bool isSessionOn = false;
    std::optional<Result<QByteArray>> net;
};
