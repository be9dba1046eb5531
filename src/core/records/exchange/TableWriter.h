#pragma once

#include "records/exchange/RecordWriter.h"

#include <QHash>
#include <QStringList>

#include <string_view>

/// A writer of tables (`Csv`): a line of titles in the user's language, then a line for each record with all
/// that it holds. Days are "2026-11-22", moments "2026-11-22T09:15:00+01:00". Of a repeating task each
/// occurrence has its line, as in the lists.
std::unique_ptr<RecordWriter> makeTableWriter(const EntityDescription &entity, std::span<const RowId> rows);

/// The columns of tasks, projects and notes, for those who read their tables.
namespace recordcolumns {

/// The titles in English.
QStringList titles(std::string_view entity);
/// What stands for a record below each of them.
QHash<QString, QString> cells(const ManagedObject &record);

} // namespace recordcolumns
