#pragma once

#include "objectstore/ManagedObjectModel.h"
#include "objectstore/StoreChanges.h"

#include <QByteArray>
#include <QString>

#include <map>
#include <set>
#include <string_view>
#include <vector>

struct sqlite3_changeset_iter;

namespace sqlite {
class Database;
}

/// What one save did to one row.
struct RowChange
{
    enum class Kind { Made, Changed, Deleted };
    struct Field
    {
        /// The attribute or relationship.
        std::string_view key;
        /// Absent for a row that was not there. Of a relationship, the identifier of the object.
        Value before;
        Value after;
    };

    const EntityDescription *entity = nullptr;
    QString identifier = {};
    Kind kind = Kind::Changed;
    std::vector<Field> fields = {};
};

/// What one save did to a record and to what belongs to it.
struct RecordedSave
{
    Date savedAt;
    ChangeAuthor author = ChangeAuthor::User;
    /// What the user did; empty if that has no name.
    QString name;
    /// The user has taken it back since.
    bool isUndone = false;
    std::vector<RowChange> rows;
};

/// The saves that changed a record, read from the changesets that the store keeps. Rows that an object takes
/// along when it is deleted belong to it, and a link is told of both of its ends. A changeset that cannot be
/// read is left out.
class ChangeHistory
{
public:
    ChangeHistory(sqlite::Database &connection, const ManagedObjectModel &model)
        : database(connection)
        , objectModel(model)
    {}

    /// The newest first.
    std::vector<RecordedSave> of(const ManagedObject &object);

private:
    void findParts(const ManagedObject &object);
    bool mayConcern(const QByteArray &changeset) const;
    std::vector<RowChange> rowsOf(const QByteArray &changeset);
    void readRow(const EntityDescription &entity, sqlite3_changeset_iter *iterator, int columnCount,
                 int kind);
    void readPair(const EntityDescription &entity, sqlite3_changeset_iter *iterator, QByteArrayView table,
                  int kind);
    void findLinks(const RowChange &row);
    void addLink(std::string_view key, const QString &other, bool isBefore, bool isAfter);
    bool isPart(const RowChange &row) const;
    const std::vector<QByteArray> &columnsOf(const QByteArray &table);

    sqlite::Database &database;
    const ManagedObjectModel &objectModel;
    const EntityDescription *recordEntity = nullptr;
    QString record;
    /// The record and its parts, as far as they are known by now.
    std::set<QString> wanted;
    std::vector<RowChange> found;
    std::map<QByteArray, std::vector<QByteArray>> tableColumns;
};
