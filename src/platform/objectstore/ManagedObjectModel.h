#pragma once

#include "objectstore/Value.h"

#include <QByteArray>

#include <functional>
#include <string_view>
#include <vector>

class ManagedObjectContext;
class EntityDescription;

/// A plain value of an entity, kept in a column of the same name.
struct AttributeDescription
{
    std::string_view name;
    AttributeType type;
};

/// What happens to the objects at the other end when an object is deleted.
enum class DeleteRule { Nullify, Cascade };

enum class Cardinality {
    /// A column holding the target's identifier.
    ToOne,
    /// No storage of its own: the rows whose to-one inverse names this object.
    ToMany,
    /// Many-to-many, kept in a table `<Entity>_<relationship>` with columns `source` and `target`.
    ToManyOwningJoin,
    /// The other end of a `ToManyOwningJoin`.
    ToManyThroughJoin,
};

struct RelationshipDescription
{
    std::string_view name;
    Cardinality cardinality;
    std::string_view destination;
    std::string_view inverse;
    DeleteRule deleteRule = DeleteRule::Nullify;
    bool operator==(const RelationshipDescription &) const = default;
};

/// An index that a list query leans on: its name and the SQL of its columns (and of its WHERE, if partial).
struct IndexDescription
{
    std::string_view name;
    std::string_view columns;
    std::string_view where = {};
    bool operator==(const IndexDescription &) const = default;
};

/// What an entity is made of. Columns are numbered: first the attributes, then the to-one relationships, each
/// in the order of declaration; column n of a row stands at position n + 1 of its table, behind `id`.
class EntityDescription
{
public:
    using Factory = std::function<ObjectPtr()>;

    EntityDescription(std::string_view name, std::vector<AttributeDescription> attributes,
                      std::vector<RelationshipDescription> relationships, Factory factory);

    EntityDescription &indexedBy(std::vector<IndexDescription> descriptions);
    /// Rows that can be made again from others: left out of captured changes, undo and what a commit tells.
    EntityDescription &derived();
    /// Its objects count as updated also when something is linked to them, or unlinked, from the other end.
    EntityDescription &followingLinks();
    /// Related objects of it come by that number, equal ones as they were made. Row numbers cannot tell an
    /// order for long: an undone deletion makes rows in any.
    EntityDescription &keptInOrderOf(std::string_view attribute);
    /// Keeps an index of one text attribute for "contains, case and diacritics ignored".
    EntityDescription &substringIndexed(std::string_view attribute);

    std::string_view name() const { return entityName; }
    const QByteArray &table() const { return tableName; }
    const std::vector<AttributeDescription> &attributes() const { return attributeList; }
    const std::vector<RelationshipDescription> &relationships() const { return relationshipList; }
    const std::vector<IndexDescription> &indexes() const { return indexList; }
    bool isDerived() const { return isDerivedEntity; }
    bool followsLinks() const { return followsLinksOfEntity; }
    /// Empty where the order tells nothing.
    std::string_view orderAttribute() const { return orderingNumber; }
    /// Empty without such an index.
    std::string_view substringAttribute() const { return indexedText; }
    ObjectPtr makeObject() const { return factory(); }

    int columnCount() const { return static_cast<int>(columnNames.size()); }
    /// The column of an attribute or to-one relationship, or -1.
    int columnOf(std::string_view key) const;
    std::string_view columnName(int column) const { return columnNames[static_cast<size_t>(column)]; }
    /// The type of an attribute column; a to-one column counts as a text.
    AttributeType columnType(int column) const;
    bool isAttribute(int column) const { return column < static_cast<int>(attributeList.size()); }
    /// The relationship of that name, or null.
    const RelationshipDescription *relationship(std::string_view key) const;
    /// The relationship that a to-one column stands for, or null for an attribute column.
    const RelationshipDescription *relationshipOfColumn(int column) const;

private:
    std::string_view entityName;
    QByteArray tableName;
    std::vector<AttributeDescription> attributeList;
    std::vector<RelationshipDescription> relationshipList;
    std::vector<IndexDescription> indexList;
    std::vector<std::string_view> columnNames;
    std::vector<int> relationshipOfToOneColumn;
    Factory factory;
    bool isDerivedEntity = false;
    bool followsLinksOfEntity = false;
    std::string_view orderingNumber;
    std::string_view indexedText;
};

/// All entities of a store, with a version that grows whenever something is added.
class ManagedObjectModel
{
public:
    /// \param version stored in the file as `PRAGMA user_version`; a file with a greater one is refused.
    /// Relationships must have matching inverses: a mismatch is a programming error and ends the process.
    ManagedObjectModel(int version, std::vector<EntityDescription> entities);

    int version() const { return modelVersion; }
    const std::vector<EntityDescription> &entities() const { return entityList; }
    /// The entity of that name, or null.
    const EntityDescription *entity(std::string_view name) const;
    /// The entity of that name, which must exist.
    const EntityDescription &requireEntity(std::string_view name) const;
    const EntityDescription &destinationOf(const RelationshipDescription &relationship) const;

    /// The table of pairs of a many-to-many relationship, and which of its columns holds the near end.
    struct JoinTable
    {
        QByteArray table;
        QByteArray nearColumn;
        QByteArray farColumn;
    };
    JoinTable joinTable(const EntityDescription &entity, const RelationshipDescription &relationship) const;
    /// The entity whose rows, or whose owned pairs, a table holds; null for any other table.
    const EntityDescription *entityOfTable(std::string_view table) const;

private:
    void checkInverses() const;

    int modelVersion;
    std::vector<EntityDescription> entityList;
};
