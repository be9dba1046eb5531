#pragma once

#include "foundation/Clock.h"
#include "objectstore/Sqlite.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QStringList>

#include <algorithm>
#include <optional>

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

inline qint64 wallMilliseconds()
{
    return static_cast<qint64>(Clock::now().unixSeconds() * 1000.0);
}

inline qint64 wallTime()
{
    return wallMilliseconds() << countBits;
}

constexpr qint64 millisecondsADay = 86'400'000;

/// What the clock of a device takes from a stamp: no more than a day ahead of the wall clock here. Values
/// keep the stamps that they came with, whatever this clock shows.
inline qint64 believed(qint64 time)
{
    return std::min(time, wallTime() + (millisecondsADay << countBits));
}

/// Texts as the books keep them; null for none that are known.
inline QString textOfList(const std::optional<QStringList> &list)
{
    return list ? QString::fromUtf8(
                      QJsonDocument(QJsonArray::fromStringList(*list)).toJson(QJsonDocument::Compact))
                : QString();
}

inline std::optional<QStringList> listOfText(const QString &text)
{
    const QJsonDocument document = QJsonDocument::fromJson(text.toUtf8());
    if (!document.isArray())
        return std::nullopt;
    QStringList list;
    for (const QJsonValue &one : document.array())
        list.append(one.toString());
    return list;
}

inline Date dateOfMilliseconds(qint64 milliseconds)
{
    return Date::fromUnixSeconds(double(milliseconds) / 1000.0);
}

} // namespace replication
