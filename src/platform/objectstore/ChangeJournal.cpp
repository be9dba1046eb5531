#include "objectstore/ChangeJournal.h"

#include "foundation/Clock.h"
#include "objectstore/ChangesetApplier.h"

#include <QCryptographicHash>

#include <sqlite3.h>

/// By which an entry is known to be the one that was written: one with other bytes could overwrite rows.
static QByteArray digestOf(const QByteArray &changeset, const QByteArray &outside)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(QByteArray::number(changeset.size()) + ' ');
    hash.addData(changeset);
    hash.addData(outside);
    return hash.result();
}

ChangeJournal::ChangeJournal(sqlite::Database &connection, const ManagedObjectModel &model)
    : database(connection)
    , objectModel(model)
{}

ChangeJournal::~ChangeJournal() = default;

void ChangeJournal::SessionDeleter::operator()(sqlite3_session *ended) const
{
    sqlite3session_delete(ended);
}

/// Rows of entities and their pairs, but nothing that can be made again and none of the store's own books.
int ChangeJournal::isCaptured(std::string_view table) const
{
    const EntityDescription *entity = objectModel.entityOfTable(table);
    return entity && !entity->isDerived() ? 1 : 0;
}

void ChangeJournal::startCapture()
{
    sqlite3_session *started = nullptr;
    if (sqlite3session_create(database.handle(), "main", &started) != SQLITE_OK)
        return;
    session.reset(started);
    isSessionOn = true;
    net.reset();
    const auto filter = [](void *self, const char *table) {
        return static_cast<const ChangeJournal *>(self)->isCaptured(table);
    };
    sqlite3session_table_filter(started, filter, this);
    sqlite3session_attach(started, nullptr);
}

void ChangeJournal::setCapturing(bool isOn)
{
    isSessionOn = isOn;
    if (session)
        sqlite3session_enable(session.get(), isOn ? 1 : 0);
}

void ChangeJournal::stopCapture()
{
    session.reset();
    net.reset();
}

const Result<QByteArray> &ChangeJournal::captured()
{
    if (net)
        return *net;
    int size = 0;
    void *bytes = nullptr;
    const int code = session ? sqlite3session_changeset(session.get(), &size, &bytes) : SQLITE_OK;
    net = code == SQLITE_OK
              ? Result<QByteArray>(QByteArray(static_cast<const char *>(bytes), size))
              : Result<QByteArray>(sqlite::error(code, QStringLiteral("Cannot tell what was changed")));
    sqlite3_free(bytes);
    return *net;
}

OptionalError ChangeJournal::record(ChangeAuthor author, const QString &name,
                                    const std::vector<OutboxEntry> &outside, std::optional<qint64> step)
{
    const QByteArray changeset = captured() ? captured().value() : QByteArray();
    if (changeset.isEmpty() && outside.empty())
        return std::nullopt;
    sqlite::Statement added =
        database.prepare("INSERT INTO ObjectStoreJournal (savedAt, isUndone, "
                         "changeset, name, outside, digest, author, step) VALUES (?, 0, ?, ?, ?, ?, ?, ?)");
    const QByteArray outsideBytes = outbox::toBytes(outside);
    added.bind(Value(Clock::now())).bindBlob(changeset.isNull() ? QByteArray("") : changeset);
    added.bind(name.isEmpty() ? Value() : Value(name)).bindBlob(outsideBytes);
    added.bindBlob(digestOf(changeset, outsideBytes))
        .bind(qint64(author))
        .bind(step ? Value(*step) : Value());
    const bool isRecorded = dropUndone() && trim() && added.run();
    return isRecorded ? std::nullopt
                      : OptionalError(database.lastError(QStringLiteral("Cannot keep the undo journal")));
}

OptionalError ChangeJournal::recordInHistory(ChangeAuthor author)
{
    return addToHistory(database, author, captured() ? captured().value() : QByteArray())
               ? std::nullopt
               : OptionalError(database.lastError(QStringLiteral("Cannot keep history")));
}

bool ChangeJournal::addToHistory(sqlite::Database &database, ChangeAuthor author, const QByteArray &changeset)
{
    if (changeset.isEmpty() || changeset.size() > largestInHistory)
        return true;
    sqlite::Statement added =
        database.prepare("INSERT INTO ObjectStoreHistory (savedAt, author, changeset) VALUES (?, ?, ?)");
    added.bind(Value(Clock::now())).bind(qint64(author)).bindBlob(changeset);
    return added.run() && trimHistory(database);
}

bool ChangeJournal::dropUndone()
{
    sqlite::Statement kept = database.prepare(
        "INSERT INTO ObjectStoreHistory (savedAt, author, name, isUndone, changeset) SELECT savedAt, author, "
        "name, 1, changeset FROM ObjectStoreJournal WHERE isUndone = 1 AND length(changeset) <= ? ORDER BY "
        "sequence");
    return kept.bind(qint64(largestInHistory)).run() &&
           database.prepare("DELETE FROM ObjectStoreJournal WHERE isUndone = 1").run();
}

