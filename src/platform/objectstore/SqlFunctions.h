#pragma once

struct sqlite3;

/// Gives a connection what the queries of the object store need beyond SQLite's own:
/// `folded(text)`; `contains_text`, `begins_with`, `ends_with` of (text, part), and the same with `_folded`,
/// whose part is folded already; the collation `LOCALIZED`, the order of the user's language without regard
/// to case. All give NULL (and so pass no condition) for an absent text.
void registerSqlFunctions(sqlite3 *database);
