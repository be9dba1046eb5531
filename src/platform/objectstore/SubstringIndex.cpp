#include "objectstore/SubstringIndex.h"

#include "foundation/TextFolding.h"
#include "objectstore/SqlText.h"

#include <QStringList>

namespace {

/// FTS5 ends a text at a NUL; the sign that stands for it makes the index propose a little more.
QString indexable(QString foldedText)
{
    return foldedText.replace(QChar::Null, QChar::ReplacementCharacter);
}

/// More parts than these would only cost time: every proposed row is tested anyway.
constexpr qsizetype maximumParts = 24;

} // namespace

SubstringIndex::SubstringIndex(const EntityDescription &entity)
    : table(entity.table())
    , attribute(entity.substringAttribute().data(),
                static_cast<qsizetype>(entity.substringAttribute().size()))
    , trigrams(table + '_' + attribute + "_trigrams")
    , waiting(table + '_' + attribute + "_waiting")
{}

std::optional<SubstringIndex> SubstringIndex::of(const EntityDescription &entity)
{
    return entity.substringAttribute().empty() ? std::nullopt : std::optional(SubstringIndex(entity));
}

QByteArray SubstringIndex::create(sqlite::Database &database) const
{
    // An "OR" of the statement that fires a trigger would stand for one within it.
    const auto trigger = [this](const QByteArray &name, const QByteArray &event) {
        return "DROP TRIGGER IF EXISTS " + quoted(waiting + name) + "; CREATE TRIGGER " +
               quoted(waiting + name) + " AFTER " + event + " ON " + quoted(table) + " BEGIN INSERT INTO " +
               quoted(waiting) + " VALUES (new.rowid) ON CONFLICT DO NOTHING; END;";
    };
    const QByteArray triggers =
        trigger("_insert", "INSERT") + trigger("_update", "UPDATE OF " + quoted(attribute));
    const QByteArray exists = "SELECT COUNT(*) FROM sqlite_master WHERE name = '" + trigrams + '\'';
    if (database.queryInteger(exists) != 0)
        return triggers;
    // Without positions and contents the index takes the least room; deleted rows need not leave it.
    return "CREATE VIRTUAL TABLE " + quoted(trigrams) +
           " USING fts5(folded, content='', columnsize=0, detail=none, tokenize='trigram case_sensitive "
           "1');" +
           "CREATE TABLE IF NOT EXISTS " + quoted(waiting) + " (row INTEGER PRIMARY KEY NOT NULL);" +
           triggers + startAnew();
}

QByteArray SubstringIndex::startAnew() const
{
    return "INSERT INTO " + quoted(trigrams) + '(' + quoted(trigrams) + ") VALUES ('delete-all');" +
           "INSERT OR IGNORE INTO " + quoted(waiting) + " SELECT rowid FROM " + quoted(table) + ';';
}

bool SubstringIndex::note(sqlite::Database &database, RowId row) const
{
    sqlite::Statement noted =
        database.prepare("INSERT INTO " + quoted(waiting) + " VALUES (?) ON CONFLICT DO NOTHING");
    return noted.bind(qint64(row)).run();
}

bool SubstringIndex::note(sqlite::Database &database, const QString &identifier) const
{
    sqlite::Statement noted = database.prepare("INSERT INTO " + quoted(waiting) + " SELECT rowid FROM " +
                                               quoted(table) + " WHERE \"id\" = ? ON CONFLICT DO NOTHING");
    return noted.bind(identifier).run();
}

Result<int> SubstringIndex::takeIn(sqlite::Database &database, int limit) const
{
    const auto failure = [&database] {
        return database.lastError(QStringLiteral("Cannot bring the search index up to date"));
    };
    sqlite::Statement rows =
        database.prepare("SELECT w.row, t." + quoted(attribute) + " FROM " + quoted(waiting) +
                         " w LEFT JOIN " + quoted(table) + " t ON t.rowid = w.row ORDER BY w.row LIMIT ?");
    sqlite::Statement insertion =
        database.prepare("INSERT INTO " + quoted(trigrams) + "(rowid, folded) VALUES (?, ?)");
    rows.bind(qint64(limit));
    int count = 0;
    qint64 last = 0;
    for (; rows.step(); ++count) {
        last = rows.integer(0);
        insertion.reset();
        insertion.bind(last).bind(indexable(foldedForSearch(rows.text(1))));
        if (!insertion.run())
            return failure();
    }
    rows.reset();
    if (count == 0)
        return 0;
    sqlite::Statement removal = database.prepare("DELETE FROM " + quoted(waiting) + " WHERE row <= ?");
    if (!removal.bind(last).run())
        return failure();
    return count;
}

bool SubstringIndex::hasWaitingRows(sqlite::Database &database) const
{
    return database.prepare("SELECT 1 FROM " + quoted(waiting) + " LIMIT 1").step();
}

std::optional<QString> SubstringIndex::matchFor(const QString &foldedPart)
{
    const QList<uint> characters = indexable(foldedPart).toUcs4();
    if (characters.size() < 3)
        return std::nullopt;
    QStringList parts;
    for (qsizetype start = 0; start + 3 <= characters.size() && parts.size() < maximumParts; ++start) {
        QString part = QString::fromUcs4(reinterpret_cast<const char32_t *>(characters.data()) + start, 3);
        part = u'"' + part.replace(u'"', QStringLiteral("\"\"")) + u'"';
        if (!parts.contains(part))
            parts.append(part);
    }
    return parts.join(u' ');
}

QByteArray SubstringIndex::proposedRows() const
{
    return "SELECT rowid FROM " + quoted(trigrams) + " WHERE " + quoted(trigrams) +
           " MATCH ? UNION ALL SELECT row FROM " + quoted(waiting);
}
