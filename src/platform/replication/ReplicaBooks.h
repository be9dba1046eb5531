#pragma once

#include "foundation/Clock.h"
#include "objectstore/Sqlite.h"

// What the parts of a replica share.

namespace replication {

inline Error bookFailure(const sqlite::Database &database)
{
    return database.lastError(QStringLiteral("Cannot keep the books for other devices"));
}

inline OptionalError bookResult(const sqlite::Database &database, bool isDone)
{
    return isDone ? std::nullopt : OptionalError(bookFailure(database));
}

/// Milliseconds of the wall clock, with room for a count below them.
constexpr int countBits = 16;

inline qint64 wallTime()
{
    return static_cast<qint64>(Clock::now().unixSeconds() * 1000.0) << countBits;
}

inline Date dateOfTime(qint64 time)
{
    return Date::fromUnixSeconds(double(time >> countBits) / 1000.0);
}

} // namespace replication
