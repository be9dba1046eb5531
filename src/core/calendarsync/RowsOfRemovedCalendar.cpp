#include "calendarsync/EventStoreAccess.h"
#include "foundation/Log.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"

// The rows of a calendar that has gone.

void DBWorker::removeAllTasksByCalendarIdentifier(const QString &identifier)
{
    Transaction removal(mainContext(), ChangeAuthor::Program);
    for (const TaskPtr &task : mainContext().fetch<EntityTask>(
             EntityTask::fetchRequest().where(Predicate::format("typeCalendarID == %@", identifier)))) {
        if (!task)
            continue;
        // It was never an event of the calendar, and is nowhere else.
        if (task->calendarID().isEmpty()) {
            task->setTypeCalendarID(QString());
            task->setCalendarTitle(QString());
            continue;
        }
        const auto event = EventStoreAccess::eventStore().eventWithIdentifier(task->calendarID());
        // An event that cannot be asked for may still be there.
        if (!event)
            Log::line(event.error().message);
        else if (!event.value())
            mainContext().deleteObject(task);
    }
    tellOfFailure(removal.commit());
}
