#include "store/entities/EntityCategory.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"

// What a category does with the store: its mark as the default one, and its tasks.

void EntityCategory::setCustom()
{
    if (const CategoryPtr present = getCustom())
        present->setDefaultCategory(false);
    DBWorker::saveOrTell();
}

std::vector<TaskPtr> EntityCategory::tasksSorts() const
{
    const Predicate open = Predicate::format("status != %d", TaskStatus::Done);
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
