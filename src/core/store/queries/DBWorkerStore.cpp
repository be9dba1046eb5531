#include "foundation/Alert.h"
#include "foundation/Localization.h"
#include "foundation/Log.h"
#include "store/queries/DBWorker.h"
#include "store/state/CoreContext.h"

#include <unordered_set>

// The store behind the queries.

static void logFailure(const Error &error)
{
    Log::line(QStringLiteral("Unresolved error %1, %2").arg(error.message, error.domain));
    // Rows changed elsewhere are merged while they are written, so that no conflict is ever left over.
    Log::line(QStringLiteral("conflict array: (null)"));
}

bool DBWorker::isSample()
{
    return CoreContext::current().isSample;
}

OptionalError DBWorker::saveContext()
{
    ManagedObjectContext *context = CoreContext::current().store();
    if (!context)
        return std::nullopt;
    OptionalError error = context->save();
    if (error)
        logFailure(*error);
    return error;
}

bool DBWorker::saveOrTell()
{
    ManagedObjectContext *context = CoreContext::current().store();
    return !context || tellOfFailure(context->save());
}

bool DBWorker::tellOfFailure(const OptionalError &error)
{
    static bool isTold = false;
    if (!error) {
        isTold = false;
        return true;
    }
    logFailure(*error);
    if (!std::exchange(isTold, true))
        Alert::run({localized(QStringLiteral("Your changes could not be saved")),
                    localized(QStringLiteral("Your changes could not be saved")),
                    error->message + QStringLiteral("\n\n") +
                        localized(QStringLiteral("They are kept, and saved as soon as that is possible.")),
                    {localized(QStringLiteral("OK"))}});
    return false;
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
