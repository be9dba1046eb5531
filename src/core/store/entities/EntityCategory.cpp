#include "store/entities/EntityCategory.h"

#include "store/entities/Entities.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"

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

void EntityCategory::setCustom()
{
    if (const CategoryPtr present = getCustom())
        present->setDefaultCategory(false);
    DBWorker::saveOrTell();
}

std::vector<TaskPtr> EntityCategory::tasksSorts() const
{
    const Predicate open = Predicate::format("status != %d", 3);
    const Predicate own =
        Predicate::format("category == %@", std::const_pointer_cast<ManagedObject>(shared_from_this()));
    std::vector<TaskPtr> tasks;
    for (TaskPtr task :
         mainContext().fetch<EntityTask>(EntityTask::fetchRequest()
                                             .where(own && open)
                                             .sortedBy({descending("dueDate"), ascending("title")})))
        tasks.push_back(std::move(task));
    return DBWorker::sortNotDone(std::move(tasks));
}
