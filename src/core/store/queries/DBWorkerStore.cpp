#include "store/queries/DBWorker.h"
#include "store/state/CoreContext.h"

#include <unordered_set>

// The store behind the queries.

bool DBWorker::isSample()
{
    return CoreContext::current().isSample;
}

QString DBWorker::getIdFromObject(const ObjectPtr &object)
{
    return object ? object->uri() : QString();
}

ObjectPtr DBWorker::getObjectFromId(const QString &uri)
{
    ManagedObjectContext *context = CoreContext::current().store();
    return context ? context->objectForUri(uri) : nullptr;
}

std::vector<TaskPtr> DBWorker::hideNotAccessTasksFromArray(std::vector<TaskPtr> tasks)
{
    if (isSample())
        return tasks;
    const QStringList visible = CoreContext::current().visibleCalendars();
    const std::unordered_set<QString> references(visible.begin(), visible.end());
    std::erase_if(tasks, [&references](const TaskPtr &task) {
        const QString reference = task->typeCalendarID();
        return !reference.isEmpty() && references.count(reference) == 0;
    });
    return tasks;
}
