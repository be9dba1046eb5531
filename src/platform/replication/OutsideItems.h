#pragma once

#include "objectstore/Sqlite.h"
#include "replication/RowDelta.h"

#include <QSet>
#include <QStringList>

#include <optional>

namespace replication {

/// Rows of one table stand for items outside of the store, which a column of texts names: of each, whether
/// this device has seen the item there, or knows its name from another device only.
class OutsideItems
{
public:
    explicit OutsideItems(sqlite::Database &opened)
        : database(opened)
    {}

    static OptionalError createTables(sqlite::Database &database);
    /// Without it no row stands for anything.
    void nameBy(const QByteArray &table, const QByteArray &column);

    /// What this device has seen, for ever.
    const QSet<QString> &witnessed();
    void witness(const QSet<QString> &items);
    /// The device from which the name of an item that a row has is known; empty if that is this one, or has
    /// seen the item.
    DeviceId namedBy(const RowKey &key, const QString &item, const DeviceId &own);

    /// To be called before the books of a save of this device are written.
    /// \return the items that it is about of those that this device has never seen.
    QStringList unseenIn(const std::vector<RowDelta> &deltas, const DeviceId &own);

private:
    DeviceId writerOf(const RowKey &key);

    sqlite::Database &database;
    QByteArray tableOfRows;
    QByteArray columnOfNames;
    std::optional<QSet<QString>> seen;
};

} // namespace replication
