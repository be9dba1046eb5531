#include "store/entities/EntityCategory.h"

#include "store/entities/Entities.h"
#include "store/entities/MainContext.h"

MANAGED_TO_MANY_DEFINITION(EntityCategory, EntityTask, task, setTask)
MANAGED_TO_MANY_DEFINITION(EntityCategory, EntityProject, project, setProject)

CategoryPtr EntityCategory::title(const QString &title)
{
    return mainContext().fetchFirst<EntityCategory>(
        fetchRequest().where(Predicate::format("title = %@", title)));
}

CategoryPtr EntityCategory::getCustom()
{
    return mainContext().fetchFirst<EntityCategory>(
        fetchRequest().where(Predicate::format("defaultCategory = true")));
}
