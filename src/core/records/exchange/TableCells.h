#pragma once

#include "records/exchange/ImportedTask.h"

#include <QHash>
#include <QString>
#include <QStringList>

/// What the cells of a row say: the counterpart of `recordcolumns`.
struct ImportedRow
{
    /// Of a project and a note only what these have, too.
    ImportedTask task;
    /// Those of a project.
    QStringList people;
    /// The titles of its tasks.
    QStringList titlesOfTasks;
    /// The words that do not say what their column wants. They stand in the details, each behind the title
    /// of its column.
    QStringList unread;
};

namespace tablecells {

/// The cell of the words of columns that mean nothing here, a line each: they stand in the details.
inline const QString wordsOfUnknown = QString();

/// Days and moments are read as `RecordWriter` writes them, and as people do: "24.11.2026", "11/24/26 9:30
/// PM", in the order of day and month that is usual in the language of the user.
/// \param isOwn whether the table is one of this program, where several tags stand in a line each.
ImportedRow taskOf(const QHash<QString, QString> &cells, bool isOwn);
ImportedRow projectOf(const QHash<QString, QString> &cells);
ImportedRow noteOf(const QHash<QString, QString> &cells);

/// Whether two rows say the same of a record, whenever it was made and changed.
bool isSame(const ImportedRow &one, const ImportedRow &other);

/// Whether the user's language has the month before the day.
bool isMonthFirst();

/// What people write for a day or a moment; absent for anything else.
struct WrittenDate
{
    Date date;
    bool isDay;
};
std::optional<WrittenDate> dateOf(const QString &text);

} // namespace tablecells
