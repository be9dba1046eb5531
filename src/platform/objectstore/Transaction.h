#pragma once

#include "foundation/Error.h"
#include "objectstore/StoreChanges.h"

#include <QString>

#include <optional>

class ManagedObjectContext;

/// The changes that one command makes to a store: who makes them, and what its undo step is called.
///
/// While it is open, a save of the context is a part of it: everything reaches the disk with `commit`, as one
/// step. One that is opened inside of another belongs to that one. What the user changed before a
/// transaction of another author begins is saved first, as the user's. A transaction that ends without a
/// commit leaves its changes in the context, where the next save finds them. Main thread only.
class Transaction
{
public:
    /// \param name what the user did, for the undo menu; empty if that has no name.
    explicit Transaction(ManagedObjectContext &context, ChangeAuthor author = ChangeAuthor::User,
                         QString name = {});
    virtual ~Transaction();
    Transaction(const Transaction &) = delete;
    Transaction &operator=(const Transaction &) = delete;

    ManagedObjectContext &context() const { return changed; }
    ChangeAuthor author() const { return writer; }
    const QString &name() const { return undoName; }

    /// Writes everything to the disk, or nothing: on an error the changes stay for the next save. After it
    /// the transaction goes on empty.
    [[nodiscard]] virtual OptionalError commit();
    /// The same for the first part of very much, so that the program is not busy for long at a time. For undo
    /// all parts are one step; but what was written stays, whatever becomes of the parts to come.
    [[nodiscard]] OptionalError commitPart();
    /// The number by which the journal knows the parts; absent for what is committed at once.
    std::optional<qint64> step() const { return stepOfParts; }

private:
    ManagedObjectContext &changed;
    ChangeAuthor writer;
    QString undoName;
    bool isInside;
    std::optional<qint64> stepOfParts;
};

/// While it lives, what is changed inside of a transaction of the user was done by others: it is committed
/// with it, and stays when the user takes the step back. Rows that the user's part changes, too, go with that
/// part.
class JournalPause
{
public:
    explicit JournalPause(ManagedObjectContext &context);
    ~JournalPause();
    JournalPause(const JournalPause &) = delete;
    JournalPause &operator=(const JournalPause &) = delete;

private:
    ManagedObjectContext &paused;
    bool wasPaused;
};
