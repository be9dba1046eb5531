#pragma once

#include "objectstore/FetchRequest.h"
#include "objectstore/ObjectList.h"
#include "objectstore/TypedObject.h"

class EntityProject;
class EntityTask;

/// A category of tasks and projects. Index 1 to 5: one that the program makes; above: one of the user.
class EntityCategory : public TypedObject<EntityCategory>
{
public:
    static constexpr std::string_view entityName = "EntityCategory";
    static constexpr auto attributeTable = std::to_array<AttributeDescription>({
        {"title", AttributeType::String},
        {"index", AttributeType::Integer},
        {"colorR", AttributeType::Double},
        {"colorG", AttributeType::Double},
        {"colorB", AttributeType::Double},
        {"colorA", AttributeType::Double},
        {"defaultCategory", AttributeType::Boolean},
        {"creationDate", AttributeType::Date},
    });
    static constexpr auto relationshipTable = std::to_array<RelationshipDescription>({
        {"task", Cardinality::ToMany, "EntityTask", "category"},
        {"project", Cardinality::ToMany, "EntityProject", "category"},
    });

    /// A request for all of them.
    static FetchRequest fetchRequest() { return FetchRequest(entityName); }
    /// The first category of that stored title, or null.
    static std::shared_ptr<EntityCategory> title(const QString &title);
    /// The category that new tasks and projects get, or null.
    static std::shared_ptr<EntityCategory> getCustom();
    /// Clears the flag of the present default category, if there is one, and saves. It marks no other one.
    void setCustom();
    /// Its tasks that are not done: the earliest due first, those without a date last.
    std::vector<std::shared_ptr<EntityTask>> tasksSorts() const;

    MANAGED_TEXT(title, setTitle)
    MANAGED_INTEGER(index, setIndex)
    MANAGED_DOUBLE(colorR, setColorR)
    MANAGED_DOUBLE(colorG, setColorG)
    MANAGED_DOUBLE(colorB, setColorB)
    MANAGED_DOUBLE(colorA, setColorA)
    MANAGED_BOOLEAN(defaultCategory, setDefaultCategory)
    MANAGED_DATE(creationDate, setCreationDate)
    MANAGED_TO_MANY(EntityTask, task, setTask)
    MANAGED_TO_MANY(EntityProject, project, setProject)
};
