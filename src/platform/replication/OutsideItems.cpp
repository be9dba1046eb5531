#include "replication/OutsideItems.h"

namespace replication {

OptionalError OutsideItems::createTables(sqlite::Database &database)
{
    // The second one has those whose rows this device has made anew: their stamps say its name.
    return database.execute(
        "CREATE TABLE IF NOT EXISTS ObjectStoreWitnessed (item TEXT PRIMARY KEY NOT NULL) WITHOUT ROWID;"
        "CREATE TABLE IF NOT EXISTS ObjectStoreNamedElsewhere (item TEXT PRIMARY KEY NOT NULL, device TEXT "
        "NOT "
        "NULL) WITHOUT ROWID;");
}

void OutsideItems::nameBy(const QByteArray &table, const QByteArray &column)
{
    tableOfRows = table;
    columnOfNames = column;
}

const QSet<QString> &OutsideItems::witnessed()
{
    if (!seen) {
        seen.emplace();
        sqlite::Statement all = database.prepare("SELECT item FROM ObjectStoreWitnessed");
        while (all.step())
            seen->insert(all.text(0));
    }
    return *seen;
}

void OutsideItems::witness(const QSet<QString> &items)
{
    const QSet<QString> fresh = QSet<QString>(items).subtract(witnessed());
    if (fresh.isEmpty())
        return;
    // A part of what is under way, if something is.
    const bool isOwn = database.isAutocommit();
    if (isOwn && database.execute("BEGIN IMMEDIATE"))
        return;
    sqlite::Statement added = database.prepare("INSERT OR IGNORE INTO ObjectStoreWitnessed VALUES (?)");
    for (const QString &item : fresh) {
        added.reset();
        added.bind(item).run();
    }
    added.reset();
    if (isOwn && database.execute("COMMIT"))
        database.rollBack();
    seen->unite(fresh);
}

DeviceId OutsideItems::writerOf(const RowKey &key)
{
    const QString table = QString::fromUtf8(key.table);
    sqlite::Statement cell =
        database.prepare("SELECT device FROM ObjectStoreCellStamps WHERE tbl = ? AND id = ? AND col = ?");
    if (cell.bind(table).bind(key.id).bind(QString::fromUtf8(columnOfNames)).step())
        return cell.text(0).toUtf8();
    sqlite::Statement row =
        database.prepare("SELECT device FROM ObjectStoreRowStates WHERE tbl = ? AND id = ?");
    return row.bind(table).bind(key.id).step() ? row.text(0).toUtf8() : DeviceId();
}

DeviceId OutsideItems::namedBy(const RowKey &key, const QString &item, const DeviceId &own)
{
    if (item.isEmpty() || witnessed().contains(item))
        return {};
    const DeviceId writer = writerOf(key);
    if (writer != own)
        return writer;
    sqlite::Statement noted = database.prepare("SELECT device FROM ObjectStoreNamedElsewhere WHERE item = ?");
    return noted.bind(item).step() ? noted.text(0).toUtf8() : DeviceId();
}

QStringList OutsideItems::unseenIn(const std::vector<RowDelta> &deltas, const DeviceId &own)
{
    QStringList unseen;
    if (tableOfRows.isEmpty())
        return unseen;
    sqlite::Statement present =
        database.prepare("SELECT \"" + columnOfNames + "\" FROM \"" + tableOfRows + "\" WHERE \"id\" = ?");
    const auto itemOf = [&](const RowDelta &delta) {
        const auto former = delta.formerValues.find(columnOfNames);
        if (former != delta.formerValues.end())
            return textIn(former->second);
        present.reset();
        return present.bind(delta.key.id).step() ? present.text(0) : QString();
    };
    for (const RowDelta &delta : deltas) {
        if (delta.key.table != tableOfRows)
            continue;
        const QString item = itemOf(delta);
        const DeviceId device = namedBy(delta.key, item, own);
        if (device.isEmpty())
            continue;
        unseen.append(item);
        if (delta.base.time > 0) {
            sqlite::Statement noted =
                database.prepare("INSERT OR IGNORE INTO ObjectStoreNamedElsewhere VALUES (?, ?)");
            noted.bind(item).bind(QString::fromUtf8(device)).run();
        }
    }
    unseen.removeDuplicates();
    return unseen;
}

} // namespace replication
