#pragma once

#include "foundation/Error.h"

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
    virtual void transactionBegan(sqlite::Database &database) = 0;
    /// Everything is written but the end of the transaction. It may come more than once for one transaction,
    /// and writes down the same commit then.
    [[nodiscard]] virtual OptionalError willCommit(sqlite::Database &database) = 0;
    /// The transaction was committed, or taken back.
    virtual void transactionEnded() = 0;
};
