#pragma once

#include "foundation/Error.h"

#include <QByteArray>

namespace sqlite {
class Database;
}

/// Writes down what each commit of a context does to the rows, whoever makes it, as a part of the commit
/// itself.
class CommitLog
{
public:
    virtual ~CommitLog() = default;

    /// A transaction was opened; nothing is changed in it yet.
    /// \param isCaptured whether the context captures what becomes of the rows of entities and of their
    /// pairs, so that the log need not do it, too.
    virtual void transactionBegan(sqlite::Database &database, bool isCaptured) = 0;
    /// What was changed so far is captured, but what is changed from here on may not be.
    virtual void captureEnds() = 0;
    /// Everything is written but the end of the transaction. It may come more than once for one transaction,
    /// and writes down the same commit then.
    /// \param captured the changeset of what was captured; the error says why there is none.
    [[nodiscard]] virtual OptionalError willCommit(sqlite::Database &database,
                                                   const Result<QByteArray> &captured) = 0;
    /// The transaction was committed, or taken back.
    virtual void transactionEnded() = 0;
};