bool ChangeJournal::trimHistory(sqlite::Database &database)
{
    sqlite::Statement heavy = database.prepare(
        "DELETE FROM ObjectStoreHistory WHERE sequence <= (SELECT sequence FROM (SELECT sequence, "
        "SUM(length(changeset)) OVER (ORDER BY sequence DESC) AS weight FROM ObjectStoreHistory) WHERE "
        "weight "
        "> ? ORDER BY sequence DESC LIMIT 1)");
    if (!heavy.bind(qint64(heaviestHistory)).run())
        return false;
    sqlite::Statement trimmed =
        database.prepare("DELETE FROM ObjectStoreHistory WHERE sequence <= (SELECT MAX(sequence) FROM "
                         "ObjectStoreHistory) - ? OR sequence IN (SELECT sequence FROM ObjectStoreHistory "
                         "WHERE savedAt < ? ORDER BY sequence LIMIT 100)");
    return trimmed.bind(maximumEntries).bind(Value(Clock::now() - maximumAge)).run();
}

/// Entries leave one by one at the old end; the sequence tells the number, since it has no gaps but there.
bool ChangeJournal::trim()
{
    sqlite::Statement oldest = database.prepare(
        "SELECT savedAt, sequence, (SELECT MAX(sequence) FROM ObjectStoreJournal) FROM ObjectStoreJournal "
        "ORDER BY sequence LIMIT 1");
    if (!oldest.step())
        return oldest.code() == SQLITE_DONE;
    const Date expiry = Clock::now() - maximumAge;
    const bool isExpired = Date::fromReferenceSeconds(oldest.number(0)) < expiry;
    if (!isExpired && oldest.integer(2) - oldest.integer(1) + 1 < maximumEntries)
        return true;
    sqlite::Statement trimmed =
        database.prepare("DELETE FROM ObjectStoreJournal WHERE savedAt < ? OR sequence <= (SELECT "
                         "MAX(sequence) FROM ObjectStoreJournal) + 1 - ?");
    return trimmed.bind(Value(expiry)).bind(maximumEntries).run();
}

sqlite::Statement ChangeJournal::nextEntry(Direction direction)
{
    sqlite::Statement entry = database.prepare(
        direction == Direction::Undo ? "SELECT sequence, savedAt >= ?, step FROM ObjectStoreJournal "
                                       "WHERE isUndone = 0 ORDER BY sequence DESC LIMIT 1"
                                     : "SELECT sequence, savedAt >= ?, step FROM ObjectStoreJournal "
                                       "WHERE isUndone = 1 ORDER BY sequence LIMIT 1");
    entry.bind(Value(Clock::now() - maximumAge));
    return entry;
}

bool ChangeJournal::hasEntry(Direction direction)
{
    sqlite::Statement entry = nextEntry(direction);
    return entry.step() && entry.integer(1) != 0;
}

QString ChangeJournal::nameOf(Direction direction)
{
    sqlite::Statement entry = nextEntry(direction);
    if (!entry.step() || entry.integer(1) == 0)
        return {};
    sqlite::Statement named = database.prepare("SELECT name FROM ObjectStoreJournal WHERE sequence = ?");
    return named.bind(entry.integer(0)).step() ? named.text(0) : QString();
}

Result<AppliedEntry> ChangeJournal::apply(Direction direction, const RowNumbering &nextRow)
{
    AppliedEntry all;
    std::optional<qint64> step;
    do {
        sqlite::Statement entry = nextEntry(direction);
        if (!entry.step() || entry.integer(1) == 0)
            break;
        const qint64 sequence = entry.integer(0);
        const auto stepOfEntry = entry.isNull(2) ? std::nullopt : std::optional<qint64>(entry.integer(2));
        entry.reset();
        if (step && stepOfEntry != step)
            break;
        step = stepOfEntry;
        auto part = applyOne(sequence, direction, nextRow);
        if (!part)
            return part.error();
        all.rows.insert(all.rows.end(), part->rows.begin(), part->rows.end());
        outbox::append(all.outside, part->outside);
    } while (step);
    return all;
}

Result<AppliedEntry> ChangeJournal::applyOne(qint64 sequence, Direction direction,
                                             const RowNumbering &nextRow)
{
    const bool isUndo = direction == Direction::Undo;
    sqlite::Statement content =
        database.prepare("SELECT changeset, outside, digest FROM ObjectStoreJournal WHERE sequence = ?");
    const bool isThere = content.bind(sequence).step();
    const QByteArray changeset = isThere ? content.blob(0) : QByteArray();
    const QByteArray outsideBytes = isThere ? content.blob(1) : QByteArray();
    // Entries of former versions have no digest.
    const bool isIntact =
        isThere && (content.isNull(2) || content.blob(2) == digestOf(changeset, outsideBytes));
    content.reset();
    if (!isIntact)
        return Error{QStringLiteral("journal"), 0, QStringLiteral("The undo journal is damaged")};
    auto outside = outbox::fromBytes(outsideBytes);
    if (!outside)
        return outside.error();
    auto rows = ChangesetApplier(database, objectModel, nextRow).apply(changeset, isUndo);
    if (!rows)
        return rows.error();
    sqlite::Statement marked =
        database.prepare("UPDATE ObjectStoreJournal SET isUndone = ? WHERE sequence = ?");
    if (!marked.bind(Value(isUndo)).bind(sequence).run())
        return database.lastError(QStringLiteral("Cannot mark the undo journal"));
    if (isUndo)
        outside = outbox::inverted(*outside);
    for (OutboxEntry &one : *outside)
        one.yields = true;
    return AppliedEntry{std::move(*rows), std::move(*outside)};
}
