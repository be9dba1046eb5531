#include "objectstore/ChangeJournal.h"

#include "foundation/Clock.h"
#include "objectstore/ChangesetApplier.h"

#include <sqlite3.h>

ChangeJournal::ChangeJournal(sqlite::Database &connection, const ManagedObjectModel &model)
    : database(connection), objectModel(model)
{
}

ChangeJournal::~ChangeJournal() = default;

void ChangeJournal::SessionDeleter::operator()(sqlite3_session *ended) const
{
    sqlite3session_delete(ended);
}

/// Rows of entities and their pairs, but nothing that can be made again and none of the store's own books.
int ChangeJournal::isCaptured(const char *table) const
{
    const std::string_view name(table);
    const EntityDescription *entity = objectModel.entity(name.substr(0, name.find('_')));
    return entity && !entity->isDerived() ? 1 : 0;
}

void ChangeJournal::startCapture()
{
    sqlite3_session *started = nullptr;
    if (sqlite3session_create(database.handle(), "main", &started) != SQLITE_OK)
        return;
    session.reset(started);
    const auto filter = [](void *self, const char *table) {
        return static_cast<const ChangeJournal *>(self)->isCaptured(table);
    };
    sqlite3session_table_filter(started, filter, this);
    sqlite3session_attach(started, nullptr);
}

void ChangeJournal::stopCapture()
{
    session.reset();
}

QByteArray ChangeJournal::capturedChangeset()
{
    int size = 0;
    void *bytes = nullptr;
    if (!session || sqlite3session_changeset(session.get(), &size, &bytes) != SQLITE_OK)
        return {};
    QByteArray changeset(static_cast<const char *>(bytes), size);
    sqlite3_free(bytes);
    return changeset;
}

OptionalError ChangeJournal::record()
{
    const QByteArray changeset = capturedChangeset();
    if (changeset.isEmpty())
        return std::nullopt;
    const Date now = Clock::now();
    sqlite::Statement dropped = database.prepare("DELETE FROM ObjectStoreJournal WHERE isUndone = 1 OR savedAt < ?");
    sqlite::Statement added =
        database.prepare("INSERT INTO ObjectStoreJournal (savedAt, isUndone, changeset) VALUES (?, 0, ?)");
    sqlite::Statement trimmed = database.prepare(
        "DELETE FROM ObjectStoreJournal WHERE sequence <= (SELECT MAX(sequence) FROM ObjectStoreJournal) - ?");
    const bool isRecorded = dropped.bind(Value(now - maximumAge)).run() &&
                            added.bind(Value(now)).bindBlob(changeset).run() && trimmed.bind(maximumEntries).run();
    return isRecorded ? std::nullopt : OptionalError(database.lastError(QStringLiteral("Cannot keep the undo journal")));
}

bool ChangeJournal::hasEntry(Direction direction)
{
    return database.queryInteger(direction == Direction::Undo
                                     ? "SELECT EXISTS(SELECT 1 FROM ObjectStoreJournal WHERE isUndone = 0)"
                                     : "SELECT EXISTS(SELECT 1 FROM ObjectStoreJournal WHERE isUndone = 1)") != 0;
}

Result<std::vector<AppliedChange>> ChangeJournal::apply(Direction direction)
{
    const bool isUndo = direction == Direction::Undo;
    sqlite::Statement entry = database.prepare(
        isUndo ? "SELECT sequence, changeset FROM ObjectStoreJournal WHERE isUndone = 0 ORDER BY sequence DESC LIMIT 1"
               : "SELECT sequence, changeset FROM ObjectStoreJournal WHERE isUndone = 1 ORDER BY sequence LIMIT 1");
    if (!entry.step())
        return std::vector<AppliedChange>();
    const qint64 sequence = entry.integer(0);
    const QByteArray changeset = entry.blob(1);
    entry.reset();
    auto applied = ChangesetApplier(database, objectModel).apply(changeset, isUndo);
    sqlite::Statement marked = database.prepare("UPDATE ObjectStoreJournal SET isUndone = ? WHERE sequence = ?");
    if (applied && !marked.bind(Value(isUndo)).bind(sequence).run())
        return database.lastError(QStringLiteral("Cannot mark the undo journal"));
    return applied;
}
