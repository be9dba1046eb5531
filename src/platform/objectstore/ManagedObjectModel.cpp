#include "objectstore/ManagedObjectModel.h"

#include "objectstore/ManagedObject.h"
#include "objectstore/SqlText.h"

#include <cstdio>
#include <cstdlib>

namespace {

[[noreturn]] void endForModel(std::string_view entity, std::string_view relationship, const char *problem)
{
    std::fprintf(stderr, "The object model is wrong: %s.%s %s\n", std::string(entity).c_str(),
                 std::string(relationship).c_str(), problem);
    std::abort();
}

bool isInverseCardinality(Cardinality one, Cardinality other)
{
    switch (one) {
    case Cardinality::ToOne:
        return other == Cardinality::ToMany;
    case Cardinality::ToMany:
        return other == Cardinality::ToOne;
    case Cardinality::ToManyOwningJoin:
        return other == Cardinality::ToManyThroughJoin;
    case Cardinality::ToManyThroughJoin:
        return other == Cardinality::ToManyOwningJoin;
    }
    return false;
}

} // namespace

EntityDescription::EntityDescription(std::string_view name, std::vector<AttributeDescription> attributes,
                                     std::vector<RelationshipDescription> relationships, Factory makeObject)
    : entityName(name)
    , tableName(bytes(name))
    , attributeList(std::move(attributes))
    , relationshipList(std::move(relationships))
    , factory(std::move(makeObject))
{
    for (const AttributeDescription &attribute : attributeList)
        columnNames.push_back(attribute.name);
    for (size_t place = 0; place < relationshipList.size(); ++place) {
        if (relationshipList[place].cardinality != Cardinality::ToOne)
            continue;
        columnNames.push_back(relationshipList[place].name);
        relationshipOfToOneColumn.push_back(static_cast<int>(place));
    }
    if (columnCount() > ManagedObject::maximumColumns)
        endForModel(name, "", "has too many columns");
}

EntityDescription &EntityDescription::indexedBy(std::vector<IndexDescription> descriptions)
{
    indexList = std::move(descriptions);
    return *this;
}

EntityDescription &EntityDescription::derived()
{
    isDerivedEntity = true;
    return *this;
}

EntityDescription &EntityDescription::followingLinks()
{
    followsLinksOfEntity = true;
    return *this;
}

EntityDescription &EntityDescription::keptInOrderOf(std::string_view attribute)
{
    orderingNumber = attribute;
    return *this;
}

EntityDescription &EntityDescription::substringIndexed(std::string_view attribute)
{
    indexedText = attribute;
    return *this;
}

int EntityDescription::columnOf(std::string_view key) const
{
    const auto found = std::find(columnNames.begin(), columnNames.end(), key);
    return found == columnNames.end() ? -1 : static_cast<int>(found - columnNames.begin());
}

AttributeType EntityDescription::columnType(int column) const
{
    return isAttribute(column) ? attributeList[static_cast<size_t>(column)].type : AttributeType::String;
}

const RelationshipDescription *EntityDescription::relationship(std::string_view key) const
{
    const auto found = std::find_if(relationshipList.begin(), relationshipList.end(),
                                    [key](const auto &relationship) { return relationship.name == key; });
    return found == relationshipList.end() ? nullptr : &*found;
}

const RelationshipDescription *EntityDescription::relationshipOfColumn(int column) const
{
    if (isAttribute(column))
        return nullptr;
    const size_t place = static_cast<size_t>(column) - attributeList.size();
    return &relationshipList[static_cast<size_t>(relationshipOfToOneColumn[place])];
}

ManagedObjectModel::ManagedObjectModel(int version, std::vector<EntityDescription> entities)
    : modelVersion(version)
    , entityList(std::move(entities))
{
    checkInverses();
}

void ManagedObjectModel::checkInverses() const
{
    for (const EntityDescription &one : entityList) {
        for (const RelationshipDescription &relationship : one.relationships()) {
            const EntityDescription *other = entity(relationship.destination);
            if (!other)
                endForModel(one.name(), relationship.name, "leads to an unknown entity");
            const RelationshipDescription *inverse = other->relationship(relationship.inverse);
            if (!inverse || inverse->inverse != relationship.name || inverse->destination != one.name() ||
                !isInverseCardinality(relationship.cardinality, inverse->cardinality))
                endForModel(one.name(), relationship.name, "has no matching inverse");
        }
    }
}

const EntityDescription *ManagedObjectModel::entity(std::string_view name) const
{
    const auto found = std::find_if(entityList.begin(), entityList.end(),
                                    [name](const EntityDescription &one) { return one.name() == name; });
    return found == entityList.end() ? nullptr : &*found;
}

const EntityDescription &ManagedObjectModel::requireEntity(std::string_view name) const
{
    const EntityDescription *found = entity(name);
    if (!found)
        endForModel(name, "", "is no entity of it");
    return *found;
}

const EntityDescription &ManagedObjectModel::destinationOf(const RelationshipDescription &relationship) const
{
    return requireEntity(relationship.destination);
}

ManagedObjectModel::JoinTable ManagedObjectModel::joinTable(const EntityDescription &entity,
                                                            const RelationshipDescription &relationship) const
{
    if (relationship.cardinality == Cardinality::ToManyOwningJoin)
        return {entity.table() + '_' + bytes(relationship.name), "source", "target"};
    return {bytes(relationship.destination) + '_' + bytes(relationship.inverse), "target", "source"};
}

const EntityDescription *ManagedObjectModel::entityOfTable(std::string_view table) const
{
    for (const EntityDescription &entity : entityList) {
        if (!table.starts_with(entity.name()))
            continue;
        if (table.size() == entity.name().size())
            return &entity;
        const std::string_view rest = table.substr(entity.name().size());
        const RelationshipDescription *owned =
            rest.front() == '_' ? entity.relationship(rest.substr(1)) : nullptr;
        if (owned && owned->cardinality == Cardinality::ToManyOwningJoin)
            return &entity;
    }
    return nullptr;
}
