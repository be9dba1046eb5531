#include "objectstore/ManagedObject.h"

#include "objectstore/ManagedObjectContext.h"

#include <cstdio>
#include <cstdlib>

namespace {

[[noreturn]] void endForKey(const EntityDescription &entity, std::string_view key)
{
    std::fprintf(stderr, "%s has no property %s of that kind\n", entity.table().constData(),
                 std::string(key).c_str());
    std::abort();
}

void eraseText(std::vector<QString> &texts, const QString &text)
{
    texts.erase(std::remove(texts.begin(), texts.end(), text), texts.end());
}

const Value absentValue;

} // namespace

ManagedObject::~ManagedObject()
{
    if (owner)
        owner->forget(*this);
}

QString ManagedObject::uri() const
{
    return owner ? owner->uriOf(*this) : QString();
}

bool ManagedObject::hasChanges() const
{
    return isInserted() || isDeleted() || changedSinceSave.any() || !joinChanges.empty();
}

void ManagedObject::load() const
{
    if (!owner || !owner->loadValues(*this)) {
        // The row is gone. What was changed here is kept, so that a save can bring it back.
        isGone = !hasChanges();
        if (isGone)
            values.clear();
        values.resize(static_cast<size_t>(description->columnCount()));
    }
    isLoaded = true;
}

const Value &ManagedObject::value(int column) const
{
    if (state == State::Detached || column < 0 || column >= description->columnCount())
        return absentValue;
    if (!isLoaded)
        load();
    return values[static_cast<size_t>(column)];
}

void ManagedObject::setValue(int column, Value newValue)
{
    newValue = fitted(std::move(newValue), description->columnType(column));
    if (state == State::Detached || state == State::Deleted || value(column) == newValue || isGone)
        return;
    if (const RelationshipDescription *relationship = description->relationshipOfColumn(column)) {
        owner->noteTouched(relationship->destination, values[static_cast<size_t>(column)]);
        owner->noteTouched(relationship->destination, newValue);
    }
    values[static_cast<size_t>(column)] = std::move(newValue);
    changedSinceSave.set(static_cast<size_t>(column));
    changedSinceWrite.set(static_cast<size_t>(column));
    owner->noteChange(*this);
}

const Value &ManagedObject::valueForKey(std::string_view key) const
{
    const int column = description->columnOf(key);
    if (column < 0)
        endForKey(*description, key);
    return value(column);
}

void ManagedObject::setValueForKey(std::string_view key, Value newValue)
{
    const int column = description->columnOf(key);
    if (column < 0)
        endForKey(*description, key);
    setValue(column, std::move(newValue));
}

ObjectPtr ManagedObject::related(int column) const
{
    const auto *target = std::get_if<QString>(&value(column));
    const RelationshipDescription *relationship = description->relationshipOfColumn(column);
    if (!target || !relationship || !owner)
        return nullptr;
    return owner->object(relationship->destination, *target);
}

void ManagedObject::setRelated(int column, const ObjectPtr &target)
{
    const bool isHere = target && !target->isDeleted() && target->context() == owner;
    setValue(column, isHere ? Value(target->identifier()) : Value());
}

const RelationshipDescription &ManagedObject::requireRelationship(std::string_view key) const
{
    const RelationshipDescription *relationship = description->relationship(key);
    if (!relationship || relationship->cardinality == Cardinality::ToOne)
        endForKey(*description, key);
    return *relationship;
}

std::vector<ObjectPtr> ManagedObject::relatedObjects(std::string_view key) const
{
    const RelationshipDescription &relationship = requireRelationship(key);
    // A new object has no pairs but those that were added to it.
    const bool hasNoPairs =
        isInserted() && relationship.cardinality == Cardinality::ToManyOwningJoin && joinChanges.empty();
    return owner && !hasNoPairs ? owner->relatedObjects(*this, relationship) : std::vector<ObjectPtr>();
}

void ManagedObject::setRelatedObjects(std::string_view key, const std::vector<ObjectPtr> &targets)
{
    for (const ObjectPtr &present : relatedObjects(key)) {
        if (std::find(targets.begin(), targets.end(), present) == targets.end())
            removeRelated(key, present);
    }
    for (const ObjectPtr &target : targets)
        addRelated(key, target);
}

void ManagedObject::addRelated(std::string_view key, const ObjectPtr &target)
{
    changeRelated(requireRelationship(key), target, true);
}

void ManagedObject::removeRelated(std::string_view key, const ObjectPtr &target)
{
    changeRelated(requireRelationship(key), target, false);
}

void ManagedObject::changeRelated(const RelationshipDescription &relationship, const ObjectPtr &target,
                                  bool isAdded)
{
    if (!owner || isDeleted() || !target || target->isDeleted() || target->context() != owner)
        return;
    switch (relationship.cardinality) {
    case Cardinality::ToManyOwningJoin:
        changeJoin(relationship, target->identifier(), isAdded);
        break;
    case Cardinality::ToManyThroughJoin: {
        const RelationshipDescription &inverse = target->requireRelationship(relationship.inverse);
        target->changeJoin(inverse, id, isAdded);
        break;
    }
    default: {
        const int column = target->entity().columnOf(relationship.inverse);
        const auto *holder = std::get_if<QString>(&target->value(column));
        if (isAdded)
            target->setValue(column, Value(id));
        else if (holder && *holder == id)
            target->setValue(column, Value());
    }
    }
}

void ManagedObject::changeJoin(const RelationshipDescription &relationship, const QString &target,
                               bool isAdded)
{
    if (owner->hasJoinRow(*this, relationship, target) == isAdded)
        return;
    auto found =
        std::find_if(joinChanges.begin(), joinChanges.end(),
                     [&relationship](const JoinChanges &one) { return one.relationship == &relationship; });
    if (found == joinChanges.end())
        found = joinChanges.insert(joinChanges.end(), JoinChanges{&relationship, {}, {}, true});
    eraseText(isAdded ? found->removed : found->added, target);
    (isAdded ? found->added : found->removed).push_back(target);
    found->isWritten = false;
    owner->noteTouched(relationship.destination, Value(target));
    owner->noteChange(*this);
}
