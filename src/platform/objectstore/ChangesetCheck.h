#pragma once

#include <QByteArray>

/// Whether bytes are a changeset of SQLite's session extension, from the first to the last one: SQLite itself
/// reads one in trust, and works for minutes, or beyond its end, on one that was damaged.
bool isWellFormedChangeset(const QByteArray &changeset);
