#pragma once

#include "records/exchange/RecordWriter.h"

/// A writer of tables (`Csv`): a line of titles in the user's language, then a line for each record with all
/// that it holds. Days are "2026-11-22", moments "2026-11-22T09:15:00+01:00". Of a repeating task each
/// occurrence has its line, as in the lists.
std::unique_ptr<RecordWriter> makeTableWriter(const EntityDescription &entity, std::span<const RowId> rows);
